#include "platform/desktop/renderer/renderer.h"

#include <QByteArrayView>
#include <QElapsedTimer>
#include <QOpenGLFunctions>
#include <QStandardPaths>

#include <malloc.h>

#include <algorithm>
#include <ctime>
#include <filesystem>

namespace {

constexpr PaintQuality FullPaint{
    .Samples = 4, .ShadowSize = 2048, .ShadowTaps = 8, .Anisotropy = 8.0f, .FineTextures = true};
// Software OpenGL offers anisotropy too, at many times the cost.
constexpr PaintQuality FullSoftwarePaint{
    .Samples = 4, .ShadowSize = 2048, .ShadowTaps = 4, .Anisotropy = 1.0f, .FineTextures = false};
constexpr PaintQuality LowPaint{
    .Samples = 0, .ShadowSize = 1024, .ShadowTaps = 4, .Anisotropy = 1.0f, .FineTextures = false};

constexpr std::size_t MeasuredFrames = 8;
constexpr std::size_t ReleaseInterval = 500; ///< frames between releases of the shader compiler
// Median times of a frame, ms. A frame at the full level costs about twice as much as one at the low level.
constexpr double SlowFrame = 8.0;  ///< slower than this at the full level: low is chosen
constexpr double QuickFrame = 2.0; ///< no slower than this at the low level: full is chosen

/// Mesa maps the index of its shader cache into memory without reserving its space. On a full disk, the first
/// write to it ends the program.
void DisableShaderCacheOnFullDisk() {
  constexpr std::uintmax_t Enough = 8 << 20; ///< bytes
  std::filesystem::path cache =
      qEnvironmentVariable("MESA_SHADER_CACHE_DIR",
                           QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation))
          .toStdString();
  std::error_code error;
  while (!std::filesystem::exists(cache, error) && cache.has_relative_path()) cache = cache.parent_path();
  if (const auto space = std::filesystem::space(cache, error); !error && space.available < Enough)
    qputenv("MESA_SHADER_CACHE_DISABLE", "true");
}

bool DrawsInSoftware(Gl &gl) {
  const QByteArrayView name(reinterpret_cast<const char *>(gl.glGetString(GL_RENDERER)));
  for (const char *software : {"llvmpipe", "softpipe", "swrast", "SwiftShader", "Software Rasterizer"}) {
    if (name.contains(software)) return true;
  }
  return false;
}

} // namespace

Renderer::Renderer(Quality quality) : level_(quality), measuring_(quality == Quality::Measured) {
  DisableShaderCacheOnFullDisk();
  QSurfaceFormat format;
  format.setRenderableType(QSurfaceFormat::OpenGL);
  format.setVersion(3, 3);
  format.setProfile(QSurfaceFormat::CoreProfile);
  context_.setFormat(format);
  if (!context_.create()) throw RendererError("OpenGL 3.3 is needed, but this display has none.");
  surface_.setFormat(context_.format());
  surface_.create();
  if (!surface_.isValid() || !context_.makeCurrent(&surface_)) {
    throw RendererError("OpenGL 3.3 is needed, but it can't draw off-screen here.");
  }
  if (!gl_.initializeOpenGLFunctions()) {
    throw RendererError("OpenGL 3.3 is needed, but this display has an older version.");
  }
  if (measuring_) level_ = DrawsInSoftware(gl_) ? Quality::Low : Quality::Full;
  StartPainter();
}

Renderer::~Renderer() {
  context_.makeCurrent(&surface_);
  painter_.reset();
  context_.doneCurrent();
}

bool Renderer::Draw(const RMCanvas &canvas, QSize size) {
  if (size.isEmpty()) return false;
  if (lens_.Settled() && frame_.size() == size && canvas.RootObject->Revision() == drawnRevision_ &&
      drawnRoot_ == canvas.RootObject) {
    return false;
  }
  drawnRevision_ = canvas.RootObject->Revision();
  drawnRoot_ = canvas.RootObject;

  QElapsedTimer timer;
  timer.start();
  const std::clock_t processor = std::clock();
  if (!context_.makeCurrent(&surface_)) throw RendererError("the OpenGL context has been lost");
  if (frame_.size() != size) frame_ = QImage(size, QImage::Format_RGB32);
  if (measuring_) painter_->RedrawAll(); // a partial redraw takes too little time to compare
  if (!painter_->Paint(*canvas.SceneFrame, *canvas.CameraFrame, canvas.Viewport->GetBack(), frame_)) {
    return false;
  }
  ++frames_;
  ClearFileCache(); // everything that this frame needed is uploaded
  if (frames_ % ReleaseInterval == MeasuredFrames) ReleaseShaderCompiler();
  // A quick frame may still keep many cores busy, so processor time counts too.
  Measure(std::max(static_cast<double>(timer.nsecsElapsed()) / 1e6,
                   static_cast<double>(std::clock() - processor) * 1e3 / CLOCKS_PER_SEC));
  return true;
}

/// Starts a painter of the level in use.
void Renderer::StartPainter() {
  const PaintQuality &full = DrawsInSoftware(gl_) ? FullSoftwarePaint : FullPaint;
  painter_.emplace(gl_, level_ == Quality::Full ? full : LowPaint, lens_);
  frames_ = 0;
}

/// Frees the memory of the shader compiler. Drivers start it again for each new combination of shader and
/// states, so this is repeated.
void Renderer::ReleaseShaderCompiler() {
  context_.functions()->glReleaseShaderCompiler();
  malloc_trim(0);
}

/// Chooses the level from the first frames, except the very first, which uploads everything.
void Renderer::Measure(double milliseconds) {
  if (!measuring_ || frames_ == 1) return;
  measured_.push_back(milliseconds);
  if (measured_.size() < MeasuredFrames) return;
  measuring_ = false;
  std::ranges::sort(measured_);
  const double median = measured_[measured_.size() / 2];
  if (level_ == Quality::Full ? median <= SlowFrame : median > QuickFrame) return;
  level_ = level_ == Quality::Full ? Quality::Low : Quality::Full;
  StartPainter();
}

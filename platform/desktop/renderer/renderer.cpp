#include "platform/desktop/renderer/renderer.h"

#include "platform/desktop/renderer/painter.h"

#include <QElapsedTimer>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLVersionFunctionsFactory>
#include <QStandardPaths>

#include <malloc.h>

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <string_view>

namespace {

constexpr PaintQuality FullPaint{.Samples = 4, .ShadowSize = 2048, .ShadowTaps = 8, .Anisotropy = 8.0f};
constexpr PaintQuality LowPaint{.Samples = 0, .ShadowSize = 1024, .ShadowTaps = 4, .Anisotropy = 0.0f};

constexpr std::size_t MeasuredFrames = 8;
constexpr std::size_t ReleaseInterval = 500; ///< frames between releases of the shader compiler
// Median times of a frame, ms. A frame at the full level costs three times as much as one at the low level.
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

} // namespace

class Renderer::Drawing {
public:
  explicit Drawing(Quality quality)
      : asked_(quality), level_(quality == Quality::Low ? Quality::Low : Quality::Full) {
    DisableShaderCacheOnFullDisk();
    OpenContext();
    if (asked_ == Quality::Measured && DrawsInSoftware()) level_ = Quality::Low;
    painter_ = std::make_unique<Painter>(*gl_, Paint(), lens_);
  }

  ~Drawing() {
    context_.makeCurrent(&surface_);
    painter_.reset();
    context_.doneCurrent();
  }

  bool Draw(const RMCanvas &canvas, QSize size) {
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
    if (Measuring()) painter_->RedrawAll(); // a partial redraw takes too little time to compare
    if (!painter_->Paint(Collect(*canvas.SceneFrame), *canvas.CameraFrame, canvas.Viewport->GetBack(),
                         frame_)) {
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

  const QImage &Frame() const { return frame_; }
  Quality Level() const { return level_; }

private:
  void OpenContext() {
    QSurfaceFormat format;
    format.setRenderableType(QSurfaceFormat::OpenGL);
    format.setVersion(3, 3);
    format.setProfile(QSurfaceFormat::CoreProfile);
    context_.setFormat(format);
    if (!context_.create()) throw RendererError("OpenGL 3.3 is needed, and this display gives none.");
    surface_.setFormat(context_.format());
    surface_.create();
    if (!surface_.isValid() || !context_.makeCurrent(&surface_)) {
      throw RendererError("OpenGL 3.3 is needed, and it can't draw off the screen here.");
    }
    gl_ = QOpenGLVersionFunctionsFactory::get<QOpenGLFunctions_3_3_Core>(&context_);
    if (!gl_ || !gl_->initializeOpenGLFunctions()) {
      throw RendererError("OpenGL 3.3 is needed, and this display gives an older one.");
    }
  }

  PaintQuality Paint() {
    PaintQuality paint = level_ == Quality::Full ? FullPaint : LowPaint;
    if (!context_.hasExtension("GL_EXT_texture_filter_anisotropic"))
      paint.Anisotropy = std::min(paint.Anisotropy, 1.0f);
    if (DrawsInSoftware()) {
      paint.Anisotropy = LowPaint.Anisotropy;
      paint.ShadowTaps = LowPaint.ShadowTaps;
    }
    return paint;
  }

  /// Software OpenGL offers anisotropy too, at many times the cost.
  bool DrawsInSoftware() {
    const auto *name = reinterpret_cast<const char *>(gl_->glGetString(GL_RENDERER));
    if (!name) return false;
    for (const char *software : {"llvmpipe", "softpipe", "swrast", "SwiftShader", "Software Rasterizer"}) {
      if (std::string_view(name).find(software) != std::string_view::npos) return true;
    }
    return false;
  }

  /// Frees the memory of the shader compiler. Drivers start it again for each new combination of shader and
  /// states, so this is repeated.
  void ReleaseShaderCompiler() {
    // The function came with OpenGL 4.1, but drivers offer it in 3.3 contexts too.
    if (const auto release = reinterpret_cast<void (*)()>(context_.getProcAddress("glReleaseShaderCompiler")))
      release();
    malloc_trim(0);
  }

  bool Measuring() const { return asked_ == Quality::Measured && !chosen_; }

  /// Chooses the level from the first frames, except the very first, which uploads everything.
  void Measure(double milliseconds) {
    if (!Measuring() || frames_ == 1) return;
    measured_.push_back(milliseconds);
    if (measured_.size() < MeasuredFrames) return;
    chosen_ = true;
    std::ranges::sort(measured_);
    const double median = measured_[measured_.size() / 2];
    if (level_ == Quality::Full ? median <= SlowFrame : median > QuickFrame) return;
    level_ = level_ == Quality::Full ? Quality::Low : Quality::Full;
    painter_.reset();
    painter_ = std::make_unique<Painter>(*gl_, Paint(), lens_);
    frames_ = 0;
  }

  Quality asked_;
  Quality level_;
  QOpenGLContext context_;
  QOffscreenSurface surface_;
  Gl *gl_ = nullptr;
  Lens lens_;
  std::unique_ptr<Painter> painter_;
  QImage frame_;

  std::size_t frames_ = 0; ///< of this painter
  bool chosen_ = false;
  std::vector<double> measured_; ///< ms of each frame, wall or processor time, whichever is longer

  Ref<Direct3DRM3> drawnRoot_;
  std::uint64_t drawnRevision_ = 0;
};

Renderer::Renderer(Quality quality) : drawing_(std::make_unique<Drawing>(quality)) {}
Renderer::~Renderer() = default;
bool Renderer::Draw(const RMCanvas &canvas, QSize devicePixels) {
  return drawing_->Draw(canvas, devicePixels);
}
const QImage &Renderer::Frame() const { return drawing_->Frame(); }
Quality Renderer::Level() const { return drawing_->Level(); }

#include "platform/desktop/renderer/renderer.h"

#include "platform/desktop/renderer/painter.h"

#include <QElapsedTimer>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLVersionFunctionsFactory>

#include <malloc.h>

#include <algorithm>
#include <ctime>
#include <string_view>

namespace {

constexpr PaintQuality FullPaint{.Samples = 4, .ShadowSize = 2048, .ShadowTaps = 8, .Anisotropy = 8.0f};
constexpr PaintQuality LowPaint{.Samples = 0, .ShadowSize = 1024, .ShadowTaps = 4, .Anisotropy = 0.0f};

constexpr std::size_t MeasuredPictures = 8;
constexpr double SlowPicture = 8.0;  ///< ms: a middle picture dearer than this chooses the low level
constexpr double QuickPicture = 2.0; ///< ms: a low one up to this chooses full, at about three times its cost

} // namespace

class Renderer::Drawing {
public:
  explicit Drawing(Quality quality)
      : asked_(quality), level_(quality == Quality::Low ? Quality::Low : Quality::Full) {
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
    if (lens_.Settled() && picture_.size() == size && canvas.RootObject->Revision() == drawnRevision_ &&
        drawnRoot_ == canvas.RootObject) {
      return false;
    }
    drawnRevision_ = canvas.RootObject->Revision();
    drawnRoot_ = canvas.RootObject;

    QElapsedTimer timer;
    timer.start();
    const std::clock_t processor = std::clock();
    if (!context_.makeCurrent(&surface_)) throw RendererError("the OpenGL context has been lost");
    if (picture_.size() != size) picture_ = QImage(size, QImage::Format_RGB32);
    if (Measuring()) painter_->Forget(); // a part of a picture would tell nothing
    if (!painter_->Paint(Collect(*canvas.SceneFrame), *canvas.CameraFrame, canvas.Viewport->GetBack(),
                         picture_)) {
      return false;
    }
    ++pictures_;
    if (pictures_ == 1) ForgetFiles();                 // everything has been uploaded
    if (pictures_ == MeasuredPictures) malloc_trim(0); // the driver has compiled most of its programs
    // On many cores a picture can be quick and still take more of them than a game on a desk should.
    Measure(std::max(static_cast<double>(timer.nsecsElapsed()) / 1e6,
                     static_cast<double>(std::clock() - processor) * 1e3 / CLOCKS_PER_SEC));
    return true;
  }

  const QImage &Picture() const { return picture_; }
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
    if (!context_.hasExtension("GL_EXT_texture_filter_anisotropic") || DrawsInSoftware()) {
      paint.Anisotropy = std::min(paint.Anisotropy, 1.0f);
    }
    return paint;
  }

  /// Without a graphics card anisotropy is offered too, but makes a picture many times as dear.
  bool DrawsInSoftware() {
    const auto *name = reinterpret_cast<const char *>(gl_->glGetString(GL_RENDERER));
    if (!name) return false;
    for (const char *software : {"llvmpipe", "softpipe", "swrast", "SwiftShader", "Software Rasterizer"}) {
      if (std::string_view(name).find(software) != std::string_view::npos) return true;
    }
    return false;
  }

  bool Measuring() const { return asked_ == Quality::Measured && !chosen_; }

  /// Chooses the level by the first pictures. The very first uploads everything, so it doesn't count.
  void Measure(double milliseconds) {
    if (!Measuring() || pictures_ == 1) return;
    measured_.push_back(milliseconds);
    if (measured_.size() < MeasuredPictures) return;
    chosen_ = true;
    std::ranges::sort(measured_);
    const double middle = measured_[measured_.size() / 2];
    if (level_ == Quality::Full ? middle <= SlowPicture : middle > QuickPicture) return;
    level_ = level_ == Quality::Full ? Quality::Low : Quality::Full;
    painter_.reset();
    painter_ = std::make_unique<Painter>(*gl_, Paint(), lens_);
  }

  Quality asked_;
  Quality level_;
  QOpenGLContext context_;
  QOffscreenSurface surface_;
  Gl *gl_ = nullptr;
  Lens lens_;
  std::unique_ptr<Painter> painter_;
  QImage picture_;

  std::size_t pictures_ = 0;
  bool chosen_ = false;
  std::vector<double> measured_; ///< ms of the first pictures, wall or processor, whichever is more

  Ref<Direct3DRM3> drawnRoot_;
  std::uint64_t drawnRevision_ = 0;
};

Renderer::Renderer(Quality quality) : drawing_(std::make_unique<Drawing>(quality)) {}
Renderer::~Renderer() = default;
bool Renderer::Draw(const RMCanvas &canvas, QSize devicePixels) {
  return drawing_->Draw(canvas, devicePixels);
}
const QImage &Renderer::Picture() const { return drawing_->Picture(); }
Quality Renderer::Level() const { return drawing_->Level(); }

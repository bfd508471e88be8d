#include "platform/desktop/renderer/renderer.h"

#include "platform/desktop/renderer/painter.h"
#include "platform/desktop/renderer/spare_memory.h"

#include <QElapsedTimer>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLVersionFunctionsFactory>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <ctime>
#include <string_view>
#include <unordered_map>

namespace {

constexpr PaintQuality FullPaint{.Samples = 4, .ShadowSize = 2048, .ShadowTaps = 8, .Anisotropy = 8.0f};
constexpr PaintQuality LowPaint{.Samples = 0, .ShadowSize = 1024, .ShadowTaps = 4, .Anisotropy = 1.0f};

constexpr std::size_t MeasuredPictures = 8;
constexpr double SlowPicture = 8.0;  ///< ms: a middle picture dearer than this chooses the low level
constexpr double QuickPicture = 2.0; ///< ms: a low one up to this chooses full, at about three times its cost

/// Movement of a texture, in repeats, that may be held back at the low level: about half a pixel of the sky.
constexpr float HeldDrift = 0.0012f;

/// Everything that decides a picture but the texture coordinates, as one number.
class Signature {
public:
  template <class T> void Add(const T &value) {
    unsigned char bytes[sizeof value];
    std::memcpy(bytes, &value, sizeof value);
    for (const unsigned char byte : bytes) hash_ = (hash_ ^ byte) * 0x100000001B3ULL;
  }
  std::uint64_t Value() const { return hash_; }

private:
  std::uint64_t hash_ = 0xCBF29CE484222325ULL;
};

} // namespace

class Renderer::Drawing {
public:
  explicit Drawing(Quality quality)
      : asked_(quality), level_(quality == Quality::Low ? Quality::Low : Quality::Full) {
    OpenContext();
    if (asked_ == Quality::Measured && DrawsInSoftware()) level_ = Quality::Low;
    painter_ = std::make_unique<Painter>(*gl_, Paint());
  }

  ~Drawing() {
    context_.makeCurrent(&surface_);
    painter_.reset();
    context_.doneCurrent();
  }

  bool Draw(const RMCanvas &canvas, QSize size) {
    if (size.isEmpty()) return false;
    if (picture_.size() == size && canvas.RootObject->Revision() == drawnRevision_ &&
        drawnRoot_ == canvas.RootObject) {
      return false;
    }
    const std::vector<Placed> placed = Collect(*canvas.SceneFrame);
    const std::uint64_t signature = Sign(canvas, placed);
    if (picture_.size() == size && signature == drawnSignature_ && level_ == Quality::Low &&
        Drift(placed) < HeldDrift) {
      return false;
    }
    drawnRevision_ = canvas.RootObject->Revision();
    drawnRoot_ = canvas.RootObject;
    drawnSignature_ = signature;
    RememberCoordinates(placed);

    QElapsedTimer timer;
    timer.start();
    const std::clock_t processor = std::clock();
    if (!context_.makeCurrent(&surface_)) throw RendererError("the OpenGL context has been lost");
    if (picture_.size() != size) picture_ = QImage(size, QImage::Format_RGB32);
    painter_->Paint(placed, canvas.CameraFrame->World(), canvas.Viewport->GetBack(), picture_);
    ++pictures_;
    if (pictures_ == 1) ForgetFiles(); // everything has been uploaded
    // Shaders are compiled when they are used first, and most are used soon.
    if (pictures_ > MeasuredPictures && std::has_single_bit(pictures_)) GiveBackSpareMemory();
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
      paint.Anisotropy = 1.0f;
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

  static std::uint64_t Sign(const RMCanvas &canvas, std::span<const Placed> placed) {
    Signature signature;
    signature.Add(canvas.CameraFrame->World());
    signature.Add(canvas.Viewport->GetBack());
    for (const Placed &each : placed) {
      signature.Add(each.Mesh->get());
      signature.Add((*each.Mesh)->GeometryRevision());
      signature.Add((*each.Mesh)->Texture().get());
      signature.Add((*each.Mesh)->Material().get());
      signature.Add(each.Place);
    }
    return signature.Value();
  }

  /// How far any texture has moved since the last picture, in repeats.
  float Drift(std::span<const Placed> placed) const {
    float most = 0;
    for (const Placed &each : placed) {
      const auto drawn = drawnCoordinates_.find(each.Mesh->get());
      if (drawn == drawnCoordinates_.end()) return 1.0f;
      const auto &[first, last] = drawn->second;
      const auto &now = (*each.Mesh)->Data().TextureCoordinates;
      most = std::max({most, std::abs(now.front().u - first.u), std::abs(now.front().v - first.v),
                       std::abs(now.back().u - last.u), std::abs(now.back().v - last.v)});
    }
    return most;
  }

  void RememberCoordinates(std::span<const Placed> placed) {
    drawnCoordinates_.clear();
    for (const Placed &each : placed) {
      const auto &coordinates = (*each.Mesh)->Data().TextureCoordinates;
      drawnCoordinates_[each.Mesh->get()] = {coordinates.front(), coordinates.back()};
    }
  }

  /// Chooses the level by the first pictures. The very first uploads everything, so it doesn't count.
  void Measure(double milliseconds) {
    if (asked_ != Quality::Measured || chosen_ || pictures_ == 1) return;
    measured_.push_back(milliseconds);
    if (measured_.size() < MeasuredPictures) return;
    chosen_ = true;
    std::ranges::sort(measured_);
    const double middle = measured_[measured_.size() / 2];
    if (level_ == Quality::Full ? middle <= SlowPicture : middle > QuickPicture) return;
    level_ = level_ == Quality::Full ? Quality::Low : Quality::Full;
    painter_.reset();
    painter_ = std::make_unique<Painter>(*gl_, Paint());
  }

  Quality asked_;
  Quality level_;
  QOpenGLContext context_;
  QOffscreenSurface surface_;
  Gl *gl_ = nullptr;
  std::unique_ptr<Painter> painter_;
  QImage picture_;

  std::size_t pictures_ = 0;
  bool chosen_ = false;
  std::vector<double> measured_; ///< ms of the first pictures, wall or processor, whichever is more

  Ref<Direct3DRM3> drawnRoot_;
  std::uint64_t drawnRevision_ = 0;
  std::uint64_t drawnSignature_ = 0;
  std::unordered_map<const Direct3DRMMeshBuilder3 *, std::pair<TextureCoordinate, TextureCoordinate>>
      drawnCoordinates_; ///< of the first and the last vertex
};

Renderer::Renderer(Quality quality) : drawing_(std::make_unique<Drawing>(quality)) {}
Renderer::~Renderer() = default;
bool Renderer::Draw(const RMCanvas &canvas, QSize devicePixels) {
  return drawing_->Draw(canvas, devicePixels);
}
const QImage &Renderer::Picture() const { return drawing_->Picture(); }
Quality Renderer::Level() const { return drawing_->Level(); }

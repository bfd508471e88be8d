#include "platform/desktop/renderer/renderer.h"

#include "platform/desktop/renderer/frame_buffer.h"
#include "platform/desktop/renderer/gpu_mesh.h"
#include "platform/desktop/renderer/shaders.h"

#include <QElapsedTimer>
#include <QMatrix4x4>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLShaderProgram>
#include <QOpenGLVersionFunctionsFactory>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <string>

namespace {

constexpr float ViewAngle = 60.0f; ///< degrees from the picture's bottom to its top
constexpr float NearPlane = 1.0f;  ///< scene units
constexpr float FogColor[] = {0.70f, 0.52f, 0.66f};
constexpr float FogDistance = 820.0f; ///< scene units at which about a third of a colour is left

constexpr float ShadowReach = 118.0f;  ///< scene units from the middle that the shadows cover
constexpr float ShadowHeight = 120.0f; ///< of what casts them
constexpr float LargestCaster =
    60.0f; ///< a mesh of a larger extent is a place, not a thing, and casts no shadow
constexpr int FullShadowSize = 1024; ///< pixels
constexpr int LowShadowSize = 512;

constexpr int Samples = 4;
constexpr float Anisotropy = 2.0f;
constexpr int MeasuredPictures = 8;
constexpr double SlowPicture = 8.0; ///< ms: a middle picture slower than this chooses the low level

/// Movement of a texture, in repeats, that may be held back on a slow machine: half a pixel of the sky.
constexpr float HeldDrift = 0.0018f;

/// One mesh where it hangs.
struct Placed {
  const Ref<Direct3DRMMeshBuilder3> *Mesh;
  Transform Place;
  QMatrix4x4 ToWorld;
};

QMatrix4x4 MatrixOf(const Transform &t) {
  return {t.Right.x,  t.Up.x,    t.Direction.x, t.Origin.x,    t.Right.y,  t.Up.y, t.Direction.y,
          t.Origin.y, t.Right.z, t.Up.z,        t.Direction.z, t.Origin.z, 0,      0,
          0,          1};
}

void Collect(const Direct3DRMFrame3 &frame, std::vector<Placed> &placed) {
  if (!frame.Visuals().empty()) {
    const Transform place = frame.World();
    for (const auto &mesh : frame.Visuals()) placed.push_back({&mesh, place, MatrixOf(place)});
  }
  for (const auto &child : frame.Children()) Collect(*child, placed);
}

/// Left-handed, with the view along +z, and upside down: rows are read back from the bottom.
QMatrix4x4 Projection(float aspect, float back) {
  const float focus = 1.0f / std::tan(ViewAngle * 3.14159265f / 360.0f);
  return {focus / aspect,
          0,
          0,
          0,
          0,
          -focus,
          0,
          0,
          0,
          0,
          (back + NearPlane) / (back - NearPlane),
          -2 * back * NearPlane / (back - NearPlane),
          0,
          0,
          1,
          0};
}

/// From the scene into the shadow map, seen along the key light.
QMatrix4x4 ShadowMatrix() {
  const Vector key = KeyLight();
  const QVector3D z(-key.x, -key.y, -key.z);
  const QVector3D x = QVector3D::crossProduct(QVector3D(0, 0, 1), z).normalized();
  const QVector3D y = QVector3D::crossProduct(z, x);
  const QMatrix4x4 turn(x.x(), x.y(), x.z(), 0, y.x(), y.y(), y.z(), 0, z.x(), z.y(), z.z(), 0, 0, 0, 0, 1);
  QMatrix4x4 scale;
  scale.scale(1.0f / ShadowReach, 1.0f / ShadowReach, 1.0f / (ShadowReach + ShadowHeight));
  return scale * turn;
}

float Extent(const Bounds &box) {
  return std::max({box.High.x - box.Low.x, box.High.y - box.Low.y, box.High.z - box.Low.z});
}

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
    MakeStore();
    Build(shadow_, ShadowVertexShader, ShadowFragmentShader);
  }

  ~Drawing() {
    context_.makeCurrent(&surfaceOff_);
    surfaces_.clear();
    shadow_.removeAllShaders();
    store_.reset();
    shadowMap_.reset();
    target_.reset();
    context_.doneCurrent();
  }

  bool Draw(const RMCanvas &canvas, QSize size) {
    if (size.isEmpty()) return false;
    if (picture_.size() == size && canvas.RootObject->Revision() == drawnRevision_ &&
        drawnRoot_ == canvas.RootObject) {
      return false;
    }
    placed_.clear();
    Collect(*canvas.SceneFrame, placed_);
    const std::uint64_t signature = Sign(canvas);
    if (picture_.size() == size && signature == drawnSignature_ && level_ == Quality::Low &&
        Drift() < HeldDrift) {
      return false;
    }
    drawnRevision_ = canvas.RootObject->Revision();
    drawnRoot_ = canvas.RootObject;
    drawnSignature_ = signature;
    RememberCoordinates();

    QElapsedTimer timer;
    timer.start();
    if (!context_.makeCurrent(&surfaceOff_)) throw RendererError("the OpenGL context has been lost");
    if (!target_ || target_->Size() != size)
      target_ = std::make_unique<FrameBuffer>(*gl_, size, SamplesOfLevel());
    if (picture_.size() != size) picture_ = QImage(size, QImage::Format_RGB32);
    DrawShadows();
    DrawScene(canvas, size);
    target_->Read(picture_);
    Measure(static_cast<double>(timer.nsecsElapsed()) / 1e6);
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
    surfaceOff_.setFormat(context_.format());
    surfaceOff_.create();
    if (!surfaceOff_.isValid() || !context_.makeCurrent(&surfaceOff_)) {
      throw RendererError("OpenGL 3.3 is needed, and it can't draw off the screen here.");
    }
    gl_ = QOpenGLVersionFunctionsFactory::get<QOpenGLFunctions_3_3_Core>(&context_);
    if (!gl_ || !gl_->initializeOpenGLFunctions()) {
      throw RendererError("OpenGL 3.3 is needed, and this display gives an older one.");
    }
  }

  void MakeStore() {
    store_ = std::make_unique<GpuStore>(*gl_);
    if (level_ == Quality::Full && context_.hasExtension("GL_EXT_texture_filter_anisotropic")) {
      store_->SetAnisotropy(Anisotropy);
    }
  }

  static void Build(QOpenGLShaderProgram &program, const char *vertex, const char *fragment) {
    if (!program.addShaderFromSourceCode(QOpenGLShader::Vertex, vertex) ||
        !program.addShaderFromSourceCode(QOpenGLShader::Fragment, fragment) || !program.link()) {
      throw RendererError("a shading program can't be built: " + program.log().toStdString());
    }
  }

  int SamplesOfLevel() const { return level_ == Quality::Full ? Samples : 0; }

  std::uint64_t Sign(const RMCanvas &canvas) const {
    Signature signature;
    signature.Add(canvas.CameraFrame->World());
    signature.Add(canvas.Viewport->GetBack());
    for (const Placed &each : placed_) {
      signature.Add(each.Mesh->get());
      signature.Add((*each.Mesh)->GeometryRevision());
      signature.Add((*each.Mesh)->Texture().get());
      signature.Add((*each.Mesh)->Material().get());
      for (int i = 0; i < 16; ++i) signature.Add(each.ToWorld.constData()[i]);
    }
    return signature.Value();
  }

  /// How far any texture has moved since the last picture, in repeats.
  float Drift() const {
    float most = 0;
    for (const Placed &each : placed_) {
      const auto drawn = drawnCoordinates_.find(each.Mesh->get());
      if (drawn == drawnCoordinates_.end()) return 1.0f;
      const TextureCoordinate &now = (*each.Mesh)->Data().TextureCoordinates.front();
      most = std::max({most, std::abs(now.u - drawn->second.u), std::abs(now.v - drawn->second.v)});
    }
    return most;
  }

  void RememberCoordinates() {
    drawnCoordinates_.clear();
    for (const Placed &each : placed_) {
      drawnCoordinates_[each.Mesh->get()] = (*each.Mesh)->Data().TextureCoordinates.front();
    }
  }

  void DrawShadows() {
    if (!shadowMap_) {
      shadowMap_ =
          std::make_unique<ShadowMap>(*gl_, level_ == Quality::Full ? FullShadowSize : LowShadowSize);
    }
    shadowMap_->Begin();
    shadow_.bind();
    shadow_.setUniformValue("toShadow", toShadow_);
    for (const Placed &each : placed_) {
      GpuMesh &mesh = store_->Mesh(*each.Mesh);
      mesh.Upload(**each.Mesh, each.Place);
      if (Extent(mesh.Box()) > LargestCaster) continue;
      shadow_.setUniformValue("toWorld", each.ToWorld);
      mesh.Draw(toShadow_ * each.ToWorld);
    }
    shadowMap_->End();
  }

  void DrawScene(const RMCanvas &canvas, QSize size) {
    const Transform camera = canvas.CameraFrame->World();
    const QMatrix4x4 toClip = Projection(static_cast<float>(size.width()) / static_cast<float>(size.height()),
                                         canvas.Viewport->GetBack()) *
                              MatrixOf(camera).inverted();
    target_->Begin(std::sqrt(FogColor[0]), std::sqrt(FogColor[1]), std::sqrt(FogColor[2]));
    gl_->glEnable(GL_DEPTH_TEST);
    camera_ = QVector3D(camera.Origin.x, camera.Origin.y, camera.Origin.z);
    bound_ = nullptr;
    gl_->glActiveTexture(GL_TEXTURE1);
    gl_->glBindTexture(GL_TEXTURE_2D, shadowMap_->Texture());
    gl_->glActiveTexture(GL_TEXTURE0);
    // What lies in front first: what it hides needn't be shaded.
    std::ranges::stable_sort(placed_, {},
                             [&](const Placed &each) { return Extent(store_->Mesh(*each.Mesh).Box()); });
    for (const Placed &each : placed_) DrawMesh(each, toClip);
  }

  void DrawMesh(const Placed &each, const QMatrix4x4 &toClip) {
    GpuMesh &mesh = store_->Mesh(*each.Mesh);
    if (Outside(mesh.Box(), toClip * each.ToWorld)) return;
    const auto &material = (*each.Mesh)->Material();
    const auto &texture = (*each.Mesh)->Texture();
    const ColorValue specular = material ? material->Specular : ColorValue{};
    // Only what lies flat and wide takes shadows: they show where a thing is above it.
    const float height = mesh.Box().High.y - mesh.Box().Low.y;
    const bool takes = Extent(mesh.Box()) > LargestCaster && Extent(mesh.Box()) < 2.2f * ShadowReach &&
                       height < LargestCaster;
    const int taps = !takes ? 0 : level_ == Quality::Full ? 4 : 1;
    QOpenGLShaderProgram &surface = SurfaceProgram(taps, texture != nullptr);
    if (bound_ != &surface) {
      bound_ = &surface;
      surface.bind();
      SetScene(surface, toClip);
    }
    surface.setUniformValue("toWorld", each.ToWorld);
    surface.setUniformValue("specular", QVector3D(specular.Red, specular.Green, specular.Blue));
    if (texture) gl_->glBindTexture(GL_TEXTURE_2D, store_->Texture(texture));
    mesh.Draw(toClip * each.ToWorld);
  }

  /// The program for surfaces of one kind: a test that never changes isn't made at every fragment.
  QOpenGLShaderProgram &SurfaceProgram(int taps, bool pictured) {
    auto &program = surfaces_[{taps, pictured}];
    if (!program) {
      program = std::make_unique<QOpenGLShaderProgram>();
      const std::string fragment = "#version 330 core\n#define SHADOW_TAPS " + std::to_string(taps) +
                                   "\n#define PICTURED " + std::to_string(pictured) + "\n" +
                                   SurfaceFragmentShader;
      Build(*program, SurfaceVertexShader, fragment.c_str());
    }
    return *program;
  }

  /// What is the same for every mesh of a picture.
  void SetScene(QOpenGLShaderProgram &surface, const QMatrix4x4 &toClip) {
    QMatrix4x4 toTexture;
    toTexture.translate(0.5f, 0.5f, 0.5f);
    toTexture.scale(0.5f);
    const Vector key = KeyLight();
    surface.setUniformValue("toClip", toClip);
    surface.setUniformValue("toShadow", toTexture * toShadow_);
    surface.setUniformValue("camera", camera_);
    surface.setUniformValue("keyDirection", QVector3D(key.x, key.y, key.z));
    surface.setUniformValue("fogDensity", 1.0f / FogDistance);
    surface.setUniformValue("fogColor", QVector3D(FogColor[0], FogColor[1], FogColor[2]));
    surface.setUniformValue("picture", 0);
    surface.setUniformValue("shadows", 1);
    surface.setUniformValue("shadowTexel", 1.0f / static_cast<float>(shadowMap_->Size()));
  }

  /// Chooses the level by the first pictures. The very first uploads everything, so it doesn't count.
  void Measure(double milliseconds) {
    if (asked_ != Quality::Measured || measured_.size() > MeasuredPictures) return;
    measured_.push_back(milliseconds);
    if (measured_.size() <= MeasuredPictures) return;
    measured_.erase(measured_.begin());
    std::ranges::sort(measured_);
    const double middle = measured_[measured_.size() / 2];
    measured_.push_back(middle);
    if (middle <= SlowPicture) return;
    level_ = Quality::Low;
    target_.reset();
    shadowMap_.reset();
    MakeStore();
  }

  Quality asked_;
  Quality level_;
  QOpenGLContext context_;
  QOffscreenSurface surfaceOff_;
  Gl *gl_ = nullptr;
  std::map<std::pair<int, bool>, std::unique_ptr<QOpenGLShaderProgram>> surfaces_;
  QOpenGLShaderProgram *bound_ = nullptr;
  QVector3D camera_;
  QOpenGLShaderProgram shadow_;
  std::unique_ptr<GpuStore> store_;
  std::unique_ptr<FrameBuffer> target_;
  std::unique_ptr<ShadowMap> shadowMap_;
  const QMatrix4x4 toShadow_ = ShadowMatrix();
  std::vector<Placed> placed_;
  std::vector<double> measured_; ///< ms of the first pictures
  QImage picture_;
  Ref<Direct3DRM3> drawnRoot_;
  std::uint64_t drawnRevision_ = 0;
  std::uint64_t drawnSignature_ = 0;
  std::unordered_map<const Direct3DRMMeshBuilder3 *, TextureCoordinate> drawnCoordinates_;
};

Renderer::Renderer(Quality quality) : drawing_(std::make_unique<Drawing>(quality)) {}
Renderer::~Renderer() = default;
bool Renderer::Draw(const RMCanvas &canvas, QSize devicePixels) {
  return drawing_->Draw(canvas, devicePixels);
}
const QImage &Renderer::Picture() const { return drawing_->Picture(); }
Quality Renderer::Level() const { return drawing_->Level(); }

// A possession drawn by the renderer and by OpenSceneGraph, frame by frame in turn: the same meshes with
// their textures from the same camera, on the same OpenGL, read back into memory. Prints wall times and their
// ratio at both levels of quality, for frames in which the camera rests and in which it moves.
//   compare_draw [DIRECTORY]   for a picture of the same frame by each

#include "match/frm_snapwedge.h"
#include "platform/desktop/renderer/lens.h"
#include "platform/desktop/renderer/renderer.h"
#include "platform/headless/headless_machine.h"
#include "tools/game_directory.h"
#include "tools/median.h"

#include <QGuiApplication>

#include <osg/CullFace>
#include <osg/Geometry>
#include <osg/Image>
#include <osg/MatrixTransform>
#include <osg/Texture2D>
#include <osgViewer/Viewer>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <map>
#include <numeric>
#include <utility>
#include <vector>

namespace {

constexpr QSize CanvasSize(417, 361);
constexpr int AimFrames = 160;          ///< before each shot: 4 s
constexpr int HandMoves = 80;           ///< the hand moves in the first of them
constexpr int ShotFrames[] = {9, 6, 4}; ///< for which the button is held; the piece stays on the table
constexpr int Unmeasured = 20;          ///< first frames, which upload everything

template <class Work> double Milliseconds(Work &&work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

/// OpenSceneGraph multiplies row vectors.
osg::Matrixd Transposed(const QMatrix4x4 &matrix) {
  osg::Matrixd to;
  for (int row = 0; row < 4; ++row)
    for (int column = 0; column < 4; ++column) to(row, column) = static_cast<double>(matrix(column, row));
  return to;
}

osg::ref_ptr<osg::Texture2D> TextureOf(const Direct3DRMTexture &texture) {
  const Ref<const ImageData> from = texture.Image();
  osg::ref_ptr<osg::Image> image = new osg::Image;
  image->allocateImage(from->Width, from->Height, 1, GL_RGBA, GL_UNSIGNED_BYTE);
  std::copy_n(reinterpret_cast<const unsigned char *>(from->Pixels.data()), image->getTotalSizeInBytes(),
              image->data());
  osg::ref_ptr<osg::Texture2D> to = new osg::Texture2D(image);
  to->setFilter(osg::Texture::MIN_FILTER, osg::Texture::LINEAR_MIPMAP_NEAREST);
  to->setWrap(osg::Texture::WRAP_S, osg::Texture::REPEAT);
  to->setWrap(osg::Texture::WRAP_T, osg::Texture::REPEAT);
  return to;
}

osg::ref_ptr<osg::MatrixTransform> NodeOf(const Direct3DRMMeshBuilder3 &mesh) {
  const MeshData &data = mesh.Data();
  osg::ref_ptr<osg::Vec3Array> positions = new osg::Vec3Array, normals = new osg::Vec3Array;
  osg::ref_ptr<osg::Vec2Array> coordinates = new osg::Vec2Array;
  osg::ref_ptr<osg::Vec4Array> colors = new osg::Vec4Array;
  for (std::size_t i = 0; i < data.Positions.size(); ++i) {
    positions->push_back({data.Positions[i].x, data.Positions[i].y, data.Positions[i].z});
    normals->push_back({data.Normals[i].x, data.Normals[i].y, data.Normals[i].z});
    coordinates->push_back({data.TextureCoordinates[i].u, data.TextureCoordinates[i].v});
    const FaceColor &color = data.FaceColors[i];
    colors->push_back({color.Red, color.Green, color.Blue, 1.0f});
  }
  osg::ref_ptr<osg::Geometry> geometry = new osg::Geometry;
  geometry->setUseVertexBufferObjects(true);
  geometry->setVertexArray(positions);
  geometry->setNormalArray(normals, osg::Array::BIND_PER_VERTEX);
  geometry->setTexCoordArray(0, coordinates, osg::Array::BIND_PER_VERTEX);
  geometry->setColorArray(colors, osg::Array::BIND_PER_VERTEX);
  geometry->addPrimitiveSet(
      new osg::DrawElementsUInt(GL_TRIANGLES, data.Indices.begin(), data.Indices.end()));
  if (mesh.Texture())
    geometry->getOrCreateStateSet()->setTextureAttributeAndModes(0, TextureOf(*mesh.Texture()));
  osg::ref_ptr<osg::MatrixTransform> node = new osg::MatrixTransform;
  node->setDataVariance(osg::Object::DYNAMIC);
  node->addChild(geometry);
  return node;
}

/// A frame buffer with several samples a pixel, which OpenSceneGraph doesn't get from this OpenGL by itself.
class Target {
public:
  explicit Target(int samples) : samples_(samples) {}

  void Bind(osg::RenderInfo &info) {
    gl_ = info.getState()->get<osg::GLExtensions>();
    if (!drawn_) {
      drawn_ = Buffer(samples_);
      resolved_ = Buffer(0);
    }
    gl_->glBindFramebuffer(GL_FRAMEBUFFER, drawn_);
  }

  /// Resolves the samples and reads the frame back, as the renderer does.
  void Read() {
    constexpr int Width = CanvasSize.width(), Height = CanvasSize.height();
    gl_->glBindFramebuffer(GL_READ_FRAMEBUFFER, drawn_);
    if (samples_ > 0) {
      gl_->glBindFramebuffer(GL_DRAW_FRAMEBUFFER, resolved_);
      gl_->glBlitFramebuffer(0, 0, Width, Height, 0, 0, Width, Height, GL_COLOR_BUFFER_BIT, GL_NEAREST);
      gl_->glBindFramebuffer(GL_READ_FRAMEBUFFER, resolved_);
    }
    glReadPixels(0, 0, Width, Height, GL_RGBA, GL_UNSIGNED_BYTE, Pixels.data());
  }

  std::vector<unsigned char> Pixels =
      std::vector<unsigned char>(static_cast<std::size_t>(4 * CanvasSize.width() * CanvasSize.height()));

private:
  GLuint Buffer(int samples) {
    GLuint buffer = 0, parts[2] = {};
    gl_->glGenFramebuffers(1, &buffer);
    gl_->glBindFramebuffer(GL_FRAMEBUFFER, buffer);
    gl_->glGenRenderbuffers(2, parts);
    const auto attach = [&](GLuint part, GLenum format, GLenum where) {
      gl_->glBindRenderbuffer(GL_RENDERBUFFER, part);
      gl_->glRenderbufferStorageMultisample(GL_RENDERBUFFER, samples, format, CanvasSize.width(),
                                            CanvasSize.height());
      gl_->glFramebufferRenderbuffer(GL_FRAMEBUFFER, where, GL_RENDERBUFFER, part);
    };
    attach(parts[0], GL_RGBA8, GL_COLOR_ATTACHMENT0);
    attach(parts[1], GL_DEPTH24_STENCIL8, GL_DEPTH_STENCIL_ATTACHMENT);
    if (gl_->glCheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE)
      throw RendererError("OpenSceneGraph has no such frame buffer here.");
    return buffer;
  }

  int samples_;
  osg::GLExtensions *gl_ = nullptr;
  GLuint drawn_ = 0, resolved_ = 0;
};

struct Callback : osg::Camera::DrawCallback {
  explicit Callback(std::function<void(osg::RenderInfo &)> work) : Work(std::move(work)) {}
  void operator()(osg::RenderInfo &info) const override { Work(info); }
  std::function<void(osg::RenderInfo &)> Work;
};

/// OpenSceneGraph with the scene of a canvas. Its sky stands still.
class Other {
public:
  explicit Other(int samples) : target_(samples), scene_(new osg::Group) {
    osg::ref_ptr<osg::GraphicsContext::Traits> traits = new osg::GraphicsContext::Traits;
    traits->readDISPLAY();
    traits->setUndefinedScreenDetailsToDefaultScreen();
    traits->width = CanvasSize.width();
    traits->height = CanvasSize.height();
    traits->pbuffer = true;
    traits->doubleBuffer = false;
    osg::ref_ptr<osg::GraphicsContext> context = osg::GraphicsContext::createGraphicsContext(traits);
    if (!context) throw RendererError("OpenSceneGraph has no off-screen context here.");

    // The view's handedness turns the faces round: clockwise ones are in front.
    scene_->getOrCreateStateSet()->setAttributeAndModes(new osg::CullFace(osg::CullFace::FRONT));
    osg::Camera *camera = viewer_.getCamera();
    camera->setGraphicsContext(context);
    camera->setViewport(0, 0, CanvasSize.width(), CanvasSize.height());
    camera->setDrawBuffer(GL_COLOR_ATTACHMENT0);
    camera->setReadBuffer(GL_COLOR_ATTACHMENT0);
    camera->setComputeNearFarMode(osg::Camera::DO_NOT_COMPUTE_NEAR_FAR);
    camera->setPreDrawCallback(new Callback([this](osg::RenderInfo &info) { target_.Bind(info); }));
    camera->setFinalDrawCallback(new Callback([this](osg::RenderInfo &) { target_.Read(); }));
    viewer_.setUseConfigureAffinity(false); // it would keep the threads of both drivers on one processor core
    viewer_.setThreadingModel(osgViewer::Viewer::SingleThreaded);
    viewer_.setLightingMode(osg::View::SKY_LIGHT);
    viewer_.getLight()->setPosition({-0.4f, 1.0f, 0.5f, 0.0f});
    viewer_.getLight()->setAmbient({0.5f, 0.5f, 0.5f, 1.0f});
    viewer_.setSceneData(scene_);
    viewer_.setCameraManipulator(nullptr);
    viewer_.realize();
  }

  /// Brings the scene up to date. @return whether the camera has moved
  bool Follow(const RMCanvas &canvas) {
    std::vector<Item> items = Collect(*canvas.SceneFrame);
    for (const auto &[key, node] : nodes_) node->setNodeMask(0);
    for (Item &item : items) {
      item.SetBounds(Bounds::Of((*item.Mesh)->Data()));
      auto &node = nodes_[{item.Mesh->get(), item.Frame}];
      if (!node) {
        node = NodeOf(**item.Mesh);
        scene_->addChild(node);
      }
      node->setNodeMask(~0u);
      node->setMatrix(Transposed(item.ToWorld));
    }
    const float aspect = static_cast<float>(CanvasSize.width()) / static_cast<float>(CanvasSize.height());
    const CameraView view = lens_.Next(*canvas.CameraFrame, items, aspect);
    const float back = canvas.Viewport->GetBack();
    QMatrix4x4 projection; // left-handed, with the view along +z
    projection.fill(0);
    projection(0, 0) = 2.0f / view.Height / aspect;
    projection(1, 1) = 2.0f / view.Height;
    projection(2, 2) = (back + NearPlane) / (back - NearPlane);
    projection(2, 3) = -2 * back * NearPlane / (back - NearPlane);
    projection(3, 2) = 1;
    const bool moved = view.Camera != camera_ || view.Height != height_;
    camera_ = view.Camera;
    height_ = view.Height;
    viewer_.getCamera()->setProjectionMatrix(Transposed(projection));
    viewer_.getCamera()->setViewMatrix(Transposed(MatrixOf(view.Camera).inverted()));
    return moved;
  }

  void Draw() { viewer_.frame(); }

  QImage Frame() const {
    return QImage(target_.Pixels.data(), CanvasSize.width(), CanvasSize.height(), QImage::Format_RGBX8888)
        .mirrored();
  }

private:
  Target target_;
  osg::ref_ptr<osg::Group> scene_;
  osgViewer::Viewer viewer_;
  std::map<std::pair<const void *, const void *>, osg::ref_ptr<osg::MatrixTransform>> nodes_;
  Lens lens_;
  Transform camera_;
  float height_ = 0;
};

struct Times {
  std::vector<double> Own, Others; ///< ms of each frame

  void Report(const char *name) const {
    std::printf("  %-14s %4zu frames: ours %.2f ms, OpenSceneGraph %.2f ms, ratio %.2f\n", name, Own.size(),
                Median(Own), Median(Others), Median(Own) / Median(Others));
  }
};

double Sum(const std::vector<double> &values) { return std::accumulate(values.begin(), values.end(), 0.0); }

/// Aims and shoots three times. `draw` is called at each frame.
void Possess(const std::function<void(const RMCanvas &)> &draw) {
  HeadlessMachine machine(GameDirectory());
  Program program(machine);
  program.GameMode = "Human";
  program.SoundOn = False;
  frmSnapwedge window(machine, program);
  window.SetUp();
  machine.OnDraw = [&](Canvas &) { draw(window.RMCanvas1); };
  for (const int held : ShotFrames) {
    for (int frame = 0; frame < AimFrames; ++frame) {
      if (frame < HandMoves) machine.MoveMouse(frame / 8 % 2 == 0 ? 3 : -3, 0);
      window.Frame("A");
    }
    machine.PressMouse(1);
    for (int frame = 0; frame < held; ++frame) window.Frame("A");
    machine.ReleaseMouse(1);
    window.Frame("A");
  }
}

/// @param pictures  a directory for a frame of each, or empty
void Compare(const char *name, Quality quality, int samples, const QString &pictures) {
  Other other(samples);
  Renderer renderer(quality);
  Times rests, moves;
  int frames = 0;
  Possess([&](const RMCanvas &canvas) {
    const bool moved = other.Follow(canvas);
    bool drawn = false;
    const double own = Milliseconds([&] { drawn = renderer.Draw(canvas, CanvasSize); });
    if (!drawn) return;
    const double others = Milliseconds([&] { other.Draw(); });
    if (++frames == Unmeasured && !pictures.isEmpty()) {
      other.Frame().save(QString("%1/openscenegraph-%2.png").arg(pictures, name));
      renderer.Frame().save(QString("%1/own-%2.png").arg(pictures, name));
    }
    if (frames <= Unmeasured) return;
    Times &times = moved ? moves : rests;
    times.Own.push_back(own);
    times.Others.push_back(others);
  });
  const double own = Sum(rests.Own) + Sum(moves.Own), others = Sum(rests.Others) + Sum(moves.Others);
  std::printf("%s, samples a pixel: %d\n", name, std::max(samples, 1));
  rests.Report("camera rests");
  moves.Report("camera moves");
  std::printf("  possession: ours %.0f ms, OpenSceneGraph %.0f ms, ratio %.2f\n", own, others, own / others);
}

} // namespace

int main(int argc, char **argv) {
  QGuiApplication application(argc, argv);
  const QString pictures = argc > 1 ? argv[1] : "";
  Compare("low", Quality::Low, 0, pictures);
  Compare("full", Quality::Full, 4, pictures);
}

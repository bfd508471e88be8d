// A whole frame of the renderer and of OpenSceneGraph, in turn: the same meshes with their textures from the
// same camera, on the same OpenGL, read back into memory. Medians of wall time and their ratio, at both
// levels of quality.

#include "match/frm_snapwedge.h"
#include "platform/desktop/renderer/lens.h"
#include "platform/desktop/renderer/placed.h"
#include "platform/desktop/renderer/renderer.h"
#include "platform/headless/headless_machine.h"
#include "tools/game_directory.h"

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
#include <vector>

namespace {

constexpr QSize CanvasSize(417, 361);
constexpr int Frames = 120;
constexpr int Unmeasured = 20;   ///< first frames, which upload everything
constexpr int LensSettles = 200; ///< updates after which the lens rests

double Median(std::vector<double> values) {
  std::ranges::sort(values);
  return values[values.size() / 2];
}

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

osg::ref_ptr<osg::Node> NodeOf(const Placed &placed) {
  const Direct3DRMMeshBuilder3 &mesh = **placed.Mesh;
  const MeshData &data = mesh.Data();
  osg::ref_ptr<osg::Vec3Array> positions = new osg::Vec3Array, normals = new osg::Vec3Array;
  osg::ref_ptr<osg::Vec2Array> coordinates = new osg::Vec2Array;
  osg::ref_ptr<osg::Vec4Array> colors = new osg::Vec4Array(static_cast<unsigned>(data.Positions.size()));
  for (std::size_t i = 0; i < data.Positions.size(); ++i) {
    positions->push_back({data.Positions[i].x, data.Positions[i].y, data.Positions[i].z});
    normals->push_back({data.Normals[i].x, data.Normals[i].y, data.Normals[i].z});
    coordinates->push_back({data.TextureCoordinates[i].u, data.TextureCoordinates[i].v});
  }
  for (std::size_t i = 0; i < data.Indices.size(); ++i) {
    const FaceColor &color = data.FaceColors[i / 3];
    (*colors)[data.Indices[i]] = {color.Red, color.Green, color.Blue, 1.0f};
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
  osg::ref_ptr<osg::MatrixTransform> node = new osg::MatrixTransform(Transposed(placed.ToWorld));
  node->addChild(geometry);
  return node;
}

/// Reads the frame back, as the renderer does.
struct ReadBack : osg::Camera::DrawCallback {
  mutable std::vector<unsigned char> Pixels =
      std::vector<unsigned char>(static_cast<std::size_t>(4 * CanvasSize.width() * CanvasSize.height()));
  mutable GLint Samples = 0;
  void operator()(osg::RenderInfo &) const override {
    glGetIntegerv(GL_SAMPLES, &Samples);
    glReadPixels(0, 0, CanvasSize.width(), CanvasSize.height(), GL_BGRA, GL_UNSIGNED_INT_8_8_8_8_REV,
                 Pixels.data());
  }
};

struct Other {
  Other(frmSnapwedge &window, unsigned samples) : read(new ReadBack) {
    osg::ref_ptr<osg::GraphicsContext::Traits> traits = new osg::GraphicsContext::Traits;
    traits->readDISPLAY();
    traits->setUndefinedScreenDetailsToDefaultScreen();
    traits->width = CanvasSize.width();
    traits->height = CanvasSize.height();
    traits->pbuffer = true;
    traits->doubleBuffer = false;
    traits->samples = samples;
    osg::ref_ptr<osg::GraphicsContext> context = osg::GraphicsContext::createGraphicsContext(traits);
    if (!context) throw RendererError("OpenSceneGraph has no off-screen context here.");

    osg::ref_ptr<osg::Group> scene = new osg::Group;
    std::vector<Seen> seen;
    for (const Placed &placed : Collect(*window.RMCanvas1.SceneFrame)) {
      scene->addChild(NodeOf(placed));
      const MeshData &data = (*placed.Mesh)->Data();
      Bounds box(data.Positions.front());
      for (const Vector &position : data.Positions) box.Widen(position);
      seen.push_back({placed.Frame, placed.Place, box});
    }
    const float aspect = static_cast<float>(CanvasSize.width()) / static_cast<float>(CanvasSize.height());
    Lens lens;
    for (int update = 0; update < LensSettles; ++update)
      view = lens.Next(*window.RMCanvas1.CameraFrame, seen, aspect);
    const float back = window.RMCanvas1.Viewport->GetBack();
    QMatrix4x4 projection; // left-handed, with the view along +z
    projection.fill(0);
    projection(0, 0) = 2.0f / view.Height / aspect;
    projection(1, 1) = 2.0f / view.Height;
    projection(2, 2) = (back + NearPlane) / (back - NearPlane);
    projection(2, 3) = -2 * back * NearPlane / (back - NearPlane);
    projection(3, 2) = 1;

    // The view's handedness turns the faces round: clockwise ones are in front.
    scene->getOrCreateStateSet()->setAttributeAndModes(new osg::CullFace(osg::CullFace::FRONT));
    osg::Camera *camera = viewer.getCamera();
    camera->setGraphicsContext(context);
    camera->setViewport(0, 0, CanvasSize.width(), CanvasSize.height());
    camera->setDrawBuffer(GL_FRONT);
    camera->setReadBuffer(GL_FRONT);
    camera->setComputeNearFarMode(osg::Camera::DO_NOT_COMPUTE_NEAR_FAR);
    camera->setProjectionMatrix(Transposed(projection));
    camera->setFinalDrawCallback(read);
    viewer.setThreadingModel(osgViewer::Viewer::SingleThreaded);
    viewer.setLightingMode(osg::View::SKY_LIGHT);
    viewer.getLight()->setPosition({-0.4f, 1.0f, 0.5f, 0.0f});
    viewer.getLight()->setAmbient({0.5f, 0.5f, 0.5f, 1.0f});
    viewer.setSceneData(scene);
    viewer.setCameraManipulator(nullptr);
    viewer.realize();
  }

  void Draw(float aside) {
    QMatrix4x4 moved = MatrixOf(view.Camera);
    moved.translate(aside, 0, 0);
    viewer.getCamera()->setViewMatrix(Transposed(moved.inverted()));
    viewer.frame();
  }

  osg::ref_ptr<ReadBack> read;
  osgViewer::Viewer viewer;
  View view;
};

void Compare(frmSnapwedge &window, const char *name, Quality quality, unsigned samples) {
  Other other(window, samples);
  Renderer renderer(quality);
  std::vector<double> ownTimes, otherTimes;
  for (int frame = 0; frame < Frames; ++frame) {
    const float aside = frame % 2 == 0 ? 0.01f : -0.01f;
    window.Wind();
    window.CameraFrame->SetPosition(window.CameraFrame, aside, 0, 0);
    const double own = Milliseconds([&] { renderer.Draw(window.RMCanvas1, CanvasSize); });
    const double others = Milliseconds([&] { other.Draw(aside); });
    if (frame < Unmeasured) continue;
    ownTimes.push_back(own);
    otherTimes.push_back(others);
  }
  QImage(other.read->Pixels.data(), CanvasSize.width(), CanvasSize.height(), QImage::Format_RGB32)
      .mirrored()
      .save(QString("openscenegraph-%1.png").arg(name));
  renderer.Frame().save(QString("own-%1.png").arg(name));
  std::printf("%s: ours %.2f ms, OpenSceneGraph with %d samples a pixel %.2f ms, ratio %.2f\n", name,
              Median(ownTimes), std::max(other.read->Samples, 1), Median(otherTimes),
              Median(ownTimes) / Median(otherTimes));
}

} // namespace

int main(int argc, char **argv) {
  QGuiApplication application(argc, argv);
  HeadlessMachine machine(GameDirectory());
  Program program(machine);
  program.GameMode = "Human";
  program.SoundOn = False;
  frmSnapwedge window(machine, program);
  window.SetUp();
  Compare(window, "low", Quality::Low, 0);
  Compare(window, "full", Quality::Full, 4);
}

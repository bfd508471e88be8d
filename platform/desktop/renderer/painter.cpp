#include "platform/desktop/renderer/painter.h"

#include "platform/desktop/renderer/light.h"
#include "platform/desktop/renderer/shaders.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace {

constexpr float SmallestSky = 1000.0f; ///< scene units: a mesh of that size leaves no background visible

// In a view up to this height, detail beyond `LargestTexture` is hardly visible.
constexpr int SmallView = 400; ///< pixels
constexpr QSize LargestTexture(512, 512);

constexpr float SmallTarget = 0.19f;    ///< of the frame's height: a larger target has no outline
constexpr float OutlineWidth = 0.0028f; ///< of the frame's height
constexpr float OutlineDepth = 2.4e-4f; ///< behind the mesh, normalised device depth

float AspectOf(QSize size) { return static_cast<float>(size.width()) / static_cast<float>(size.height()); }

/// Left-handed, with the view along +z, and upside down: rows are read back from the bottom.
QMatrix4x4 Projection(float height, float aspect, float back) {
  const float up = height * NearPlane / 2, right = up * aspect;
  QMatrix4x4 projection;
  projection.frustum(-right, right, up, -up, NearPlane, back);
  projection.scale(1, 1, -1);
  return projection;
}

/// The stands, the sky or the hand.
bool IsLarge(const Item &item) { return !item.Ground && item.Box.Extent() > LargestThing; }

/// Sort key of the drawing order. Small meshes come first: they are in front, and the pixels that they hide
/// needn't be shaded. Paint comes after the ground under it, with which it is blended. The hand, which is
/// large, comes after the ground, also in a full redraw: at equal depth the mesh drawn first is visible, and
/// while aiming the hand is drawn on the kept ground.
auto DrawingOrder(const Item &item) {
  return std::tuple(IsLarge(item), item.Ground, item.Ground && item.Drawn->IsPaint(), item.Box.Extent());
}

} // namespace

Painter::Painter(Gl &gl, const PaintQuality &quality, Lens &lens)
    : gl_(gl), lens_(lens), quality_(quality), shadows_(gl, quality.ShadowSize, quality.ShadowTaps) {
  BuildProgram(plain_, "", SurfaceVertexShader, SurfaceFragmentShader);
  BuildProgram(textured_, "#define TEXTURED\n", SurfaceVertexShader, SurfaceFragmentShader);
  BuildProgram(painted_, "#define PAINT\n", SurfaceVertexShader, SurfaceFragmentShader);
  BuildProgram(backdrop_, "", BackdropVertexShader, BackdropFragmentShader);
  BuildProgram(outline_, "", SilhouetteVertexShader, SilhouetteFragmentShader);
  noVertices_.create();
}

bool Painter::Paint(const Direct3DRMFrame3 &scene, const Direct3DRMFrame3 &camera, float back,
                    QImage &image) {
  if (!target_ || target_->Size() != image.size()) Resize(image.size());
  std::vector<Item> items = Collect(scene);
  for (Item &item : items) {
    item.Drawn = &meshes_.try_emplace(*item.Mesh, gl_).first->second;
    item.Changed = item.Drawn->Upload(**item.Mesh, item.ToWorld);
    item.SetBounds(item.Drawn->Box());
  }
  const float aspect = AspectOf(image.size());
  const CameraView view = lens_.Next(camera, items, aspect);
  toClip_ = Projection(view.Height, aspect, back) * MatrixOf(view.Camera).inverted();
  camera_ = ToQt(view.Camera.Origin);
  outlined_ = camera.LookedAt().get();
  for (const Item &item : items) {
    const float height = camera_.distanceToPoint(item.Origin()) * view.Height; // of the frame at the item
    if (item.Frame == outlined_ && item.Own.Extent() > SmallTarget * height) outlined_ = nullptr;
  }

  MarkGround(items);
  std::ranges::stable_sort(items, {}, DrawingOrder);
  const auto firstGround = std::ranges::find(items, true, &Item::Ground);
  const std::span<const Item> grounds(firstGround,
                                      std::ranges::find(firstGround, items.end(), false, &Item::Ground));

  gl_.glEnable(GL_DEPTH_TEST);
  gl_.glDisable(GL_CULL_FACE);
  const bool shadowsMoved = shadows_.Update(items, grounds);

  const Motion::Change change = motion_.Next(items, shadowsMoved, toClip_);
  if (change == Motion::Change::None) return false;
  const bool allMove = std::ranges::all_of(items, &Item::Moves);
  const bool open = items.empty() || items.back().Box.Extent() < SmallestSky;
  if (change == Motion::Change::Still) {
    target_->Begin();
    if (!allMove) {
      Draw(items, grounds, false);
      if (open) DrawBackdrop();
      target_->Keep();
    }
  } else {
    target_->BeginOnKept();
  }
  Draw(items, grounds, true);
  if (allMove && open) DrawBackdrop();
  return target_->Read(image);
}

void Painter::Resize(QSize size) {
  target_.emplace(gl_, size, quality_.Samples);
  const bool isSmall = size.height() <= SmallView && !quality_.FineTextures;
  if (std::exchange(smallView_, isSmall) != isSmall) textures_.clear();
  motion_.Reset();
}

/// Draws the items that move, or those that are still. Flushes between groups: software OpenGL draws a group
/// on the other cores while the next is prepared on this one.
void Painter::Draw(std::span<const Item> items, std::span<const Item> grounds, bool moving) {
  const auto draw = [&](auto first, auto end) {
    for (; first != end; ++first) {
      if (first->Moves == moving) DrawItem(*first);
    }
    gl_.glFlush();
  };
  gl_.glDepthFunc(GL_LESS);
  gl_.glEnable(GL_CULL_FACE); // front faces are clockwise, and the frame is upside down
  gl_.glFrontFace(GL_CCW);
  draw(items.begin(), grounds.begin());
  if (!grounds.empty() && grounds.front().Moves == moving) {
    gl_.glEnable(GL_STENCIL_TEST);
    gl_.glStencilFunc(GL_ALWAYS, 1, 0xff);
    gl_.glStencilOp(GL_KEEP, GL_KEEP, GL_REPLACE);
    draw(grounds.begin(), grounds.end());
    shadows_.Draw(toClip_);
  }
  draw(grounds.end(), items.end());
  gl_.glDisable(GL_CULL_FACE);
}

void Painter::DrawItem(const Item &item) {
  if (item.Drawn->IsPaint()) {
    gl_.glEnable(GL_BLEND);
    gl_.glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    DrawFaces(item, painted_, GpuMesh::Faces::All);
    gl_.glDisable(GL_BLEND);
  } else if (const auto &texture = (*item.Mesh)->Texture()) {
    DrawFaces(item, plain_, GpuMesh::Faces::Plain);
    Texture(texture).bind();
    DrawFaces(item, textured_, GpuMesh::Faces::Textured);
  } else {
    DrawFaces(item, plain_, GpuMesh::Faces::All);
  }
  if (item.Frame == outlined_) DrawOutline(item);
}

void Painter::DrawFaces(const Item &item, QOpenGLShaderProgram &surface, GpuMesh::Faces faces) {
  const auto &material = (*item.Mesh)->Material();
  const ColorValue specular = material ? material->Specular : ColorValue{};
  surface.bind();
  surface.setUniformValue("toWorld", item.ToWorld);
  surface.setUniformValue("toClip", toClip_);
  surface.setUniformValue("halfFrame", QSizeF(target_->Size()) / 2);
  surface.setUniformValue("camera", camera_);
  surface.setUniformValue("keyDirection", KeyLight());
  surface.setUniformValue("specular", QVector3D(specular.Red, specular.Green, specular.Blue));
  item.Drawn->Draw(faces);
}

void Painter::DrawOutline(const Item &item) {
  outline_.bind();
  const float up = 2 * OutlineWidth, right = up / AspectOf(target_->Size()); // half the frame is 1
  for (const QVector2D &side :
       {QVector2D(right, 0), QVector2D(-right, 0), QVector2D(0, up), QVector2D(0, -up)}) {
    QMatrix4x4 shift;
    shift.translate({side, OutlineDepth});
    outline_.setUniformValue("toClip", shift * toClip_ * item.ToWorld);
    item.Drawn->Draw(GpuMesh::Faces::All);
  }
}

/// In a small view a large texture is uploaded at a lower resolution, because software OpenGL keeps it in the
/// program's own memory.
QOpenGLTexture &Painter::Texture(const Ref<Direct3DRMTexture> &texture) {
  auto &entry = textures_[texture];
  if (entry) return *entry;
  const Ref<const ImageData> data = texture->Image();
  QImage image(data->Pixels.data(), data->Width, data->Height, QImage::Format_RGBA8888);
  if (smallView_)
    image =
        image.scaled(image.size().boundedTo(LargestTexture), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
  entry = std::make_unique<QOpenGLTexture>(image);
  texture->ReleaseImage();
  entry->setMinMagFilters(quality_.FineTextures ? QOpenGLTexture::LinearMipMapLinear
                                                : QOpenGLTexture::LinearMipMapNearest,
                          QOpenGLTexture::Linear);
  entry->setWrapMode(QOpenGLTexture::Repeat);
  if (quality_.Anisotropy > 1.0f && QOpenGLTexture::hasFeature(QOpenGLTexture::AnisotropicFiltering))
    entry->setMaximumAnisotropy(quality_.Anisotropy);
  return *entry;
}

/// Fills the pixels that no mesh covers.
void Painter::DrawBackdrop() {
  backdrop_.bind();
  backdrop_.setUniformValue("toScene", toClip_.inverted());
  backdrop_.setUniformValue("camera", camera_);
  noVertices_.bind();
  gl_.glDepthFunc(GL_LEQUAL);
  gl_.glDrawArrays(GL_TRIANGLES, 0, 3);
}

#include "platform/desktop/renderer/painter.h"

#include "platform/desktop/renderer/light.h"
#include "platform/desktop/renderer/shaders.h"

#include <algorithm>
#include <string>
#include <tuple>
#include <utility>

namespace {

constexpr float SmallestSky = 1000.0f; ///< scene units: a mesh of that size leaves no background visible

// In a view up to this height, detail beyond `LargestTexture` is hardly visible.
constexpr int SmallView = 400; ///< pixels
constexpr QSize LargestTexture(512, 512);

constexpr float SmallTarget = 0.19f;    ///< of the frame's height: a larger target has no outline
constexpr float OutlineWidth = 0.0028f; ///< of the frame's height
constexpr float OutlineDepth = 1000.0f; ///< steps of the depth buffer, about a scene unit at the far end

/// Bits of a surface shader's variant: it has a texture, is strokes of paint on the ground, has highlights.
enum : unsigned { Textured = 1, Stroked = 2, Gleaming = 4 };

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
  BuildProgram(backdrop_, "", BackdropVertexShader, BackdropFragmentShader);
  BuildProgram(outline_, "", OutlineVertexShader, OutlineFragmentShader);
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
  const float aspect = static_cast<float>(image.width()) / static_cast<float>(image.height());
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
  const auto &material = (*item.Mesh)->Material();
  const auto &texture = (*item.Mesh)->Texture();
  const ColorValue specular = material ? material->Specular : ColorValue{};
  const bool gleams = specular.Red + specular.Green + specular.Blue > 0.0f;
  const bool paint = item.Drawn->IsPaint();
  if (paint) {
    gl_.glEnable(GL_BLEND);
    gl_.glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
  }
  const auto draw = [&](bool textured, GpuMesh::Faces faces) {
    QOpenGLShaderProgram &surface =
        SurfaceProgram((textured ? Textured : 0U) | (paint ? Stroked : 0U) | (gleams ? Gleaming : 0U));
    surface.bind();
    surface.setUniformValue("toWorld", item.ToWorld);
    surface.setUniformValue("toClip", toClip_);
    surface.setUniformValue("halfFrame", QSizeF(target_->Size()) / 2);
    surface.setUniformValue("camera", camera_);
    surface.setUniformValue("keyDirection", KeyLight());
    surface.setUniformValue("specular", QVector3D(specular.Red, specular.Green, specular.Blue));
    item.Drawn->Draw(faces);
  };
  draw(false, texture ? GpuMesh::Faces::Plain : GpuMesh::Faces::All);
  if (texture) {
    Texture(texture).bind();
    draw(true, GpuMesh::Faces::Textured);
  }
  if (paint) gl_.glDisable(GL_BLEND);
  if (item.Frame == outlined_) DrawOutline(item);
}

void Painter::DrawOutline(const Item &item) {
  outline_.bind();
  outline_.setUniformValue("toClip", toClip_ * item.ToWorld);
  gl_.glEnable(GL_POLYGON_OFFSET_FILL); // behind the mesh itself
  gl_.glPolygonOffset(0, OutlineDepth);
  const float aspect =
      static_cast<float>(target_->Size().width()) / static_cast<float>(target_->Size().height());
  const QVector2D width(2 * OutlineWidth / aspect, 2 * OutlineWidth);
  for (const QVector2D &side : {QVector2D(1, 0), QVector2D(-1, 0), QVector2D(0, 1), QVector2D(0, -1)}) {
    outline_.setUniformValue("shift", side * width);
    item.Drawn->Draw(GpuMesh::Faces::All);
  }
  gl_.glDisable(GL_POLYGON_OFFSET_FILL);
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
  if (quality_.Anisotropy > 1.0f) entry->setMaximumAnisotropy(quality_.Anisotropy);
  return *entry;
}

/// The shader variant for a kind of surface, so that no fragment tests what never changes.
QOpenGLShaderProgram &Painter::SurfaceProgram(unsigned kind) {
  auto &program = surfaces_[kind];
  if (!program) {
    program = std::make_unique<QOpenGLShaderProgram>();
    const auto flag = [kind](unsigned bit) { return kind & bit ? "1\n" : "0\n"; };
    const std::string definitions = std::string("#define TEXTURED ") + flag(Textured) + "#define PAINT " +
                                    flag(Stroked) + "#define SPECULAR " + flag(Gleaming);
    BuildProgram(*program, definitions, SurfaceVertexShader, SurfaceFragmentShader);
  }
  return *program;
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

#include "platform/desktop/renderer/shadows.h"

#include "platform/desktop/renderer/renderer.h"
#include "platform/desktop/renderer/shaders.h"

#include <algorithm>
#include <utility>

namespace {

constexpr float Reach = 118.0f;  ///< scene units from the middle to the border of the map
constexpr float Height = 120.0f; ///< scene units: highest caster

constexpr float Softness = 0.22f; ///< scene units, of a mesh on the ground
constexpr float SoftnessPerRise = 0.022f;
constexpr float LargestSoftness = 1.6f;
constexpr float Halo = 1.5f;
constexpr float HaloPerRise = 0.02f;
constexpr float LargestHalo = 3.0f;
constexpr float Margin = 0.5f; ///< scene units around a shadow

QMatrix4x4 ToLight() {
  QMatrix4x4 toLight;
  toLight.ortho(Reach, -Reach, -Reach, Reach, -Reach - Height, Reach + Height);
  toLight.lookAt(KeyLight(), {}, {0, 0, 1});
  return toLight;
}

/// The bounds of a box's shadow on level ground.
Bounds ShadowOf(const Bounds &box, float ground) {
  const QVector3D key = KeyLight();
  const auto projected = [&](int number) {
    const Vector corner = box.Corner(number);
    const float distance = std::max(corner.y - ground, 0.0f) / key.y();
    return Vector{corner.x - key.x() * distance, ground, corner.z - key.z() * distance};
  };
  Bounds around(projected(0));
  for (int corner = 1; corner < 8; ++corner) around.Widen(projected(corner));
  return around;
}

/// From the scene into the map, 0 to 1.
QMatrix4x4 ToMap() {
  QMatrix4x4 toTexture;
  toTexture.translate(0.5f, 0.5f, 0.5f);
  toTexture.scale(0.5f);
  return toTexture * ToLight();
}

/// A length in the scene as a share of the map.
float InMap(float length) { return length / (2.0f * Reach); }

} // namespace

Shadows::Shadows(Gl &gl, int size, int taps) : gl_(gl), size_(size) {
  BuildProgram(toMap_, ShadowVertexShader, ShadowFragmentShader);
  BuildProgram(shade_, ShadeVertexShader,
               "#version 330 core\n#define TAPS " + std::to_string(taps) + "\n" + ShadeFragmentShader);
  noVertices_.create();
  map_.setFormat(QOpenGLTexture::D16);
  map_.setSize(size, size);
  map_.allocateStorage();
  map_.setMinMagFilters(QOpenGLTexture::Linear, QOpenGLTexture::Linear);
  map_.setWrapMode(QOpenGLTexture::ClampToEdge);
  map_.setComparisonMode(QOpenGLTexture::CompareRefToTexture);
  map_.setComparisonFunction(QOpenGLTexture::CompareLessEqual);
  gl_.glGenFramebuffers(1, &buffer_);
  gl_.glBindFramebuffer(GL_FRAMEBUFFER, buffer_);
  gl_.glFramebufferTexture2D(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_TEXTURE_2D, map_.textureId(), 0);
  gl_.glDrawBuffer(GL_NONE);
  gl_.glReadBuffer(GL_NONE);
  if (gl_.glCheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE) {
    throw RendererError("this OpenGL can't draw shadows.");
  }
  gl_.glClear(GL_DEPTH_BUFFER_BIT);
}

Shadows::~Shadows() { gl_.glDeleteFramebuffers(1, &buffer_); }

bool Shadows::Update(std::span<const Item> items, std::span<const Item> grounds) {
  regions_.clear();
  std::vector<const Item *> casters;
  if (!grounds.empty()) {
    const Bounds &ground =
        std::ranges::max(grounds, {}, [](const Item &item) { return item.Box.Extent(); }).Box;
    for (const Item &item : items) {
      const float rise = item.Box.Low.y - ground.High.y;
      if (item.Ground || item.Box.Extent() > LargestThing || item.Box.High.y < ground.High.y) continue;
      Bounds shadow = ShadowOf(item.Box, ground.High.y);
      const float softness = std::min(Softness + SoftnessPerRise * std::max(rise, 0.0f), LargestSoftness);
      const float halo = std::min(Halo + HaloPerRise * std::max(rise, 0.0f), LargestHalo);
      const float around = std::max(softness, halo) + Margin;
      shadow.Low.x = std::max(shadow.Low.x - around, ground.Low.x);
      shadow.Low.z = std::max(shadow.Low.z - around, ground.Low.z);
      shadow.High.x = std::min(shadow.High.x + around, ground.High.x);
      shadow.High.z = std::min(shadow.High.z + around, ground.High.z);
      if (shadow.Low.x >= shadow.High.x || shadow.Low.z >= shadow.High.z) continue;
      regions_.push_back({shadow, softness, halo});
      casters.push_back(&item);
    }
  }
  std::vector<const GpuMesh *> meshes;
  for (const Item *caster : casters) meshes.push_back(caster->Mesh);
  const bool moved = std::exchange(drawn_, meshes) != meshes || std::ranges::any_of(casters, &Item::Changed);
  if (moved) DrawMap(casters);
  return moved;
}

void Shadows::DrawMap(std::span<const Item *const> casters) {
  gl_.glBindFramebuffer(GL_FRAMEBUFFER, buffer_);
  gl_.glViewport(0, 0, size_, size_);
  gl_.glEnable(GL_SCISSOR_TEST);
  for (const QRect &part : used_) {
    gl_.glScissor(part.x(), part.y(), part.width(), part.height());
    gl_.glClear(GL_DEPTH_BUFFER_BIT);
  }
  gl_.glDisable(GL_SCISSOR_TEST);
  used_.clear();
  for (const Region &region : regions_) used_.push_back(InPixels(region.Ground));

  gl_.glEnable(GL_DEPTH_CLAMP); // casters beyond the near plane count too
  gl_.glDepthFunc(GL_LESS);
  toMap_.bind();
  toMap_.setUniformValue("toShadow", ToLight());
  for (const Item *caster : casters) {
    toMap_.setUniformValue("toWorld", caster->Where.ToWorld);
    caster->Mesh->Draw(GpuMesh::Faces::All);
  }
  gl_.glDisable(GL_DEPTH_CLAMP);
}

void Shadows::Draw(const QMatrix4x4 &toClip) {
  shade_.bind();
  shade_.setUniformValue("toClip", toClip);
  shade_.setUniformValue("toShadow", ToMap());
  shade_.setUniformValue("shade", ShadeOnGround());
  noVertices_.bind();
  map_.bind();
  gl_.glDisable(GL_DEPTH_TEST);
  gl_.glEnable(GL_BLEND);
  gl_.glBlendFunc(GL_ZERO, GL_SRC_COLOR);
  gl_.glEnable(GL_STENCIL_TEST);
  gl_.glStencilFunc(GL_EQUAL, 1, 0xff);
  gl_.glStencilOp(GL_KEEP, GL_KEEP, GL_INCR); // only the first of overlapping regions shades a pixel
  for (const Region &region : regions_) {
    shade_.setUniformValue("low", ToQt(region.Ground.Low));
    shade_.setUniformValue("high", ToQt(region.Ground.High));
    shade_.setUniformValue("softness", InMap(region.Softness));
    shade_.setUniformValue("halo", InMap(region.Halo));
    gl_.glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
  }
  gl_.glDisable(GL_STENCIL_TEST);
  gl_.glDisable(GL_BLEND);
  gl_.glEnable(GL_DEPTH_TEST);
}

QRect Shadows::InPixels(const Bounds &ground) const {
  const QMatrix4x4 toMap = ToMap();
  QRectF around;
  for (int corner = 0; corner < 8; ++corner) {
    const QVector3D p = toMap.map(ToQt(ground.Corner(corner))) * static_cast<float>(size_);
    const QRectF pixel(static_cast<qreal>(p.x()) - 1.0, static_cast<qreal>(p.y()) - 1.0, 2.0, 2.0);
    around = corner == 0 ? pixel : around.united(pixel);
  }
  return around.toAlignedRect().intersected(QRect(0, 0, size_, size_));
}

#include "platform/desktop/renderer/shadows.h"

#include "platform/desktop/renderer/gpu_mesh.h"
#include "platform/desktop/renderer/light.h"
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
  Bounds shadow;
  for (QVector3D corner : box.Corners()) {
    corner -= key * (std::max(corner.y() - ground, 0.0f) / key.y());
    corner.setY(ground);
    shadow.Widen(corner);
  }
  return shadow;
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
  BuildProgram(toMap_, "", SilhouetteVertexShader, SilhouetteFragmentShader);
  BuildProgram(shade_, "#define TAPS " + std::to_string(taps) + "\n", ShadeVertexShader, ShadeFragmentShader);
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
}

Shadows::~Shadows() { gl_.glDeleteFramebuffers(1, &buffer_); }

bool Shadows::Update(std::span<const Item> items, std::span<const Item> grounds) {
  const std::vector<Region> last = std::exchange(regions_, {});
  bool changed = false;
  if (!grounds.empty()) {
    const Bounds &ground =
        std::ranges::max(grounds, {}, [](const Item &item) { return item.Box.Extent(); }).Box;
    const float top = ground.High.y();
    for (const Item &item : items) {
      if (item.Ground || item.Box.Extent() > LargestThing || item.Box.High.y() < top) continue;
      const float rise = std::max(item.Box.Low.y() - top, 0.0f);
      const float softness = std::min(Softness + SoftnessPerRise * rise, LargestSoftness);
      const float halo = std::min(Halo + HaloPerRise * rise, LargestHalo);
      const float around = std::max(softness, halo) + Margin;
      Bounds shadow = ShadowOf(item.Box, top);
      for (const int axis : {0, 2}) {
        shadow.Low[axis] = std::max(shadow.Low[axis] - around, ground.Low[axis]);
        shadow.High[axis] = std::min(shadow.High[axis] + around, ground.High[axis]);
      }
      if (shadow.Low.x() >= shadow.High.x() || shadow.Low.z() >= shadow.High.z()) continue;
      regions_.push_back({item.Drawn, item.ToWorld, shadow, softness, halo});
      changed = changed || item.Changed;
    }
  }
  if (!changed && regions_ == last) return false;
  DrawMap();
  return true;
}

void Shadows::DrawMap() {
  gl_.glBindFramebuffer(GL_FRAMEBUFFER, buffer_);
  gl_.glViewport(0, 0, size_, size_);
  gl_.glClear(GL_DEPTH_BUFFER_BIT);
  gl_.glEnable(GL_DEPTH_CLAMP); // casters beyond the near plane count too
  gl_.glDepthFunc(GL_LESS);
  toMap_.bind();
  for (const Region &region : regions_) {
    toMap_.setUniformValue("toClip", ToLight() * region.ToWorld);
    region.Caster->Draw(GpuMesh::Faces::All);
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
    shade_.setUniformValue("low", region.Ground.Low);
    shade_.setUniformValue("high", region.Ground.High);
    shade_.setUniformValue("softness", InMap(region.Softness));
    shade_.setUniformValue("halo", InMap(region.Halo));
    gl_.glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
  }
  gl_.glDisable(GL_STENCIL_TEST);
  gl_.glDisable(GL_BLEND);
  gl_.glEnable(GL_DEPTH_TEST);
}

#include "platform/desktop/renderer/light.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr QVector3D KeyColor(1.26f, 1.06f, 0.80f);
constexpr QVector3D SkyColor(0.44f, 0.46f, 0.62f);
constexpr QVector3D GroundColor(0.28f, 0.26f, 0.26f);
constexpr QVector3D Luma(0.3f, 0.6f, 0.1f); ///< weights of the channels in brightness

/// Share of the fill light in the key light's shadow: what blocks one light also blocks part of the other.
constexpr float FillInShade = 0.66f;

// A fully emissive surface emits light of its own and reflects less.
constexpr float GlowLight = 0.76f;
constexpr float GlowTakesFill = 0.5f; ///< share of the fill light that it doesn't reflect
constexpr float GlowTakesKey = 0.68f; ///< share of the key light that it doesn't reflect

// The key light is a pool over the field.
constexpr float PoolRadius = 60.0f; ///< scene units of full light
constexpr float PoolEnd = 190.0f;   ///< where it has fallen off
constexpr float PoolEdge = 0.70f;   ///< share of the light that is left there

/// Brightness above which tones are compressed, so that highlights keep their shading and none clips.
constexpr float Shoulder = 0.55f;
/// Share of a saturated colour's brightness that bleeds into its weaker channels, as on film.
constexpr float Crosstalk = 0.05f;
/// The same above `Glare`: a highlight is nearly white.
constexpr float GlareCrosstalk = 0.30f;
constexpr float Glare = 1.5f;

float Pool(const QVector3D &place) {
  const float distance = std::sqrt(place.x() * place.x() + place.z() * place.z());
  const float share = std::clamp((distance - PoolRadius) / (PoolEnd - PoolRadius), 0.0f, 1.0f);
  return 1.0f - (1.0f - PoolEdge) * share * share * (3.0f - 2.0f * share);
}

/// Maps a brightness above the shoulder to below 1, with a smooth exponential curve.
float Compressed(float brightness) {
  if (brightness <= Shoulder) return brightness;
  constexpr float Headroom = 1.0f - Shoulder;
  return Shoulder + Headroom * (1.0f - std::exp(-(brightness - Shoulder) / Headroom));
}

/// Converts light to a stored colour.
QVector3D Stored(const QVector3D &light, bool textured) {
  const float brightness = QVector3D::dotProduct(Luma, light);
  const float crosstalk = Crosstalk + GlareCrosstalk * std::clamp(brightness - Glare, 0.0f, 1.0f);
  QVector3D stored;
  for (int channel = 0; channel < 3; ++channel) {
    const float own = light[channel];
    stored[channel] =
        std::sqrt(textured ? own : Compressed(own + crosstalk * std::max(brightness - own, 0.0f)));
  }
  return stored;
}

} // namespace

QVector3D KeyLight() {
  constexpr QVector3D Way(-0.42f, 1.0f, 0.55f);
  return Way / std::sqrt(Way.lengthSquared());
}

QVector4D LightOf(const QVector3D &place, const QVector3D &normal, const FaceColor &color,
                  const ColorValue &emissive, bool textured) {
  const float facing = std::max(QVector3D::dotProduct(normal, KeyLight()), 0.0f);
  const float upward = 0.5f + 0.5f * normal.y();
  const float pool = Pool(place);
  const QVector3D stored(color.Red, color.Green, color.Blue);
  const QVector3D own(emissive.Red, emissive.Green, emissive.Blue);
  const float glow = std::max({own.x(), own.y(), own.z()});
  const QVector3D base = glow > 0.0f ? stored * stored * own : stored * stored;
  const QVector3D fill = (GroundColor + (SkyColor - GroundColor) * upward) * pool;
  const QVector3D constant = fill * (1.0f - GlowTakesFill * glow) + QVector3D(1, 1, 1) * (GlowLight * glow);
  const QVector3D key = KeyColor * pool * facing * (1.0f - GlowTakesKey * glow);
  return {Stored(base * (constant + key), textured), color.Alpha};
}

QVector3D ShadeOnGround() {
  QVector3D factor = SkyColor * FillInShade / (SkyColor + KeyColor * KeyLight().y());
  for (int channel = 0; channel < 3; ++channel) factor[channel] = std::sqrt(factor[channel]);
  return factor;
}

#include "platform/desktop/renderer/light.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr float KeyColor[] = {1.26f, 1.06f, 0.80f};
constexpr float SkyColor[] = {0.44f, 0.46f, 0.62f};
constexpr float GroundColor[] = {0.28f, 0.26f, 0.26f};

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

float Pool(const Vector &place) {
  const float distance = std::sqrt(place.x * place.x + place.z * place.z);
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
void Store(const float (&light)[3], bool textured, float (&stored)[3]) {
  const float brightness = 0.3f * light[0] + 0.6f * light[1] + 0.1f * light[2];
  const float crosstalk = Crosstalk + GlareCrosstalk * std::clamp(brightness - Glare, 0.0f, 1.0f);
  for (int channel = 0; channel < 3; ++channel) {
    const float own = light[channel];
    stored[channel] =
        std::sqrt(textured ? own : Compressed(own + crosstalk * std::max(brightness - own, 0.0f)));
  }
}

} // namespace

Vector KeyLight() {
  constexpr float x = -0.42f, y = 1.0f, z = 0.55f;
  const float length = std::sqrt(x * x + y * y + z * z);
  return {x / length, y / length, z / length};
}

VertexLight LightOf(const Vector &place, const Vector &normal, const FaceColor &color,
                    const ColorValue &emissive, bool textured) {
  const Vector key = KeyLight();
  const float facing = std::max(normal.x * key.x + normal.y * key.y + normal.z * key.z, 0.0f);
  const float upward = 0.5f + 0.5f * normal.y;
  const float pool = Pool(place);
  const float glow = std::max({emissive.Red, emissive.Green, emissive.Blue});
  const float own[] = {emissive.Red, emissive.Green, emissive.Blue};
  const float stored[] = {color.Red, color.Green, color.Blue};
  float lit[3];
  for (int channel = 0; channel < 3; ++channel) {
    float base = stored[channel] * stored[channel];
    if (glow > 0.0f) base *= own[channel];
    const float fill = (GroundColor[channel] + (SkyColor[channel] - GroundColor[channel]) * upward) * pool;
    const float constant = fill * (1.0f - GlowTakesFill * glow) + GlowLight * glow;
    lit[channel] = base * (constant + KeyColor[channel] * pool * facing * (1.0f - GlowTakesKey * glow));
  }
  VertexLight light{};
  light.TextureShare = color.Alpha;
  Store(lit, textured, light.Color);
  return light;
}

Vector ShadeOnGround() {
  const auto factor = [](int channel) {
    const float fill = SkyColor[channel];
    return std::sqrt(fill * FillInShade / (fill + KeyColor[channel] * KeyLight().y));
  };
  return {factor(0), factor(1), factor(2)};
}

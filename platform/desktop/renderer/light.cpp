#include "platform/desktop/renderer/light.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr float KeyColor[] = {1.26f, 1.06f, 0.80f};
constexpr float SkyColor[] = {0.44f, 0.46f, 0.62f};
constexpr float GroundColor[] = {0.28f, 0.26f, 0.26f};

/// Part of the fill light that reaches what the key light doesn't: where a thing keeps one off it is in the
/// other's way too.
constexpr float FillInShade = 0.66f;
/// The same for what glows: its markings must show shadows as the turf does.
constexpr float GlowInShade = 0.48f;

// A surface that glows has part of its light of itself, and the lights shape it with the rest.
constexpr float GlowLight = 0.76f;
constexpr float GlowTakesFill = 0.5f;
constexpr float GlowTakesKey = 0.68f;

// The key light is a pool over the field.
constexpr float PoolRadius = 60.0f; ///< scene units of full light
constexpr float PoolEnd = 190.0f;   ///< where it has fallen off
constexpr float PoolEdge = 0.70f;   ///< of the light that is left there

/// Brightness at which colours begin to be held back, so that the brightest keep their form and none is
/// cut off.
constexpr float Shoulder = 0.55f;
/// Part of its brightness that a strong colour takes on in the parts that it lacks, as on film.
constexpr float Crosstalk = 0.05f;
/// The same for what is brighter than `Glare`: a gleam is nearly white.
constexpr float GlareCrosstalk = 0.30f;
constexpr float Glare = 1.5f;

float Pool(const Vector &place) {
  const float distance = std::sqrt(place.x * place.x + place.z * place.z);
  const float share = std::clamp((distance - PoolRadius) / (PoolEnd - PoolRadius), 0.0f, 1.0f);
  return 1.0f - (1.0f - PoolEdge) * share * share * (3.0f - 2.0f * share);
}

float HeldBack(float brightness) {
  if (brightness <= Shoulder) return brightness;
  constexpr float Room = 1.0f - Shoulder;
  return Shoulder + Room * (1.0f - std::exp(-(brightness - Shoulder) / Room));
}

/// From light to a colour as stored.
void Store(const float (&light)[3], bool pictured, float (&stored)[3]) {
  const float brightness = 0.3f * light[0] + 0.6f * light[1] + 0.1f * light[2];
  const float crosstalk = Crosstalk + GlareCrosstalk * std::clamp(brightness - Glare, 0.0f, 1.0f);
  for (int part = 0; part < 3; ++part) {
    const float own = light[part];
    stored[part] = std::sqrt(pictured ? own : HeldBack(own + crosstalk * std::max(brightness - own, 0.0f)));
  }
}

} // namespace

Vector KeyLight() {
  constexpr float x = -0.42f, y = 1.0f, z = 0.55f;
  const float length = std::sqrt(x * x + y * y + z * z);
  return {x / length, y / length, z / length};
}

VertexLight LightOf(const Vector &place, const Vector &normal, const FaceColor &color,
                    const ColorValue &emissive, bool pictured) {
  const Vector key = KeyLight();
  const float facing = std::max(normal.x * key.x + normal.y * key.y + normal.z * key.z, 0.0f);
  const float upward = 0.5f + 0.5f * normal.y;
  const float pool = Pool(place);
  const float glow = std::max({emissive.Red, emissive.Green, emissive.Blue});
  const float own[] = {emissive.Red, emissive.Green, emissive.Blue};
  const float stored[] = {color.Red, color.Green, color.Blue};
  float shade[3], lit[3];
  for (int part = 0; part < 3; ++part) {
    float base = stored[part] * stored[part];
    if (glow > 0.0f) base *= own[part];
    const float fill = (GroundColor[part] + (SkyColor[part] - GroundColor[part]) * upward) * pool;
    const float constant = fill * (1.0f - GlowTakesFill * glow) + GlowLight * glow;
    shade[part] = base * constant * (FillInShade + (GlowInShade - FillInShade) * glow);
    lit[part] = base * (constant + KeyColor[part] * pool * facing * (1.0f - GlowTakesKey * glow));
  }
  // On a steep side the edge of a shadow would smear: only what lies about level takes one.
  const float level = std::clamp((normal.y - 0.4f) / 0.5f, 0.0f, 1.0f);
  for (int part = 0; part < 3; ++part) shade[part] = lit[part] + (shade[part] - lit[part]) * level;
  VertexLight light{};
  light.TextureShare = color.Alpha;
  Store(shade, pictured, light.Shade);
  Store(lit, pictured, light.Lit);
  return light;
}

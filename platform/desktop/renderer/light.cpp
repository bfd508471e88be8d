#include "platform/desktop/renderer/light.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr float KeyColor[] = {1.22f, 1.06f, 0.82f};
constexpr float SkyColor[] = {0.46f, 0.47f, 0.62f};
constexpr float GroundColor[] = {0.28f, 0.26f, 0.24f};

// A surface that glows has part of its light of itself, and the lights shape it with the rest.
constexpr float GlowLight = 0.56f;
constexpr float GlowTakesFill = 0.5f;
constexpr float GlowTakesKey = 0.45f;

} // namespace

Vector KeyLight() {
  constexpr float x = -0.42f, y = 1.0f, z = 0.55f;
  const float length = std::sqrt(x * x + y * y + z * z);
  return {x / length, y / length, z / length};
}

VertexLight LightOf(const Vector &normal, const FaceColor &color, const ColorValue &emissive) {
  const Vector key = KeyLight();
  const float facing = std::max(normal.x * key.x + normal.y * key.y + normal.z * key.z, 0.0f);
  const float upward = 0.5f + 0.5f * normal.y;
  const float glow = std::max({emissive.Red, emissive.Green, emissive.Blue});
  const float own[] = {emissive.Red, emissive.Green, emissive.Blue};
  const float stored[] = {color.Red, color.Green, color.Blue};
  VertexLight light{};
  light.TextureShare = color.Alpha;
  for (int part = 0; part < 3; ++part) {
    float base = stored[part] * stored[part]; // colours are stored with a gamma of 2
    if (glow > 0.0f) base *= own[part];
    const float fill = GroundColor[part] + (SkyColor[part] - GroundColor[part]) * upward;
    light.Fill[part] = base * (fill * (1.0f - GlowTakesFill * glow) + GlowLight * glow);
    light.Key[part] = base * KeyColor[part] * facing * (1.0f - GlowTakesKey * glow);
  }
  return light;
}

// The bonus area at the far edge: a striped disc with a raised ring and a star. Nothing may extend beyond the
// circle, since the rules test for these meshes.

#include "models.h"
#include "shapes.h"

#include <cmath>

namespace {

constexpr double Radius = 8.0;
constexpr int Segments = 128;

// Heights above the table's top.
constexpr double RimFoot = 0.055;
constexpr double DiscTop = 0.09;
constexpr double RingFoot = 0.09;
constexpr double RingTop = 0.30;
constexpr double StarTop = 0.26;

constexpr Paint Red{0.86, 0.10, 0.12, 0.25};
constexpr Paint White{1.0, 0.96, 0.90, 0.12};
constexpr Paint Glow{1.0, 1.0, 1.0, 1.0};
constexpr Paint Ember{0.95, 0.62, 1.0, 1.0};

} // namespace

Mesh MakeBonus() {
  Mesh mesh;
  const Point middle;
  Lathe(mesh, middle, {{Radius, RimFoot, Red * 0.7}, {Radius - 0.12, DiscTop, Red}, {6.4, DiscTop, Red}},
        Segments, false);
  Lathe(mesh, middle, {{6.4, DiscTop, White}, {4.4, DiscTop, White}}, Segments, false);
  Lathe(mesh, middle, {{4.4, DiscTop, Red}, {0.0, DiscTop, Red}}, Segments, false);
  return mesh;
}

Mesh MakeExtra() {
  Mesh mesh;
  constexpr double Middle = 7.3, Half = 0.55;
  std::vector<ProfilePoint> profile;
  for (int i = 0; i <= 6; ++i) {
    const double angle = pi * i / 6.0;
    const double height = std::sin(angle);
    profile.push_back({Middle + Half * std::cos(angle), RingFoot + (RingTop - RingFoot) * height,
                       Mix(Ember, Glow, height)});
  }
  Lathe(mesh, {}, profile, 64, true);

  // A star of five points whose faces rise to its middle.
  constexpr double Outer = 4.6, Inner = 1.95;
  const Point top{0.0, StarTop, 0.0};
  for (int i = 0; i < 10; ++i) {
    const auto corner = [](int number) {
      const double reach = number % 2 == 0 ? Outer : Inner;
      const double angle = pi + pi * number / 5.0;
      return Point{std::sin(angle) * reach, RingFoot, std::cos(angle) * reach};
    };
    const Point a = corner(i), b = corner(i + 1);
    Point normal = Normalized(Cross(b - a, top - a));
    if (normal.y < 0.0) normal = normal * -1.0;
    mesh.FlatTriangle(a, b, top, Normalized({normal.x * 6.0, normal.y, normal.z * 6.0}),
                      i % 2 == 0 ? Glow : Ember);
  }
  return mesh;
}

// The goal posts: round tubes, the bar at the origin, uprights at its ends, one curved stem behind and below,
// and a ribbon at the head of each upright.

#include "assets/smooth_step.h"
#include "models.h"
#include "shapes.h"

#include <cmath>

namespace {

constexpr double HalfWidth = 14.0;     ///< from the middle to each upright
constexpr double UprightHeight = 32.5; ///< above the bar
constexpr double TubeRadius = 0.62;
constexpr double StemRadius = 0.95;
constexpr double StemBack = 4.5;   ///< distance of the stem behind the bar
constexpr double StemFoot = -24.6; ///< end of the stem, a little below the table's edge
constexpr double EdgeZ = 7.0;      ///< of the table's far edge, from the bar
constexpr int Sides = 16;

constexpr Paint Yellow{1.0, 0.93, 1.0, 0.0};
constexpr Paint Amber{1.0, 0.74, 1.0, 0.0};
constexpr Paint Gleam{1.50, 1.45, 1.0, 0.0};
constexpr Paint Steel{0.34, 0.26, 1.0, 0.0};
constexpr Paint Ribbon{1.0, 0.10, 1.0, 0.0};
constexpr Paint RibbonShade{0.75, 0.03, 1.0, 0.0};

/// Varnish: darker on the side away from the light, with a highlight toward the start.
TubePaint Varnished(const Paint &paint) {
  return [paint](const Point &normal, const Point &along) {
    constexpr Point Light{-0.36, 0.86, 0.47}, Mirror{-0.21, 0.53, 0.82};
    const auto around = [&](const Point &to) { return Dot(normal, Normalized(to - along * Dot(to, along))); };
    const Paint lit = Mix(paint * 0.62, paint, SmoothStep(-0.8, 0.5, around(Light)));
    return Mix(lit, Gleam, SmoothStep(0.90, 1.0, around(Mirror)));
  };
}

/// A ribbon that waves out to +x from the head of an upright.
void AddRibbon(Mesh &mesh, const Point &head) {
  constexpr int Steps = 8;
  constexpr double Length = 7.0, Height = 2.2, Wave = 0.7;
  for (const double face : {1.0, -1.0}) {
    int before[2] = {0, 0};
    for (int i = 0; i <= Steps; ++i) {
      const double share = static_cast<double>(i) / Steps;
      const double phase = share * 2.2 * pi;
      const Point middle = head + Point{share * Length, -0.4 * share, Wave * share * std::sin(phase) * 1.6};
      const Point normal = Normalized(Point{-std::cos(phase) * 0.9, 0.0, 1.0} * face);
      const Paint paint = Mix(Ribbon, RibbonShade, 0.5 + 0.5 * std::cos(phase));
      const double half = Height * (0.5 - 0.18 * share);
      const int now[2] = {mesh.Add({middle + Point{0.0, half, 0.0}, normal, paint}),
                          mesh.Add({middle - Point{0.0, half, 0.0}, normal, paint})};
      if (i > 0) mesh.Quad(before[0], now[0], now[1], before[1]);
      before[0] = now[0];
      before[1] = now[1];
    }
  }
}

} // namespace

Mesh MakeGoal() {
  Mesh mesh;
  Tube(mesh, {{-HalfWidth, 0.0, 0.0}, {HalfWidth, 0.0, 0.0}}, TubeRadius, Sides, Varnished(Yellow));
  for (const double x : {-HalfWidth, HalfWidth}) {
    Tube(mesh, {{x, 0.0, 0.0}, {x, UprightHeight, 0.0}}, TubeRadius, Sides, Varnished(Yellow));
    Lathe(mesh, {x, UprightHeight - 2.6, 0.0},
          {{TubeRadius * 1.18, -0.9, Ribbon}, {TubeRadius * 1.18, 0.9, Ribbon}}, Sides, true);
    AddRibbon(mesh, {x + TubeRadius, UprightHeight - 2.6, 0.0});
  }

  std::vector<Point> neck = {{0.0, 0.0, 0.0}};
  for (int i = 0; i <= 8; ++i) {
    const double angle = pi / 2.0 * i / 8.0;
    neck.push_back(
        {0.0, -StemBack * 0.75 * (1.0 - std::cos(angle)), -StemBack * (0.25 + 0.75 * std::sin(angle))});
  }
  neck.push_back({0.0, StemFoot, -StemBack});
  Tube(mesh, neck, StemRadius, Sides, Varnished(Amber));

  // It slides along the table's edge on a clamp, like that of a desk lamp.
  Tube(mesh, {{0.0, StemFoot + 0.9, -StemBack}, {0.0, StemFoot + 0.9, EdgeZ + 0.6}}, 0.75, 10, Steel);
  Box(mesh, {-3.4, StemFoot - 0.2, EdgeZ - 0.5}, {3.4, StemFoot + 3.8, EdgeZ - 0.05}, Steel);
  Lathe(mesh, {0.0, StemFoot, -StemBack},
        {{0.0, -1.5, Steel}, {1.5, -1.0, Steel}, {1.7, 0.9, Steel}, {1.3, 1.8, Steel}, {0.9, 2.0, Steel}},
        Sides, true);
  return mesh;
}

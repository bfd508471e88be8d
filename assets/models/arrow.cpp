// The aim: the hand behind the piece, a flat arrow ahead of it, and a dotted line from the arrow down the
// field.

#include "hand.h"
#include "models.h"
#include "shapes.h"

#include <cmath>

namespace {

// The arrow in plan, scene units from the piece's middle; it points toward -z.
constexpr double TailZ = -4.2;
constexpr double NeckZ = -14.4;
constexpr double BarbZ = -13.0; ///< the barbs reach a little back
constexpr double TipZ = -25.5;
constexpr double ShaftHalf = 1.7;
constexpr double TailHalf = 1.2;
constexpr double BarbHalf = 5.0;

constexpr double BaseY = -0.43; ///< just above the markings
constexpr double EdgeY = -0.33;
constexpr double TopY = -0.22;
constexpr double OutlineWidth = 0.55;
constexpr double BevelWidth = 0.45;

constexpr Paint Ink{0.16, 0.08, 0.0, 0.0};
constexpr Paint Bevel{0.95, 0.66, 0.0, 0.0};
constexpr Paint Face{1.0, 0.95, 0.3, 0.0};
constexpr Paint White{2.2, 2.2, 0.0, 0.0}; ///< so bright that pure yellow light leaves it white

// The dots. Their spacing and size grow with the distance, so that they look evenly spaced from the camera's
// initial position and don't merge and flicker at the far end of the field.
constexpr int Dots = 9;
constexpr double FirstDot = 30.0; ///< from the piece's middle
constexpr double LastDot = 164.0; ///< at the start it is in the middle of the bonus area
constexpr double EyeBehind = 35.0;
constexpr double FirstHalf = 0.62, LastHalf = 1.2; ///< half widths
constexpr double Stretch = 3.0;                    ///< length by width, elongated like road markings
constexpr double DotRise = 0.46;                   ///< height by half width

/// The arrow's outline from the tail's left corner round by way of the tip, moved inward by `inset`.
std::vector<Point> Contour(double inset) {
  const std::vector<Point> points = {{-TailHalf, 0, TailZ}, {-ShaftHalf, 0, NeckZ}, {-BarbHalf, 0, BarbZ},
                                     {0, 0, TipZ},          {BarbHalf, 0, BarbZ},   {ShaftHalf, 0, NeckZ},
                                     {TailHalf, 0, TailZ}};
  std::vector<Point> moved;
  for (std::size_t i = 0; i < points.size(); ++i) {
    const Point &before = points[(i + points.size() - 1) % points.size()];
    const Point &after = points[(i + 1) % points.size()];
    const auto inward = [](const Point &from, const Point &to) {
      const Point along = Normalized(to - from);
      return Point{-along.z, 0.0, along.x};
    };
    const Point first = inward(before, points[i]), second = inward(points[i], after);
    moved.push_back(points[i] + (first + second) * (inset / (1.0 + Dot(first, second))));
  }
  return moved;
}

void Band(Mesh &mesh, double outerInset, double outerY, double innerInset, double innerY,
          const Paint &paint) {
  const auto outer = Contour(outerInset), inner = Contour(innerInset);
  for (std::size_t i = 0; i < outer.size(); ++i) {
    const std::size_t next = (i + 1) % outer.size();
    const auto raised = [](const Point &point, double y) { return Point{point.x, y, point.z}; };
    const Point a = raised(outer[i], outerY), b = raised(outer[next], outerY),
                c = raised(inner[next], innerY), d = raised(inner[i], innerY);
    Point normal = Normalized(Cross(b - a, d - a));
    if (normal.y < 0.0) normal = normal * -1.0;
    mesh.FlatQuad(a, b, c, d, normal, paint);
  }
}

void AddArrow(Mesh &mesh) {
  Band(mesh, 0.0, BaseY, 0.1, EdgeY, Ink);
  Band(mesh, 0.1, EdgeY, OutlineWidth, EdgeY + 0.02, Ink);
  Band(mesh, OutlineWidth, EdgeY + 0.02, OutlineWidth + BevelWidth, TopY, Bevel);
  std::vector<int> top;
  for (const Point &point : Contour(OutlineWidth + BevelWidth))
    top.push_back(mesh.Add({{point.x, TopY, point.z}, {0.0, 1.0, 0.0}, Face}));
  mesh.Quad(top[0], top[1], top[5], top[6]);
  mesh.Triangle(top[1], top[3], top[5]);
  mesh.Triangle(top[1], top[2], top[3]);
  mesh.Triangle(top[3], top[4], top[5]);
}

/// A low white dome with a dark rim, at distance `way` from the piece.
void AddDot(Mesh &mesh, double way, double half) {
  constexpr int Sides = 8;
  constexpr double RimWidth = 0.25, RimRise = 0.1;
  const double foot = BaseY + RimRise, top = BaseY + half * DotRise;
  Mesh round;
  Lathe(round, {}, {{1.0 + RimWidth, BaseY, Ink}, {1.0, foot, Ink}}, Sides, false);
  const double shoulder = foot + (top - foot) * 0.8;
  Lathe(round, {}, {{1.0, foot, White}, {0.7, shoulder, White}, {0.0, top, White}}, Sides, true);
  mesh.Append(round, [&](const Vertex &vertex) {
    const Point &at = vertex.at;
    return Vertex{{at.x * half, at.y, at.z * half * Stretch - way}, vertex.normal, vertex.paint};
  });
}

void AddDots(Mesh &mesh) {
  const double farther = (LastDot + EyeBehind) / (FirstDot + EyeBehind);
  for (int dot = 0; dot < Dots; ++dot) {
    const double share = static_cast<double>(dot) / (Dots - 1);
    const double way = (FirstDot + EyeBehind) * std::pow(farther, share) - EyeBehind;
    AddDot(mesh, way, FirstHalf + (LastHalf - FirstHalf) * (way - FirstDot) / (LastDot - FirstDot));
  }
}

} // namespace

Mesh MakeArrow() {
  Mesh mesh;
  AddHand(mesh);
  AddArrow(mesh);
  AddDots(mesh);
  return mesh;
}

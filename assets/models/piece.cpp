// The piece: a sheet of notebook paper folded into a thick triangle. Its edges are the rounded folds of
// several layers, the top bulges a little, and the last flap covers one half, with its free edge raised. A
// thin outline separates it from the background.

#include "assets/smooth_step.h"
#include "models.h"
#include "shapes.h"

#include <algorithm>

namespace {

constexpr Point Corners[3] = {{0.0, 0.0, -2.5}, {5.0, 0.0, 2.5}, {-5.0, 0.0, 2.5}};

constexpr double InkWidth = 0.11; ///< inset of the paper from the corners
constexpr double InkFoot = -0.425;
constexpr double InkHead = 0.33;

constexpr double Underside = -0.40;
constexpr double TopEdge = 0.24;  ///< height of the top along its border
constexpr double Swelling = 0.08; ///< of the top in its middle
constexpr double FlapLift = 0.05; ///< of the flap's sheet above the top
constexpr double FlapCurl = 0.11; ///< additional height of its free edge
constexpr double TopInset = 0.20; ///< of the top and the underside from the paper's outline

constexpr Paint Paper{1.0, 1.0, 1.0, 1.0};
constexpr Paint LayerLight{0.97, 0.96, 0.94, 0.35};
constexpr Paint LayerDark{0.46, 0.47, 0.58, 0.2};
constexpr Paint Ink{0.17, 0.16, 0.28, 0.0};

/// The triangle with each side moved inward by `inset`.
void Inset(double inset, double y, Point (&out)[3]) {
  for (int i = 0; i < 3; ++i) {
    const auto inward = [](const Point &from, const Point &to) {
      const Point along = Normalized(to - from);
      return Point{-along.z, 0.0, along.x};
    };
    const Point first = inward(Corners[(i + 2) % 3], Corners[i]);
    const Point second = inward(Corners[i], Corners[(i + 1) % 3]);
    out[i] = Corners[i] + (first + second) * (inset / (1.0 + Dot(first, second)));
    out[i].y = y;
  }
}

/// A triangular grid between three corners, with height and colour given by `shape`.
template <typename Shape>
void Sheet(Mesh &mesh, const Point (&corners)[3], int cells, double facing, Shape shape) {
  std::vector<std::vector<int>> rows;
  for (int row = 0; row <= cells; ++row) {
    rows.emplace_back();
    for (int column = 0; column <= row; ++column) {
      const double down = static_cast<double>(row) / cells;
      const double across = row == 0 ? 0.0 : static_cast<double>(column) / row;
      const Point at = Mix(corners[0], Mix(corners[1], corners[2], across), down);
      constexpr double Step = 0.02;
      const Vertex here = shape(at);
      const double alongX = shape(at + Point{Step, 0.0, 0.0}).at.y - here.at.y;
      const double alongZ = shape(at + Point{0.0, 0.0, Step}).at.y - here.at.y;
      const Point normal = Normalized({-alongX / Step, 1.0, -alongZ / Step});
      rows.back().push_back(mesh.Add({here.at, normal * facing, here.paint}));
    }
  }
  for (std::size_t row = 0; row + 1 < rows.size(); ++row)
    for (std::size_t column = 0; column < rows[row].size(); ++column) {
      mesh.Triangle(rows[row][column], rows[row + 1][column], rows[row + 1][column + 1]);
      if (column > 0) mesh.Triangle(rows[row][column - 1], rows[row][column], rows[row + 1][column]);
    }
}

/// Distance from the nearest border of the triangle.
double FromBorder(const Point &at) {
  double nearest = 10.0;
  for (int i = 0; i < 3; ++i) {
    const Point along = Normalized(Corners[(i + 1) % 3] - Corners[i]);
    nearest = std::min(nearest, Dot(at - Corners[i], {-along.z, 0.0, along.x}));
  }
  return nearest;
}

/// The outline of the paper: a shell with its front inside, visible where it extends beyond the paper in any
/// orientation. Its corners are those tested by the rules.
void AddInk(Mesh &mesh) {
  const struct { double inset, y; } levels[] = {{0.03, InkFoot}, {0.0, 0.0}, {0.03, InkHead}};
  Point ring[3][3];
  for (int level = 0; level < 3; ++level) Inset(levels[level].inset, levels[level].y, ring[level]);
  for (int side = 0; side < 3; ++side) {
    const int next = (side + 1) % 3;
    const Point along = Normalized(Corners[next] - Corners[side]);
    const Point in{-along.z, 0.0, along.x};
    for (int level = 0; level < 2; ++level)
      mesh.FlatQuad(ring[level][side], ring[level][next], ring[level + 1][next], ring[level + 1][side], in,
                    Ink);
  }
  mesh.FlatTriangle(ring[0][0], ring[0][1], ring[0][2], {0.0, 1.0, 0.0}, Ink);
  mesh.FlatTriangle(ring[2][0], ring[2][1], ring[2][2], {0.0, -1.0, 0.0}, Ink);
}

} // namespace

Mesh MakePiece() {
  Mesh mesh;

  AddInk(mesh);

  // The folds. Dark grooves separate the layers of paper.
  struct Level {
    double inset, y, lean; ///< lean: upward part of the normal
    Paint paint;
  };
  const Level levels[] = {
      {TopInset, TopEdge, 1.6, Paper}, {0.12, 0.232, 1.1, Paper},       {0.05, 0.20, 0.6, LayerLight},
      {0.03, 0.15, 0.0, LayerLight},   {0.09, 0.11, 0.0, LayerDark},    {0.01, 0.07, 0.3, LayerLight},
      {0.0, 0.0, 0.0, LayerLight},     {0.01, -0.05, -0.1, LayerLight}, {0.08, -0.09, 0.0, LayerDark},
      {0.01, -0.13, 0.2, LayerLight},  {0.02, -0.20, -0.1, LayerLight}, {0.09, -0.24, 0.0, LayerDark},
      {0.03, -0.28, 0.0, LayerLight},  {0.08, -0.36, -0.7, LayerLight}, {TopInset, Underside, -1.6, Paper},
  };
  for (int side = 0; side < 3; ++side) {
    const Point along = Normalized(Corners[(side + 1) % 3] - Corners[side]);
    const Point out{along.z, 0.0, -along.x};
    int before[2] = {0, 0};
    for (const Level &level : levels) {
      Point ring[3];
      Inset(InkWidth + level.inset, level.y, ring);
      const Point normal = Normalized(out + Point{0.0, level.lean, 0.0});
      const int now[2] = {mesh.Add({ring[side], normal, level.paint}),
                          mesh.Add({ring[(side + 1) % 3], normal, level.paint})};
      if (&level != levels) mesh.Quad(before[0], before[1], now[1], now[0]);
      before[0] = now[0];
      before[1] = now[1];
    }
  }

  // The flap's sheet covers the left part: from its corner at the left to a free edge across the top.
  Point top[3], bottom[3];
  Inset(InkWidth + TopInset, TopEdge, top);
  Inset(InkWidth + TopInset, Underside, bottom);
  const Point flap[3] = {top[2], Mix(top[0], top[2], 0.02), Mix(top[2], top[1], 0.64)};
  const Point freeAlong = Normalized(flap[2] - flap[1]);
  const Point freeOut{freeAlong.z, 0.0, -freeAlong.x}; // away from the flap
  const auto fromFree = [&](const Point &at) { return Dot(flap[1] - at, freeOut); };
  const auto fromFold = [](const Point &at) { return FromBorder(at) - InkWidth - TopInset; };
  const auto topHeight = [&](const Point &at) {
    return TopEdge + Swelling * SmoothStep(0.0, 1.3, fromFold(at));
  };
  // The paper bends away from the light along its folds.
  const auto bent = [&](const Point &at) { return 0.84 + 0.16 * SmoothStep(0.0, 0.5, fromFold(at)); };

  Sheet(mesh, top, 16, 1.0, [&](const Point &at) {
    const double gap = -fromFree(at); // how far right of the flap's free edge
    const double shade = 0.42 + 0.58 * SmoothStep(-0.1, 0.85, gap);
    return Vertex{{at.x, topHeight(at), at.z}, {}, Paper * (shade * bent(at))};
  });
  Sheet(mesh, bottom, 4, -1.0, [](const Point &at) { return Vertex{{at.x, Underside, at.z}, {}, Paper}; });

  const auto flapHeight = [&](const Point &at) {
    const double lift = FlapLift * (0.4 + 0.6 * SmoothStep(0.0, 0.25, fromFold(at)));
    return topHeight(at) + lift + FlapCurl * SmoothStep(0.9, 0.0, fromFree(at));
  };
  Sheet(mesh, flap, 14, 1.0, [&](const Point &at) {
    return Vertex{{at.x, flapHeight(at), at.z}, {}, Paper * bent(at)};
  });
  constexpr int EdgeSteps = 10;
  for (int i = 0; i < EdgeSteps; ++i) {
    const auto place = [&](int step, bool high) {
      const Point at = Mix(flap[1], flap[2], static_cast<double>(step) / EdgeSteps);
      return Point{at.x, high ? flapHeight(at) : topHeight(at) - 0.02, at.z};
    };
    mesh.FlatQuad(place(i, true), place(i + 1, true), place(i + 1, false), place(i, false), freeOut,
                  LayerLight);
  }
  return mesh;
}

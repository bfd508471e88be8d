// The piece: a sheet of notebook paper folded to a thick triangle. Its edges are the rounded folds of several
// layers, its top swells a little, and over one half of it lies the last flap, whose free edge stands up.

#include "models.h"
#include "shapes.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr Point Corners[3] = {{0.0, 0.0, -2.5}, {5.0, 0.0, 2.5}, {-5.0, 0.0, 2.5}};

constexpr double Underside = -0.43;
constexpr double TopEdge = 0.27;  ///< height of the top along its border
constexpr double Swelling = 0.07; ///< of the top in its middle
constexpr double FlapLift = 0.05; ///< of the flap's sheet above the top
constexpr double FlapCurl = 0.10; ///< how much further its free edge stands up

constexpr Paint Paper{1.0, 1.0, 1.0, 1.0};
constexpr Paint LayerLight{0.97, 0.96, 0.94, 0.35};
constexpr Paint LayerDark{0.66, 0.65, 0.68, 0.35};

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

/// A triangular sheet between three corners, cut into cells, with height and paint as `shape` tells.
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

} // namespace

Mesh MakePiece() {
  Mesh mesh;

  // The folds: the outline reaches its corners at y = 0 exactly. Dark hollows part the layers of paper.
  struct Level {
    double inset, y, lean; ///< lean: upward part of the normal
    Paint paint;
  };
  const Level levels[] = {
      {0.20, TopEdge, 1.6, Paper},     {0.09, 0.24, 0.8, LayerLight},  {0.03, 0.17, 0.3, LayerLight},
      {0.07, 0.125, 0.0, LayerDark},   {0.01, 0.08, 0.2, LayerLight},  {0.0, 0.0, 0.0, LayerLight},
      {0.01, -0.05, -0.1, LayerLight}, {0.06, -0.09, 0.0, LayerDark},  {0.02, -0.13, 0.1, LayerLight},
      {0.02, -0.22, -0.1, LayerLight}, {0.07, -0.26, 0.0, LayerDark},  {0.03, -0.30, 0.0, LayerLight},
      {0.08, -0.38, -0.7, LayerLight}, {0.20, Underside, -1.6, Paper},
  };
  for (int side = 0; side < 3; ++side) {
    const Point along = Normalized(Corners[(side + 1) % 3] - Corners[side]);
    const Point out{along.z, 0.0, -along.x};
    int before[2] = {0, 0};
    for (const Level &level : levels) {
      Point ring[3];
      Inset(level.inset, level.y, ring);
      const Point normal = Normalized(out + Point{0.0, level.lean, 0.0});
      const int now[2] = {mesh.Add({ring[side], normal, level.paint}),
                          mesh.Add({ring[(side + 1) % 3], normal, level.paint})};
      if (&level != levels) mesh.Quad(before[0], before[1], now[1], now[0]);
      before[0] = now[0];
      before[1] = now[1];
    }
  }

  // The flap's sheet covers the left part: from its corner at the left to a free edge across the top.
  const Point flap[3] = {{-4.25, 0.0, 2.2}, {0.15, 0.0, -2.0}, {1.25, 0.0, 2.25}};
  const Point freeAlong = Normalized(flap[2] - flap[1]);
  const Point freeOut{-freeAlong.z, 0.0, freeAlong.x}; // away from the flap or toward it, see fromFree
  const auto fromFree = [&](const Point &at) {
    const double sign = Dot(flap[0] - flap[1], freeOut) > 0.0 ? 1.0 : -1.0;
    return sign * Dot(at - flap[1], freeOut);
  };
  const auto topHeight = [](const Point &at) {
    return TopEdge + Swelling * SmoothStep(0.0, 1.3, FromBorder(at) - 0.2);
  };

  Point top[3], bottom[3];
  Inset(0.20, TopEdge, top);
  Inset(0.20, Underside, bottom);
  Sheet(mesh, top, 14, 1.0, [&](const Point &at) {
    const double gap = -fromFree(at); // how far right of the flap's free edge
    const double shade = gap < 0.0 ? 0.6 : 0.6 + 0.4 * SmoothStep(0.0, 0.9, gap);
    return Vertex{{at.x, topHeight(at), at.z}, {}, Paper * shade};
  });
  Sheet(mesh, bottom, 4, -1.0, [](const Point &at) { return Vertex{{at.x, Underside, at.z}, {}, Paper}; });

  const auto flapHeight = [&](const Point &at) {
    const double lift = FlapLift * SmoothStep(0.0, 0.25, FromBorder(at) - 0.2);
    return topHeight(at) + lift + FlapCurl * SmoothStep(0.9, 0.0, fromFree(at));
  };
  Sheet(mesh, flap, 12, 1.0, [&](const Point &at) {
    return Vertex{{at.x, flapHeight(at), at.z}, {}, Paper};
  });
  constexpr int EdgeSteps = 10;
  for (int i = 0; i < EdgeSteps; ++i) {
    const auto place = [&](int step, bool high) {
      const Point at = Mix(flap[1], flap[2], static_cast<double>(step) / EdgeSteps);
      return Point{at.x, high ? flapHeight(at) : topHeight(at) - 0.02, at.z};
    };
    mesh.FlatQuad(place(i, true), place(i + 1, true), place(i + 1, false), place(i, false),
                  freeOut * (Dot(flap[0] - flap[1], freeOut) > 0.0 ? -1.0 : 1.0), LayerLight);
  }
  return mesh;
}

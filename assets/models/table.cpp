// The table: a flat top, a wooden edge and an arched underside. The same model enlarged ten times is the sky
// above the stadium, of which the underside is visible: the arch forms a dome, and the vertex colours its
// haze.

#include "assets/smooth_step.h"
#include "models.h"
#include "shapes.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

constexpr double HalfSide = 88.0;   ///< of the square top
constexpr double EdgeHeight = 0.9;  ///< of the upright part of the edge
constexpr double Thickness = 3.4;   ///< at the edge
constexpr double Undercut = 2.0;    ///< inset of the underside
constexpr double CrownDepth = 0.15; ///< thickness in the middle, where the sky is highest
constexpr int TopCells = 7;         ///< odd, so that no seam runs along the middle of the field
// The sky descends behind the rim of the stands, so that its clouds face the camera.
constexpr double SkyShoulder = 28.0;
constexpr double SkyFoot = 42.0;

constexpr double BorderWidth = 4.0; ///< of the turf: its faces are slivers, costly where they are large

// The kerb along the far edge and the sides, in blocks of two colours.
constexpr double KerbWidth = 1.3;
constexpr int BlocksPerCell = 5;

constexpr Paint Turf{1.0, 1.0, 1.0, 1.0};
constexpr Paint KerbRed{0.92, 0.10, 0.08, 0.0};
constexpr Paint KerbWhite{1.05, 1.03, 1.0, 0.0};
constexpr Paint LightWood{0.93, 0.72, 0.47, 0.0};
constexpr Paint DarkWood{0.55, 0.34, 0.19, 0.0};
// Brighter than the texture, because the sky is seen from its unlit side.
constexpr Paint Zenith{1.03, 1.01, 1.08, 1.0};
constexpr Paint Horizon{1.155, 0.96, 0.84, 0.30};

/// Cells of equal size over a square.
std::vector<double> Even(int cells, double half) {
  std::vector<double> places;
  for (int i = 0; i <= cells; ++i) places.push_back(half * (2.0 * i / cells - 1.0));
  return places;
}

/// A grid of cells between coordinates on both axes; `vertex` gives the vertex at (x, z).
template <typename VertexAt> void Grid(Mesh &mesh, const std::vector<double> &places, VertexAt vertex) {
  const int cells = static_cast<int>(places.size()) - 1;
  std::vector<int> numbers;
  for (const double z : places)
    for (const double x : places) numbers.push_back(mesh.Add(vertex(x, z)));
  for (int row = 0; row < cells; ++row)
    for (int column = 0; column < cells; ++column) {
      const auto corner = static_cast<std::size_t>(row) * places.size() + static_cast<std::size_t>(column);
      const std::size_t below = corner + places.size();
      mesh.Quad(numbers[corner], numbers[corner + 1], numbers[below + 1], numbers[below]);
    }
}

/// Distance from the middle on a plan like that of the stands, a square with round corners.
double Away(double x, double z) { return std::pow(std::pow(x, 4.0) + std::pow(z, 4.0), 0.25); }

double ArchHeight(double x, double z) {
  const double away = Away(x, z);
  const double vault = 0.35 * std::min(1.0, away * away / (SkyShoulder * SkyShoulder));
  return -CrownDepth - vault - (Thickness - CrownDepth - 0.35) * SmoothStep(SkyShoulder, SkyFoot, away);
}

/// The flat top: turf with a kerb around it. The border of the turf has a vertex at each block of the kerb,
/// because a gap between two faces would be a hole in the image and for the rules.
void AddTop(Mesh &mesh) {
  static constexpr Point Up{0.0, 1.0, 0.0};
  constexpr double Inner = HalfSide - KerbWidth;
  constexpr double Core = Inner - BorderWidth;
  std::vector<double> places = Even(TopCells, Inner);
  places.front() = -Core;
  places.back() = Core;
  Grid(mesh, places, [](double x, double z) { return Vertex{{x, 0.0, z}, Up, Turf}; });
  const std::vector<double> blocks = Even(TopCells * BlocksPerCell, Inner);
  for (int side = 0; side < 4; ++side) {
    const Point out{side == 0 ? 1.0 : side == 2 ? -1.0 : 0.0, 0.0, side == 1 ? 1.0 : side == 3 ? -1.0 : 0.0};
    const Point along{-out.z, 0.0, out.x};
    const auto at = [&](double on, double reach) { return along * on + out * reach; };
    const auto turf = [&](const Point &a, const Point &b, const Point &c) {
      mesh.FlatTriangle(a, b, c, Up, Turf);
    };
    for (int cell = 0; cell < TopCells; ++cell) {
      const auto border = [&](int block) {
        const int index = cell * BlocksPerCell + block;
        return blocks[static_cast<std::size_t>(index)];
      };
      const double from = border(0), to = border(BlocksPerCell);
      const Point foot = at(std::clamp(from, -Core, Core), Core);
      for (int block = 0; block < BlocksPerCell; ++block) {
        const double low = border(block), high = border(block + 1);
        turf(foot, at(low, Inner), at(high, Inner));
        const bool near = side == 1;
        const Paint &paint = near ? Turf : (cell * BlocksPerCell + block) % 2 == 0 ? KerbRed : KerbWhite;
        mesh.FlatQuad(at(low, Inner), at(high, Inner), at(high, HalfSide), at(low, HalfSide), Up, paint);
      }
      turf(foot, at(to, Inner), at(std::clamp(to, -Core, Core), Core));
    }
    mesh.FlatQuad(at(Inner, Inner), at(HalfSide, Inner), at(HalfSide, HalfSide), at(Inner, HalfSide), Up,
                  KerbWhite);
  }
}

} // namespace

Mesh MakeTable() {
  Mesh mesh;
  AddTop(mesh);

  std::vector<double> places;
  for (const double place :
       {6.0, 14.0, 21.0, 26.0, 29.5, 33.0, 36.0, 39.0, 42.0, 56.0, HalfSide - Undercut}) {
    places.insert(places.begin(), -place);
    places.push_back(place);
  }
  Grid(mesh, places, [](double x, double z) {
    constexpr double Step = 0.5;
    const double alongX = ArchHeight(x + Step, z) - ArchHeight(x - Step, z);
    const double alongZ = ArchHeight(x, z + Step) - ArchHeight(x, z - Step);
    return Vertex{{x, ArchHeight(x, z), z},
                  Normalized({alongX / (2.0 * Step), -1.0, alongZ / (2.0 * Step)}),
                  Mix(Zenith, Horizon, SmoothStep(12.0, 38.0, Away(x, z)))};
  });

  // The edge: upright below the top, then rounded in to the underside.
  struct Level {
    double inset, y;
    Point normal; ///< x outward, y up
    Paint paint;
  };
  const Level levels[] = {{0.0, 0.0, {1.0, 0.0, 0.0}, LightWood},
                          {0.0, -EdgeHeight, {1.0, -0.1, 0.0}, LightWood},
                          {0.5, -1.8, {0.8, -0.6, 0.0}, Mix(LightWood, DarkWood, 0.6)},
                          {Undercut, -Thickness, {0.3, -1.0, 0.0}, DarkWood}};
  for (int side = 0; side < 4; ++side) {
    const Point out{side == 0 ? 1.0 : side == 2 ? -1.0 : 0.0, 0.0, side == 1 ? 1.0 : side == 3 ? -1.0 : 0.0};
    const Point along{-out.z, 0.0, out.x};
    int before[2] = {0, 0};
    for (const Level &level : levels) {
      const double reach = HalfSide - level.inset;
      const Point normal = Normalized(out * level.normal.x + Point{0.0, level.normal.y, 0.0});
      const auto end = [&](double sign) {
        return mesh.Add(
            {out * reach + along * (reach * sign) + Point{0.0, level.y, 0.0}, normal, level.paint});
      };
      const int now[2] = {end(-1.0), end(1.0)};
      if (&level != levels) mesh.Quad(before[0], before[1], now[1], now[0]);
      before[0] = now[0];
      before[1] = now[1];
    }
  }
  return mesh;
}

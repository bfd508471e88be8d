// The tree of a mesh's faces against its faces one by one, to the bit: whatever the tree looks like and in
// whatever order it is walked, a ray's distance is the least of those to the single faces.

#include "scene/graph/triangle_tree.h"
#include "tools/fnv_hash.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <functional>
#include <random>
#include <string>

namespace {

struct Surface {
  std::vector<Vector> Positions;
  std::vector<std::uint32_t> Indices;

  void Add(const std::array<Vector, 3> &corners) {
    for (const Vector &corner : corners) {
      Indices.push_back(static_cast<std::uint32_t>(Positions.size()));
      Positions.push_back(corner);
    }
  }
};

/// The same numbers from every standard library.
class Dice {
public:
  std::uint32_t Below(std::uint32_t count) { return static_cast<std::uint32_t>(random_()) % count; }
  float Any(float low, float high) {
    return low + (high - low) * static_cast<float>(random_() >> 8) * 0x1p-24f;
  }
  Vector In(float size) { return {Any(-size, size), Any(-size, size), Any(-size, size)}; }
  /// Coordinates that many others share, and that are exact.
  Vector OnGrid(int size) {
    const auto whole = [&] {
      return static_cast<float>(static_cast<int>(Below(2 * static_cast<std::uint32_t>(size) + 1)) - size);
    };
    return {whole(), whole(), whole()};
  }

private:
  std::mt19937 random_{1};
};

Vector Sum(const Vector &a, const Vector &b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
Vector Times(const Vector &a, float factor) { return {a.x * factor, a.y * factor, a.z * factor}; }

Surface Soup(Dice &dice, float size, float faceSize, int faces) {
  Surface soup;
  for (int i = 0; i < faces; ++i) {
    const Vector at = dice.In(size);
    soup.Add({Sum(at, dice.In(faceSize)), Sum(at, dice.In(faceSize)), Sum(at, dice.In(faceSize))});
  }
  return soup;
}

/// A sheet of squares of two faces with shared corners.
Surface Sheet(std::uint32_t side, const std::function<float(std::uint32_t, std::uint32_t)> &height) {
  Surface sheet;
  const float middle = 0.5f * static_cast<float>(side);
  for (std::uint32_t z = 0; z <= side; ++z) {
    for (std::uint32_t x = 0; x <= side; ++x) {
      sheet.Positions.push_back(
          {static_cast<float>(x) - middle, height(x, z), static_cast<float>(z) - middle});
      const std::uint32_t a = z * (side + 1) + x, b = a + side + 1;
      if (x < side && z < side) sheet.Indices.insert(sheet.Indices.end(), {a, b, a + 1, a + 1, b, b + 1});
    }
  }
  return sheet;
}

/// A ray of one of many kinds: through anything, along an axis or a plane of two axes, through corners and
/// edges, from a corner, with a direction of any length.
D3DRMRAY AnyRay(Dice &dice, const Surface &surface, float size) {
  const auto corner = [&] {
    return surface.Positions[dice.Below(static_cast<std::uint32_t>(surface.Positions.size()))];
  };
  D3DRMRAY ray{dice.In(1), dice.In(2 * size)};
  const Vector one = corner(), other = corner();
  const std::uint32_t kind = dice.Below(9);
  if (kind >= 3 && kind <= 5) ray.Origin = Sum(one, Times(dice.OnGrid(2), 0.5f));
  if (kind == 1 || kind == 3) ray.Direction = dice.OnGrid(1);
  if (kind == 2 || kind == 4) {
    const float sign = dice.Below(2) == 0 ? -1.0f : 1.0f, none = dice.Below(2) == 0 ? -0.0f : 0.0f;
    const std::array<float, 5> row{none, none, sign, none, none};
    const std::size_t axis = dice.Below(3);
    ray.Direction = {row[2 - axis], row[3 - axis], row[4 - axis]};
  }
  if (kind == 6) ray.Origin = one;
  if (kind == 7) ray.Direction = Sum(one, Times(ray.Origin, -1));
  if (kind == 8) {
    ray.Origin = dice.OnGrid(static_cast<int>(size) + 1);
    ray.Direction = Sum(Times(Sum(one, other), 0.5f), Times(ray.Origin, -1));
  }
  constexpr std::array<float, 8> Lengths{1, 1, 1, 1, 1e-3f, 300, 1e-35f, 1e30f};
  ray.Direction = Times(ray.Direction, Lengths[dice.Below(Lengths.size())]);
  return ray;
}

/// Casts rays at the whole tree and at trees of one face each, and expects the same to the bit.
/// @returns how many rays hit
int ExpectTheLeastOfAllFaces(const std::string &name, const Surface &surface, int rays,
                             const std::function<D3DRMRAY()> &nextRay, std::uint64_t *hash = nullptr) {
  TriangleTree tree;
  tree.Build(surface.Positions, surface.Indices);
  std::vector<TriangleTree> single(surface.Indices.size() / 3);
  for (std::size_t i = 0; i < single.size(); ++i)
    single[i].Build(surface.Positions, std::span(surface.Indices).subspan(3 * i, 3));
  int hits = 0;
  for (int i = 0; i < rays; ++i) {
    const D3DRMRAY ray = nextRay();
    std::optional<double> least;
    for (const TriangleTree &face : single) {
      const auto distance = face.Intersect(surface.Positions, ray);
      if (distance && (!least || *distance < *least)) least = distance;
    }
    const auto found = tree.Intersect(surface.Positions, ray);
    const auto bits = [](const auto &distance) {
      return std::bit_cast<std::uint64_t>(distance.value_or(-1));
    };
    EXPECT_EQ(bits(found), bits(least))
        << name << ", ray " << i << ": " << found.value_or(-1) << ", not " << least.value_or(-1)
        << ", in direction " << ray.Direction.x << ' ' << ray.Direction.y << ' ' << ray.Direction.z
        << " from " << ray.Origin.x << ' ' << ray.Origin.y << ' ' << ray.Origin.z;
    if (bits(found) != bits(least)) break;
    if (found) ++hits;
    if (hash) AddToHash(*hash, bits(found));
  }
  return hits;
}

TEST(TriangleTreeTest, TheDistanceIsTheLeastOfAllFaces) {
  constexpr std::uint64_t Golden = 0x2FB550213EA7056D; // of the distances
  Dice dice;
  struct Row {
    std::string Name;
    float Size;
    Surface Faces;
  };
  std::vector<Row> rows{
      {"one face", 1, Soup(dice, 0, 1, 1)},
      {"five faces", 2, Soup(dice, 1, 1, 5)},
      {"small faces", 10, Soup(dice, 10, 0.6f, 500)},
      {"large faces", 10, Soup(dice, 3, 10, 100)},
      {"tiny mesh", 1e-5f, Soup(dice, 1e-5f, 1e-6f, 100)},
      {"huge mesh", 1e6f, Soup(dice, 1e6f, 3e5f, 100)},
      {"level sheet", 8, Sheet(16, [](auto, auto) { return 0.25f; })},
      {"steps", 8, Sheet(16, [](auto x, auto z) { return static_cast<float>((x + z) / 2 % 3); })},
      {"hills", 8, Sheet(16, [&](auto, auto) { return dice.Any(0, 2); })}};
  Row grid{"corners, lines and faces of a grid", 3, {}};
  for (int i = 0; i < 300; ++i) grid.Faces.Add({dice.OnGrid(3), dice.OnGrid(3), dice.OnGrid(3)});
  rows.push_back(grid);
  Row same{"the same faces many times", 10, Soup(dice, 5, 5, 10)};
  const auto once = same.Faces.Indices;
  for (int i = 0; i < 20; ++i) same.Faces.Indices.insert(same.Faces.Indices.end(), once.begin(), once.end());
  rows.push_back(same);
  Row stack{"faces at two heights that are neighbouring numbers", 10, {}};
  for (int i = 0; i < 100; ++i) {
    const float y = 1 + 0x1p-23f * static_cast<float>(i % 2), x = static_cast<float>(i % 5);
    stack.Faces.Add({Vector{x - 10, y, -9}, {x + 9, y, -9}, {x, y, 9}});
  }
  rows.push_back(stack);
  Row shrinking{"each face half the one before", 1, {}};
  for (float size = 1; size > 1e-6f; size *= 0.5f)
    shrinking.Faces.Add({Vector{size, size, 0}, {size, 0, size}, {0, size, size}});
  rows.push_back(shrinking);

  std::uint64_t hash = FnvStart;
  for (const Row &row : rows) {
    constexpr int Rays = 3000;
    const auto ray = [&] { return AnyRay(dice, row.Faces, row.Size); };
    const int hits = ExpectTheLeastOfAllFaces(row.Name, row.Faces, Rays, ray, &hash);
    EXPECT_GT(hits, Rays / 8) << row.Name;
    EXPECT_LT(hits, Rays * 7 / 8) << row.Name;
  }
  EXPECT_EQ(hash, Golden) << "new value: 0x" << std::hex << hash;
}

/// Rays in the very plane of faces: whether they hit is decided by rounding alone.
TEST(TriangleTreeTest, FacesSeenEdgeOnAreTheSameInEveryTree) {
  Dice dice;
  const auto inPlane = [&] {
    const float x = std::floor(dice.Any(-0x1p20f, 0x1p20f)), y = std::floor(dice.Any(-0x1p20f, 0x1p20f));
    return Times({x, y, x + y}, 0x1p-16f);
  };
  Surface plane;
  for (int i = 0; i < 100; ++i) plane.Add({inPlane(), inPlane(), inPlane()});
  ExpectTheLeastOfAllFaces("plane", plane, 3000, [&] { return D3DRMRAY{inPlane(), inPlane()}; });
}

/// Ever larger faces on all axes around the ray's origin, so that a tree could become very deep and all of it
/// waits during the walk.
TEST(TriangleTreeTest, FacesOfAllSizesFitIntoATree) {
  Surface faces;
  for (float size = 0x1p60f; size > 0x1p-130f; size *= 0.5f) {
    const float twice = -2 * size;
    faces.Add({Vector{twice, -size, -size}, {0, size, size}, {0, size, -size}});
    faces.Add({Vector{-size, twice, -size}, {size, 0, size}, {size, 0, -size}});
    faces.Add({Vector{-size, -size, twice}, {size, size, 0}, {size, -size, 0}});
  }
  Dice dice;
  const auto outward = [&] { return D3DRMRAY{dice.In(1), dice.In(0x1p-40f)}; };
  EXPECT_GT(ExpectTheLeastOfAllFaces("all sizes", faces, 300, outward), 100);
}

} // namespace

#include "scene/graph/triangle_tree.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr std::uint32_t FacesInLeaf = 4;
// A child is `index * LeafSizes + faces` for a leaf, or `index * LeafSizes + IsNode` for an inner node.
constexpr std::uint32_t LeafSizes = 8;
constexpr std::uint32_t IsNode = 7;
constexpr std::size_t Bins = 16; ///< of the surface area heuristic
constexpr int HalvingLevel = 24; ///< from here on nodes are halved, so that no tree is deeper than 40 levels
// Of a traversal: three siblings on each level, and the last node's four.
constexpr std::size_t StackSize = 128;

// The boxes are tested in single precision, with a ray so thick that the test never misses a face that the
// ray hits. The tolerances are relative to the coordinates of mesh and ray.
constexpr float RayRadius = 0x1p-20f; ///< more than the roundings and `OffRay`
constexpr double OffRay = 0x1p-23;    ///< largest distance of a hit's point from the ray
constexpr double LeastSlope = 1e-20;  ///< of a direction's components to the longest; the inverse is finite

template <class Floats> Floats Min(Floats a, Floats b) { return a < b ? a : b; }
template <class Floats> Floats Max(Floats a, Floats b) { return a > b ? a : b; }

std::array<float, 3> Coordinates(const Vector &v) { return {v.x, v.y, v.z}; }

/// Intersects the ray with a face. The test of a shared edge uses the same two corners in both faces and
/// differs only in sign, so a ray can't pass between them. Seen edge-on, a face can pass this test by
/// rounding alone. The computed point then lies off the ray and is rejected.
std::optional<double> IntersectFace(const Vector &p, const Vector &q, const Vector &r, const D3DRMRAY &ray) {
  const double dx = ray.Direction.x, dy = ray.Direction.y, dz = ray.Direction.z;
  const auto relative = [&](const Vector &v) {
    return std::array<double, 3>{static_cast<double>(v.x) - ray.Origin.x,
                                 static_cast<double>(v.y) - ray.Origin.y,
                                 static_cast<double>(v.z) - ray.Origin.z};
  };
  const auto a = relative(p), b = relative(q), c = relative(r);
  const auto side = [&](const std::array<double, 3> &s, const std::array<double, 3> &t) {
    return dx * (s[1] * t[2] - s[2] * t[1]) + dy * (s[2] * t[0] - s[0] * t[2]) +
           dz * (s[0] * t[1] - s[1] * t[0]);
  };
  const double u = side(b, c), v = side(c, a), w = side(a, b);
  const bool inside = (u >= 0 && v >= 0 && w >= 0) || (u <= 0 && v <= 0 && w <= 0);
  const double sum = u + v + w;
  if (!inside || sum == 0.0) return std::nullopt;
  const double square = dx * dx + dy * dy + dz * dz;
  double along = 0, away = 0, size = 0;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const double at = (u * a[axis] + v * b[axis] + w * c[axis]) / sum;
    along += at * (axis == 0 ? dx : axis == 1 ? dy : dz);
    away += at * at;
    size += a[axis] * a[axis] + b[axis] * b[axis] + c[axis] * c[axis];
  }
  const double distance = along / square;
  const double aside = away - distance * along; // squared
  if (distance < 0.0 || aside > size * OffRay * OffRay) return std::nullopt;
  return distance;
}

} // namespace

void TriangleTree::Box::Enclose(const Box &other) {
  for (std::size_t axis = 0; axis < 3; ++axis) {
    Low[axis] = std::min(Low[axis], other.Low[axis]);
    High[axis] = std::max(High[axis], other.High[axis]);
  }
}

float TriangleTree::Box::HalfSurface() const {
  const float x = High[0] - Low[0], y = High[1] - Low[1], z = High[2] - Low[2];
  return x * y + y * z + z * x;
}

void TriangleTree::Build(std::span<const Vector> positions, std::span<const std::uint32_t> indices) {
  nodes_.clear();
  faces_.clear();
  reach_ = 0;
  std::vector<BoxedFace> faces;
  faces.reserve(indices.size() / 3);
  for (std::size_t i = 0; i + 2 < indices.size(); i += 3) {
    BoxedFace face{{}, {indices[i], indices[i + 1], indices[i + 2]}};
    for (const std::uint32_t corner : {indices[i], indices[i + 1], indices[i + 2]}) {
      const auto at = Coordinates(positions[corner]);
      face.Bounds.Enclose({at, at});
      for (const float coordinate : at) reach_ = std::max(reach_, std::abs(coordinate));
    }
    faces.push_back(face);
  }
  faces_.reserve(faces.size());
  if (!faces.empty()) BuildNode(faces, 0);
  nodes_.shrink_to_fit();
}

std::uint32_t TriangleTree::BuildNode(std::span<BoxedFace> faces, int level) {
  std::array<std::span<BoxedFace>, Width> parts{faces};
  std::size_t count = 1;
  for (; count < Width; ++count) {
    auto &largest = *std::ranges::max_element(parts, {}, &std::span<BoxedFace>::size);
    if (largest.size() <= FacesInLeaf) break;
    const std::size_t first = Split(largest, level);
    parts[count] = largest.subspan(first);
    largest = largest.first(first);
  }
  const std::size_t node = nodes_.size();
  nodes_.emplace_back();
  for (std::size_t i = 0; i < Width; ++i) {
    Box box;
    for (const BoxedFace &face : parts[i]) box.Enclose(face.Bounds);
    for (std::size_t axis = 0; axis < 3; ++axis) {
      nodes_[node].Bounds[0][axis][i] = box.Low[axis];
      nodes_[node].Bounds[1][axis][i] = box.High[axis];
    }
    if (parts[i].size() > FacesInLeaf) {
      const std::uint32_t child = BuildNode(parts[i], level + 1);
      nodes_[node].Children[i] = child * LeafSizes + IsNode;
    } else {
      nodes_[node].Children[i] = static_cast<std::uint32_t>(faces_.size() * LeafSizes + parts[i].size());
      for (const BoxedFace &face : parts[i]) faces_.push_back(face.Corners);
    }
  }
  return static_cast<std::uint32_t>(node);
}

/// Splits the faces by the surface area heuristic, along the axis on which they are spread most. Reorders
/// them and returns the size of the first part.
std::size_t TriangleTree::Split(std::span<BoxedFace> faces, int level) {
  if (level >= HalvingLevel) return faces.size() / 2;
  const auto middle = [](const BoxedFace &face, std::size_t axis) {
    return 0.5f * face.Bounds.Low[axis] + 0.5f * face.Bounds.High[axis];
  };
  Box middles;
  for (const BoxedFace &face : faces) {
    const std::array<float, 3> at{middle(face, 0), middle(face, 1), middle(face, 2)};
    middles.Enclose({at, at});
  }
  std::size_t axis = 0;
  for (std::size_t other = 1; other < 3; ++other) {
    if (middles.High[other] - middles.Low[other] > middles.High[axis] - middles.Low[axis]) axis = other;
  }
  const float low = middles.Low[axis], width = middles.High[axis] - low;
  const auto binOf = [&](const BoxedFace &face) {
    const float bin = Bins * ((middle(face, axis) - low) / width);
    return static_cast<std::size_t>(std::min(Bins - 1.0f, bin)); // the last if it isn't a number
  };
  struct Part {
    Box Bounds;
    std::size_t Faces = 0;

    void Add(const Part &other) {
      Bounds.Enclose(other.Bounds);
      Faces += other.Faces;
    }
    float Cost() const { return Bounds.HalfSurface() * static_cast<float>(Faces); }
  };
  std::array<Part, Bins> bins;
  for (const BoxedFace &face : faces) bins[binOf(face)].Add({face.Bounds, 1});
  std::array<Part, Bins> after = bins; // each bin and all after it
  for (std::size_t i = Bins - 1; i > 0; --i) after[i - 1].Add(after[i]);
  float leastCost = Box::Infinity;
  std::size_t best = 0;
  Part before;
  for (std::size_t i = 1; i < Bins; ++i) {
    before.Add(bins[i - 1]);
    if (before.Faces == 0 || after[i].Faces == 0) continue;
    const float cost = before.Cost() + after[i].Cost();
    if (cost >= leastCost) continue;
    leastCost = cost;
    best = i;
  }
  if (best == 0) return faces.size() / 2;
  // Stable, so that every standard library builds the same tree.
  const auto second = std::stable_partition(faces.begin(), faces.end(),
                                            [&](const BoxedFace &face) { return binOf(face) < best; });
  return static_cast<std::size_t>(second - faces.begin());
}

std::optional<double> TriangleTree::Intersect(std::span<const Vector> positions, const D3DRMRAY &ray) const {
  const auto direction = Coordinates(ray.Direction), origin = Coordinates(ray.Origin);
  const double longest = std::max({std::abs(direction[0]), std::abs(direction[1]), std::abs(direction[2])});
  if (nodes_.empty() || longest == 0.0) return std::nullopt;
  // The ray enters a box through one of its two bounds on each axis and leaves it through the other. The
  // origin is moved so that it enters earlier and leaves later.
  std::array<float, 3> inverse, toEnter, toLeave;
  std::array<std::size_t, 3> enterBound;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const double component = std::max<double>(std::abs(direction[axis]), longest * LeastSlope);
    inverse[axis] = static_cast<float>(std::copysign(longest / component, direction[axis]));
    const float radius = std::copysign(RayRadius * (std::abs(origin[axis]) + reach_), direction[axis]);
    toEnter[axis] = origin[axis] + radius;
    toLeave[axis] = origin[axis] - radius;
    enterBound[axis] = std::signbit(direction[axis]) ? 1 : 0;
  }
  struct Entry {
    float Enter; ///< distance at which the ray enters its box, in lengths of the longest component
    std::uint32_t Child;
  };
  std::array<Entry, StackSize> stack; // the nearest child of a node on top
  std::size_t count = 0;
  stack[count++] = {0.0f, IsNode};
  std::optional<double> nearest;
  float farthest = Box::Infinity; // distance to a box that may have a nearer face
  while (count > 0) {
    const Entry &next = stack[--count];
    if (next.Enter > farthest) continue;
    const std::uint32_t first = next.Child / LeafSizes, faces = next.Child % LeafSizes;
    if (faces != IsNode) {
      for (const Face &face : std::span(faces_).subspan(first, faces)) {
        const auto distance = IntersectFace(positions[face.A], positions[face.B], positions[face.C], ray);
        if (!distance || (nearest && *distance >= *nearest)) continue;
        nearest = distance;
        farthest = static_cast<float>(*distance * longest) * (1.0f + RayRadius);
      }
      continue;
    }
    const Node &node = nodes_[first];
    const auto enters = [&](std::size_t axis) {
      return (node.Bounds[enterBound[axis]][axis] - toEnter[axis]) * inverse[axis];
    };
    const auto leaves = [&](std::size_t axis) {
      return (node.Bounds[1 - enterBound[axis]][axis] - toLeave[axis]) * inverse[axis];
    };
    const Floats enter = Max(Max(enters(0), enters(1)), Max(enters(2), Floats{}));
    const Floats leave = Min(Min(leaves(0), leaves(1)), Min(leaves(2), Floats{} + farthest));
    const std::size_t others = count;
    for (std::size_t i = 0; i < Width; ++i) {
      stack[count] = {enter[i], node.Children[i]};
      count += enter[i] <= leave[i] ? 1 : 0; // no branch, which processors would often mispredict
    }
    for (std::size_t i = others + 1; i < count; ++i) {
      for (std::size_t at = i; at > others && stack[at - 1].Enter < stack[at].Enter; --at) {
        std::swap(stack[at - 1], stack[at]);
      }
    }
  }
  return nearest;
}

#include "scene/graph/triangle_tree.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::uint32_t FacesInLeaf = 4;
constexpr std::size_t DeepestTree = 64; ///< stack of a traversal; deeper than any tree of 2^32 faces
constexpr double RoundingSlack = 1e-14; ///< relative; several roundings of a double

std::array<float, 3> Coordinates(const Vector &v) { return {v.x, v.y, v.z}; }

/// Intersects the ray with a face. The test of a shared edge uses the same two corners in both faces and
/// differs only in sign, so a ray can't pass between them.
std::optional<double> Meet(const Vector &p, const Vector &q, const Vector &r, const D3DRMRAY &ray) {
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
  double along = 0;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const double at = (u * a[axis] + v * b[axis] + w * c[axis]) / sum;
    along += at * (axis == 0 ? dx : axis == 1 ? dy : dz);
  }
  const double distance = along / square;
  if (distance < 0.0) return std::nullopt;
  return distance;
}

} // namespace

TriangleTree::Box TriangleTree::BoxOf(std::span<const Vector> positions, std::span<const Face> faces) {
  Box box{positions[faces[0].A], positions[faces[0].A]};
  for (const Face &face : faces) {
    for (const std::uint32_t corner : {face.A, face.B, face.C}) {
      const Vector &v = positions[corner];
      box.Low = {std::min(box.Low.x, v.x), std::min(box.Low.y, v.y), std::min(box.Low.z, v.z)};
      box.High = {std::max(box.High.x, v.x), std::max(box.High.y, v.y), std::max(box.High.z, v.z)};
    }
  }
  return box;
}

void TriangleTree::Build(std::span<const Vector> positions, std::span<const std::uint32_t> indices) {
  nodes_.clear();
  faces_.clear();
  for (std::size_t i = 0; i + 2 < indices.size(); i += 3) {
    faces_.push_back({indices[i], indices[i + 1], indices[i + 2]});
  }
  if (!faces_.empty()) BuildNode(positions, 0, static_cast<std::uint32_t>(faces_.size()));
}

void TriangleTree::BuildNode(std::span<const Vector> positions, std::uint32_t first, std::uint32_t count) {
  const std::span<Face> faces = std::span(faces_).subspan(first, count);
  const Box box = BoxOf(positions, faces);
  const std::size_t node = nodes_.size();
  nodes_.push_back({box, first, count});
  if (count <= FacesInLeaf) return;
  const auto low = Coordinates(box.Low), high = Coordinates(box.High);
  std::size_t axis = 0;
  for (std::size_t i = 1; i < 3; ++i) {
    if (high[i] - low[i] > high[axis] - low[axis]) axis = i;
  }
  const auto middle = [&](const Face &face) {
    return Coordinates(positions[face.A])[axis] + Coordinates(positions[face.B])[axis] +
           Coordinates(positions[face.C])[axis];
  };
  const std::uint32_t half = count / 2;
  std::nth_element(faces.begin(), faces.begin() + half, faces.end(),
                   [&](const Face &a, const Face &b) { return middle(a) < middle(b); });
  BuildNode(positions, first, half);
  nodes_[node].First = static_cast<std::uint32_t>(nodes_.size());
  nodes_[node].Count = 0;
  BuildNode(positions, first + half, count - half);
}

std::optional<double> TriangleTree::Intersect(std::span<const Vector> positions, const D3DRMRAY &ray) const {
  std::optional<double> nearest;
  if (nodes_.empty()) return nearest;
  const auto direction = Coordinates(ray.Direction), origin = Coordinates(ray.Origin);
  const auto meetsBox = [&](const Box &box) {
    const auto low = Coordinates(box.Low), high = Coordinates(box.High);
    double enter = 0.0, leave = nearest.value_or(1e300);
    for (std::size_t axis = 0; axis < 3; ++axis) {
      if (direction[axis] == 0.0f) {
        if (origin[axis] < low[axis] || origin[axis] > high[axis]) return false;
        continue;
      }
      double from = (static_cast<double>(low[axis]) - origin[axis]) / direction[axis];
      double to = (static_cast<double>(high[axis]) - origin[axis]) / direction[axis];
      if (from > to) std::swap(from, to);
      enter = std::max(enter, from);
      leave = std::min(leave, to);
    }
    // The quotients are rounded, so a face on the boundary of the box needs some slack.
    return enter <= leave * (1.0 + RoundingSlack);
  };
  std::array<std::uint32_t, DeepestTree> waiting;
  std::size_t count = 0;
  waiting[count++] = 0;
  while (count > 0) {
    const std::uint32_t index = waiting[--count];
    const Node &node = nodes_[index];
    if (!meetsBox(node.Bounds)) continue;
    if (node.Count == 0) {
      waiting[count++] = node.First;
      waiting[count++] = index + 1;
      continue;
    }
    for (std::uint32_t i = node.First; i < node.First + node.Count; ++i) {
      const Face &face = faces_[i];
      const auto distance = Meet(positions[face.A], positions[face.B], positions[face.C], ray);
      if (distance && (!nearest || *distance < *nearest)) nearest = distance;
    }
  }
  return nearest;
}

#pragma once

// A bounding volume hierarchy over the faces of a mesh, for ray picking.

#include "scene/graph/vector.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

class TriangleTree {
public:
  /// Rebuilds the tree for these vertices, three indices per face.
  void Build(std::span<const Vector> positions, std::span<const std::uint32_t> indices);

  /// Distance to the nearest face hit from either side, in lengths of the ray's direction, 0 or more.
  /// Watertight: a ray through a shared edge or corner hits one of the faces.
  std::optional<double> Intersect(std::span<const Vector> positions, const D3DRMRAY &ray) const;

private:
  struct Box {
    Vector Low, High;
  };
  struct Node {
    Box Bounds;
    std::uint32_t First; ///< of a leaf: its first face; else the second child (the first follows its parent)
    std::uint32_t Count; ///< faces of a leaf, 0 for an inner node
  };
  struct Face {
    std::uint32_t A, B, C;
  };

  void BuildNode(std::span<const Vector> positions, std::uint32_t first, std::uint32_t count);
  static Box BoxOf(std::span<const Vector> positions, std::span<const Face> faces);

  std::vector<Node> nodes_;
  std::vector<Face> faces_;
};

#pragma once

// A bounding volume hierarchy over the faces of a mesh, for ray picking. A match needs one ray a step, for
// which a scan of all faces would do; tools and tests play thousands of matches.

#include "scene/graph/vector.h"

#include <array>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <vector>

class TriangleTree {
public:
  /// Rebuilds the tree for these vertices, three indices per face.
  void Build(std::span<const Vector> positions, std::span<const std::uint32_t> indices);

  /// Distance to the nearest face hit from either side, in lengths of the ray's direction, 0 or more.
  /// Watertight: a ray through a shared edge or corner hits one of the faces. The distance is
  /// bit-identical to the least of those to the single faces, whatever the tree looks like.
  std::optional<double> Intersect(std::span<const Vector> positions, const D3DRMRAY &ray) const;

private:
  static constexpr std::size_t Width = 4; ///< children of a node
  /// A SIMD vector with a lane for each child. Its results are those of scalar arithmetic.
  using Floats [[gnu::vector_size(Width * sizeof(float))]] = float;

  struct Box {
    static constexpr float Infinity = std::numeric_limits<float>::infinity();
    std::array<float, 3> Low{Infinity, Infinity, Infinity};
    std::array<float, 3> High{-Infinity, -Infinity, -Infinity};

    void Enclose(const Box &other);
    float HalfSurface() const;
  };
  struct Face {
    std::uint32_t A, B, C;
  };
  /// A face during the build.
  struct BoxedFace {
    Box Bounds;
    Face Corners;
  };
  struct Node {
    std::array<std::array<Floats, 3>, 2> Bounds; ///< low and high on each axis; empty without a child
    std::array<std::uint32_t, Width> Children;   ///< a node, or a range of faces
  };

  static std::size_t Split(std::span<BoxedFace> faces, int level);
  std::uint32_t BuildNode(std::span<BoxedFace> faces, int level);

  std::vector<Node> nodes_;
  std::vector<Face> faces_;
  float reach_ = 0; ///< largest coordinate of a vertex, without its sign
};

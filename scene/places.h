#pragma once

// Positions at the start of a possession, scene units. +z points from the middle of the table to the player,
// +y up, and +x to the left of a player who faces the far edge.

#include "scene/graph/frame.h"

namespace Places {
constexpr Vector Start{0.0f, 0.0f, 85.0f}; ///< of the piece, its aim and the arrow
constexpr Vector Goal{0.0f, 20.0f, -95.0f};
constexpr Vector Camera{0.0f, 10.0f, 120.0f};
constexpr Vector KickAim{0.0f, 0.0f, 87.0f}; ///< of the aim in a point-after, where a kick starts
constexpr float TableHalf = 88.0f;           ///< from the table's middle to each edge
constexpr float FarEdgeZ = -TableHalf;       ///< the edge behind the End Zone
constexpr float CircleZ = -79.2f;            ///< the middle of the bonus area
constexpr float CircleRadius = 8.0f;
} // namespace Places

/// Repeats of the sky texture per scene unit, at load and while it drifts.
constexpr float SkyRepeat = 0.003f;

inline void Place(const Ref<Direct3DRMFrame3> &frame, const Ref<Direct3DRMFrame3> &reference,
                  const Vector &at) {
  frame->SetPosition(reference, at.x, at.y, at.z);
}

#pragma once

// Where things stand at the start of a possession, scene units: +z points from the middle of the table to the
// player, +y up, and +x to the left hand of a player who looks at the far edge.

#include "scene/graph/frame.h"

namespace Places {
constexpr Vector Start{0.0f, 0.0f, 85.0f}; ///< of the piece, its aim and the arrow
constexpr Vector Goal{0.0f, 20.0f, -95.0f};
constexpr Vector Camera{0.0f, 10.0f, 120.0f};
constexpr Vector KickAim{0.0f, 0.0f, 87.0f}; ///< of the aim in a point-after: a kick starts here
constexpr float FarEdgeZ = -88.0f;           ///< the edge behind the End Zone
} // namespace Places

/// Repeats of the sky's texture to the scene unit, as it hangs and as it drifts.
constexpr float SkyRepeat = 0.003f;

inline void Place(const Ref<Direct3DRMFrame3> &frame, const Ref<Direct3DRMFrame3> &reference,
                  const Vector &at) {
  frame->SetPosition(reference, at.x, at.y, at.z);
}

#pragma once

// The light of the scene, worked out for a vertex: a warm key light from above and behind the start, the cool
// sky, and what the ground throws back. It depends on the normal alone, so it is worked out when a mesh turns
// and not for every picture.

#include "scene/graph/frame.h"

/// Light that falls on a vertex, times its own colour. Parts may be above 1.
struct VertexLight {
  float Fill[3];      ///< of sky and ground, and the surface's own glow
  float TextureShare; ///< 1 shows all of the texture, 0 none
  float Key[3];       ///< of the key light: what a shadow takes away
};

/// Toward the key light, unit length.
Vector KeyLight();

/// @param normal    unit length, in the scene
/// @param color     of face and vertex, as stored
/// @param emissive  of the material
VertexLight LightOf(const Vector &normal, const FaceColor &color, const ColorValue &emissive);

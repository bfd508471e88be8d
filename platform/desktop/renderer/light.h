#pragma once

// Vertex lighting: a warm key light from above and behind the start, a cool sky, and light reflected by the
// ground. It doesn't depend on the camera, so it is computed when a mesh moves and not for every frame.

#include "scene/graph/frame.h"

/// A vertex's colour, or the factor on its texture, with a gamma of 2 as colours are stored. Channels may
/// exceed 1.
struct VertexLight {
  float Color[3];
  float TextureShare; ///< 1 shows all of the texture, 0 none
};

/// Toward the key light, unit length.
Vector KeyLight();

/// @param place     in the scene: the light is brightest over the field
/// @param normal    unit length, in the scene
/// @param color     of face and vertex, as stored
/// @param emissive  of the material
/// @param textured  whether the result is multiplied with a texture
VertexLight LightOf(const Vector &place, const Vector &normal, const FaceColor &color,
                    const ColorValue &emissive, bool textured);

/// The factor on colours of level ground in the key light's shadow.
Vector ShadeOnGround();

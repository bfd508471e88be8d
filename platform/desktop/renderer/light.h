#pragma once

// Vertex lighting: a warm key light from above and behind the start, a cool sky, and light reflected by the
// ground. It doesn't depend on the camera, so it is computed when a mesh moves and not for every frame.

#include "scene/graph/mesh_builder.h"

#include <QVector3D>
#include <QVector4D>

/// Toward the key light, unit length.
QVector3D KeyLight();

/// A vertex's colour, or the factor on its texture, with a gamma of 2 as colours are stored. Channels may
/// exceed 1. w is the weight of the texture: 1 shows all of it, 0 none.
/// @param place     in the scene: the light is brightest over the field
/// @param normal    unit length, in the scene
/// @param color     of face and vertex, as stored
/// @param emissive  of the material
/// @param textured  whether the result is multiplied with a texture
QVector4D LightOf(const QVector3D &place, const QVector3D &normal, const FaceColor &color,
                  const ColorValue &emissive, bool textured);

/// The factor on colours of level ground in the key light's shadow.
QVector3D ShadeOnGround();

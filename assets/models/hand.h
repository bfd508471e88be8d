#pragma once

#include "mesh.h"

/// Adds the hand that flicks: a pointing finger whose tip lies close behind the origin, and what of the hand
/// and the sleeve belongs to it, along +z. Lengths in scene units, the table's top at y = -0.5.
void AddHand(Mesh &mesh);

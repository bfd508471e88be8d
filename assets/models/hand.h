#pragma once

#include "mesh.h"

/// Adds the flicking hand: a pointing finger whose tip is close behind the origin, with hand and sleeve along
/// +z. Scene units, table top at y = -0.5.
void AddHand(Mesh &mesh);

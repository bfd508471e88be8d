#pragma once

// The draw list of a frame.

#include "platform/desktop/renderer/gpu_mesh.h"
#include "platform/desktop/renderer/placed.h"

#include <span>

/// A mesh to be drawn.
struct Item {
  Placed Where;
  GpuMesh *Mesh;
  Bounds Box;          ///< in the scene
  bool Changed;        ///< since the last frame
  bool Ground = false; ///< takes shadows
  bool Moves = true;   ///< drawn in every frame, even while the camera rests
};

/// Marks wide meshes, and the small ones of the same frame, as ground.
void MarkGround(std::span<Item> items);

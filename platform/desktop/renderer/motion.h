#pragma once

// Finds which meshes move while the camera rests. While a player aims only the hand turns and the clouds
// drift; the rest is drawn once and kept.

#include "platform/desktop/renderer/item.h"

#include <set>
#include <span>
#include <vector>

class Motion {
public:
  enum class Change {
    None,   ///< the frame looks like the last one
    Moving, ///< the kept still meshes remain valid
    Still   ///< the still meshes must be redrawn
  };

  /// Marks the items that move: all of them when the camera does, or when a mesh has come or gone.
  Change Next(std::span<Item> items, bool shadowsMoved, const QMatrix4x4 &toClip);

  /// Treats everything as moved in the next frame.
  void Reset() { last_.clear(); }

private:
  std::vector<const GpuMesh *> last_;
  std::set<const GpuMesh *> moving_; ///< all that have moved since the camera did
  QMatrix4x4 toClip_;
};

#pragma once

// Finds which meshes move while the camera rests. While a player aims only the hand turns and the clouds
// drift; the rest is drawn once and kept.

#include "platform/desktop/renderer/item.h"

#include <span>
#include <vector>

class Motion {
public:
  enum class Change {
    None,   ///< the frame looks like the last one
    Moving, ///< the kept still meshes remain valid
    Still   ///< the still meshes must be redrawn
  };

  /// Marks the items that move: all of them when the camera does.
  Change Next(std::span<Item> items, bool shadowsMoved, const QMatrix4x4 &toClip);

  /// Treats everything as moved in the next frame.
  void Reset() { last_.clear(); }

private:
  /// Everything that decides how a mesh is drawn.
  struct Seen {
    const Direct3DRMMeshBuilder3 *Mesh;
    const Direct3DRMFrame3 *Frame;
    std::uint64_t Geometry, Coordinates; ///< revisions
    const Direct3DRMTexture *Texture;
    const Direct3DRMMaterial2 *Material;
    QMatrix4x4 ToWorld;
    bool operator==(const Seen &) const = default;
  };
  const Seen *Last(const Seen &now) const;

  std::vector<Seen> last_;
  std::vector<const Direct3DRMMeshBuilder3 *> moving_; ///< all that have moved since the camera did
  QMatrix4x4 toClip_;
};

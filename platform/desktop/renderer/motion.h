#pragma once

// What moves from frame to frame while the camera rests. A player who aims sees the hand turn and the clouds
// drift: the rest is drawn once and kept.

#include "platform/desktop/renderer/shadows.h"

#include <span>
#include <vector>

class Motion {
public:
  enum class Change {
    None,   ///< the frame is as the last one
    Moving, ///< what was still in the last frame is still so
    Still   ///< what is still must be drawn again
  };

  /// Marks the items that move.
  Change Next(std::span<Item> items, bool shadowsMoved, const QMatrix4x4 &toClip);

  /// In the next frame everything moves.
  void Forget() { last_.clear(); }

private:
  /// Everything that decides how a mesh is drawn, and whether it has moved since the camera did.
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
  std::vector<const Direct3DRMMeshBuilder3 *> moving_; ///< since the camera rests
  QMatrix4x4 toClip_;
};

#pragma once

// What of a picture must be drawn again. A player who aims sees the arrow turn and the clouds drift: that is
// a small part of the picture, and without a graphics card every pixel counts.

#include "platform/desktop/renderer/shadows.h"

#include <span>
#include <vector>

class Damage {
public:
  /// The parts of the picture that differ from the last one, none of which overlaps another.
  std::vector<QRect> Parts(std::span<const Item> items, std::span<const ShadowRegion> shadows,
                           bool shadowsMoved, const QMatrix4x4 &toClip, QSize size);

  /// Nothing of the last picture can stay.
  void Forget() { drawn_.clear(); }

private:
  /// Everything that decides how a mesh looks.
  struct Look {
    const Direct3DRMMeshBuilder3 *Mesh;
    std::uint64_t Geometry, Coordinates; ///< revisions
    const Direct3DRMTexture *Texture;
    const Direct3DRMMaterial2 *Material;
    Transform Place;
    bool operator==(const Look &) const = default;
  };
  struct Drawn {
    Look As;
    Bounds Box; ///< in the scene
  };

  std::vector<Drawn> drawn_;
  std::vector<ShadowRegion> shadows_;
  QMatrix4x4 toClip_;
};

#pragma once

// What of a frame must be drawn again. A player who aims sees the hand turn and the clouds drift: that is a
// part of the frame, and without a graphics card every pixel counts.

#include "platform/desktop/renderer/shadows.h"

#include <span>
#include <vector>

class Damage {
public:
  /// Rectangles around everything in which the frame differs from the last one. They may overlap.
  std::vector<QRect> Rectangles(std::span<const Item> items, std::span<const ShadowRegion> shadows,
                                bool shadowsMoved, const QMatrix4x4 &toClip, QSize size);

  /// Nothing of the last frame can stay.
  void Forget() { drawn_.clear(); }

private:
  /// Everything that decides how a mesh is drawn.
  struct Appearance {
    const Direct3DRMMeshBuilder3 *Mesh;
    std::uint64_t Geometry, Coordinates; ///< revisions
    const Direct3DRMTexture *Texture;
    const Direct3DRMMaterial2 *Material;
    Transform Place;
    bool operator==(const Appearance &) const = default;
  };
  struct Drawn {
    Appearance As;
    QMatrix4x4 ToWorld;
    Bounds Box; ///< in the scene
  };

  std::vector<Drawn> drawn_;
  std::vector<ShadowRegion> shadows_;
  QMatrix4x4 toClip_;
};

#pragma once

// Flat wraps: the mapping from vertices to texture coordinates.

#include "scene/graph/frame.h"

constexpr std::int32_t D3DRMWRAP_FLAT = 0;

class Direct3DRMWrap {
public:
  /// @param system  the reference frame in the scene, in which origin, direction and up are given
  /// The other parameters as in `Direct3DRM3::CreateWrap`.
  Direct3DRMWrap(const Transform &system, const Vector &origin, const Vector &direction, const Vector &up,
                 float ou, float ov, float su, float sv);

  /// Computes the texture coordinates of every vertex at its current position.
  void Apply(const Ref<Direct3DRMMeshBuilder3> &mesh) const;

private:
  struct Row {
    double x, y, z;
  };
  Row origin_;
  Row along_;  ///< the wrap's x axis, for u
  Row across_; ///< its y axis, for v
  float ou_, ov_, su_, sv_;
};

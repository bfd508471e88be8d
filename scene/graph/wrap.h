#pragma once

// Flat wraps: the rule that gives each vertex of a mesh its texture coordinates.

#include "scene/graph/frame.h"

constexpr std::int32_t D3DRMWRAP_FLAT = 0;

class Direct3DRMWrap {
public:
  /// @param system  where origin, direction and up are told: the reference frame in the scene
  /// The others as in `Direct3DRM3::CreateWrap`.
  Direct3DRMWrap(const Transform &system, const Vector &origin, const Vector &direction, const Vector &up,
                 float ou, float ov, float su, float sv);

  /// Computes the texture coordinates of every vertex as it stands now.
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

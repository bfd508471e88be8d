#pragma once

// The root object: the factory of everything in a graph.

#include "scene/graph/wrap.h"

/// The depth range of the camera.
class Direct3DRMViewport2 {
public:
  /// Distance of the far clipping plane from the camera, scene units.
  void SetBack(float distance) { back_ = distance; }
  float GetBack() const { return back_; }

private:
  float back_ = 100.0f;
};

class Direct3DRM3 {
public:
  /// A new frame at its parent's origin. A frame without a parent is a root.
  Ref<Direct3DRMFrame3> CreateFrame(const Ref<Direct3DRMFrame3> &parent);
  Ref<Direct3DRMMeshBuilder3> CreateMeshBuilder();
  Ref<Direct3DRMMaterial2> CreateMaterial(float power);

  /// @throws SceneError  if the file can't be read
  Ref<Direct3DRMTexture> LoadTexture(const std::filesystem::path &file);

  /// A flat wrap: z axis along (dx, dy, dz), y axis along (ux, uy, uz), origin at (ox, oy, oz). A vertex at
  /// (x, y, z) of that system gets u = su * x - ou and v = sv * y - ov. With a zero up vector u runs along x
  /// and v along z. The arguments are in the current coordinates of the reference frame, or of the scene if
  /// it is null.
  Ref<Direct3DRMWrap> CreateWrap(std::int32_t type, const Ref<Direct3DRMFrame3> &reference, float ox,
                                 float oy, float oz, float dx, float dy, float dz, float ux, float uy,
                                 float uz, float ou, float ov, float su, float sv);

  /// Increases with every visible change, and only then.
  std::uint64_t Revision() const { return revision_.Count(); }

private:
  GraphRevision revision_;
};

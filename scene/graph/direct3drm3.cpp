#include "scene/graph/direct3drm3.h"

Ref<Direct3DRMFrame3> Direct3DRM3::CreateFrame(const Ref<Direct3DRMFrame3> &parent) {
  auto frame = std::make_shared<Direct3DRMFrame3>(revision_);
  if (parent) {
    frame->parent_ = parent.get();
    parent->children_.push_back(frame);
  }
  return frame;
}

Ref<Direct3DRMMeshBuilder3> Direct3DRM3::CreateMeshBuilder() {
  return std::make_shared<Direct3DRMMeshBuilder3>(revision_);
}

Ref<Direct3DRMMaterial2> Direct3DRM3::CreateMaterial(float power) {
  return std::make_shared<Direct3DRMMaterial2>(power);
}

Ref<Direct3DRMTexture> Direct3DRM3::LoadTexture(const std::filesystem::path &file) {
  return std::make_shared<Direct3DRMTexture>(file);
}

Ref<Direct3DRMWrap> Direct3DRM3::CreateWrap(std::int32_t type, const Ref<Direct3DRMFrame3> &reference,
                                            float ox, float oy, float oz, float dx, float dy, float dz,
                                            float ux, float uy, float uz, float ou, float ov, float su,
                                            float sv) {
  if (type != D3DRMWRAP_FLAT) throw SceneError("only flat wraps are supported");
  const Transform system = reference ? reference->World() : Transform{};
  return std::make_shared<Direct3DRMWrap>(system, Vector{ox, oy, oz}, Vector{dx, dy, dz}, Vector{ux, uy, uz},
                                          ou, ov, su, sv);
}

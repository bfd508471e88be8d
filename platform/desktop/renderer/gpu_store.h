#pragma once

// Everything of a graph that has been uploaded, by the object that it was made of.

#include "platform/desktop/renderer/gpu_mesh.h"

#include <memory>
#include <unordered_map>

class GpuStore {
public:
  /// @param anisotropy  of textures seen at flat angles: 1 for none; below it not even two mip-maps are mixed
  GpuStore(Gl &gl, float anisotropy) : gl_(gl), anisotropy_(anisotropy) {}
  ~GpuStore();
  GpuStore(const GpuStore &) = delete;
  GpuStore &operator=(const GpuStore &) = delete;

  GpuMesh &Mesh(const Ref<Direct3DRMMeshBuilder3> &mesh);
  GLuint Texture(const Ref<Direct3DRMTexture> &texture);

private:
  Gl &gl_;
  float anisotropy_;
  // The references keep the keys alive: an address can't come to mean another object.
  std::unordered_map<Ref<Direct3DRMMeshBuilder3>, std::unique_ptr<GpuMesh>> meshes_;
  std::unordered_map<Ref<Direct3DRMTexture>, GLuint> textures_;
};

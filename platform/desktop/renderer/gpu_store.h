#pragma once

// The uploaded meshes and textures of a graph, by their objects.

#include "platform/desktop/renderer/gpu_mesh.h"

#include <QOpenGLTexture>

#include <memory>
#include <unordered_map>

class GpuStore {
public:
  /// @param anisotropy  of texture filtering: 1 for none; below 1 mip-maps aren't blended either
  GpuStore(Gl &gl, float anisotropy) : gl_(gl), anisotropy_(anisotropy) {}

  GpuMesh &Mesh(const Ref<Direct3DRMMeshBuilder3> &mesh) {
    return meshes_.try_emplace(mesh, gl_).first->second;
  }
  /// @param distant  whether it is seen only from afar; in a small view such a texture is uploaded at a lower
  ///                 resolution, because software OpenGL keeps it in the program's own memory
  QOpenGLTexture &Texture(const Ref<Direct3DRMTexture> &texture, bool distant);

  /// @param height  of the frame, pixels
  void SetView(int height);

private:
  Gl &gl_;
  float anisotropy_;
  bool smallView_ = false;
  // The references keep the keys alive, so that no address is reused.
  std::unordered_map<Ref<Direct3DRMMeshBuilder3>, GpuMesh> meshes_;
  std::unordered_map<Ref<Direct3DRMTexture>, std::unique_ptr<QOpenGLTexture>> textures_;
};

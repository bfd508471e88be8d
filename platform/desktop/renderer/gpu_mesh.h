#pragma once

// Meshes and textures on the graphics card, uploaded when they have changed and kept until then.

#include "scene/graph/mesh_builder.h"

#include <QOpenGLFunctions_3_3_Core>

#include <memory>
#include <unordered_map>

using Gl = QOpenGLFunctions_3_3_Core;

/// The box around a mesh, in its own coordinates.
struct Bounds {
  Vector Low, High;
};

/// One mesh as drawn: a vertex three times a face, since faces have colours of their own.
class GpuMesh {
public:
  explicit GpuMesh(Gl &gl);
  ~GpuMesh();
  GpuMesh(const GpuMesh &) = delete;
  GpuMesh &operator=(const GpuMesh &) = delete;

  void Upload(const Direct3DRMMeshBuilder3 &mesh);
  void Draw();
  const Bounds &Box() const { return box_; }

private:
  void UploadGeometry(const MeshData &data);
  void UploadCoordinates(const MeshData &data);

  Gl &gl_;
  GLuint array_ = 0;
  GLuint geometry_ = 0;
  GLuint coordinates_ = 0;
  GLsizei count_ = 0;
  std::uint64_t geometryRevision_ = ~0ULL;
  std::uint64_t coordinateRevision_ = ~0ULL;
  Bounds box_;
};

/// Everything that has been uploaded, by the object that it was made of.
class GpuStore {
public:
  explicit GpuStore(Gl &gl) : gl_(gl) {}
  ~GpuStore();
  GpuStore(const GpuStore &) = delete;
  GpuStore &operator=(const GpuStore &) = delete;

  GpuMesh &Mesh(const Ref<Direct3DRMMeshBuilder3> &mesh);
  GLuint Texture(const Ref<Direct3DRMTexture> &texture);

  /// Sharpness of textures seen at flat angles: 1 for none.
  void SetAnisotropy(float samples) { anisotropy_ = samples; }

private:
  Gl &gl_;
  float anisotropy_ = 1.0f;
  // The references keep the keys alive: an address can't come to mean another object.
  std::unordered_map<Ref<Direct3DRMMeshBuilder3>, std::unique_ptr<GpuMesh>> meshes_;
  std::unordered_map<Ref<Direct3DRMTexture>, GLuint> textures_;
};

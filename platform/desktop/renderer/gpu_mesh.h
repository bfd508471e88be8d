#pragma once

// Meshes and textures on the graphics card, uploaded when they have changed and kept until then.

#include "platform/desktop/renderer/light.h"
#include "scene/graph/frame.h"

#include <QMatrix4x4>
#include <QOpenGLFunctions_3_3_Core>

#include <memory>
#include <unordered_map>

using Gl = QOpenGLFunctions_3_3_Core;

/// A box around vertices, in their mesh's coordinates.
struct Bounds {
  Vector Low, High;
};

/// Whether a box lies outside what shows: all of its corners beyond one plane.
bool Outside(const Bounds &box, const QMatrix4x4 &toClip);

/// One mesh as drawn.
class GpuMesh {
public:
  explicit GpuMesh(Gl &gl);
  ~GpuMesh();
  GpuMesh(const GpuMesh &) = delete;
  GpuMesh &operator=(const GpuMesh &) = delete;

  /// Brings the mesh up to date, where it hangs now.
  void Upload(const Direct3DRMMeshBuilder3 &mesh, const Transform &place);

  /// Draws the parts that show.
  void Draw(const QMatrix4x4 &toClip);

  const Bounds &Box() const { return box_; }

private:
  /// A vertex of the file with the colour of its faces: where faces of several colours meet there are
  /// several.
  struct Corner {
    std::uint32_t Index;
    FaceColor Color;
  };
  /// A few hundred faces that lie together.
  struct Cluster {
    Bounds Box;
    GLsizei First, Count; ///< indices
  };

  void UploadGeometry(const MeshData &data);
  void UploadCoordinates(const MeshData &data);
  void UploadLight(const MeshData &data, const Transform &place, const ColorValue &emissive);

  Gl &gl_;
  GLuint array_ = 0;
  GLuint positions_ = 0, coordinates_ = 0, light_ = 0, indices_ = 0;
  std::vector<Corner> corners_;
  std::vector<Cluster> clusters_;
  Bounds box_;
  std::uint64_t geometryRevision_ = ~0ULL;
  std::uint64_t coordinateRevision_ = ~0ULL;
  Transform litAt_;
  const Direct3DRMMaterial2 *litWith_ = nullptr;
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

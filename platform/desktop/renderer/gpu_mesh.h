#pragma once

// A mesh on the graphics card, uploaded when it has changed and kept until then.

#include "platform/desktop/renderer/light.h"
#include "platform/desktop/renderer/open_gl.h"
#include "platform/desktop/renderer/placed.h"

#include <vector>

/// One mesh as drawn.
class GpuMesh {
public:
  explicit GpuMesh(Gl &gl);
  ~GpuMesh();
  GpuMesh(const GpuMesh &) = delete;
  GpuMesh &operator=(const GpuMesh &) = delete;

  /// Brings the mesh up to date, where it hangs now.
  void Upload(const Direct3DRMMeshBuilder3 &mesh, const Transform &place);

  /// Whether it is paint on the ground: strokes that must not break where they are thinner than a pixel.
  bool IsPaint(const Direct3DRMMeshBuilder3 &mesh) const;

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
  void UploadWaysAcross(const MeshData &data);
  void UploadCoordinates(const MeshData &data);
  void UploadLight(const Direct3DRMMeshBuilder3 &mesh, const Transform &place);

  Gl &gl_;
  GLuint array_ = 0;
  GLuint positions_ = 0, coordinates_ = 0, light_ = 0, indices_ = 0, across_ = 0;
  std::vector<Corner> corners_;
  std::vector<Cluster> clusters_;
  Bounds box_;
  std::uint64_t geometryRevision_ = ~0ULL;
  std::uint64_t coordinateRevision_ = ~0ULL;
  Transform litAt_;
  const Direct3DRMMaterial2 *litWith_ = nullptr;
};

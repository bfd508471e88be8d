#pragma once

// A mesh on the graphics card, uploaded when it has changed and kept until then.

#include "platform/desktop/renderer/draw_list.h"
#include "platform/desktop/renderer/open_gl.h"

#include <QOpenGLBuffer>
#include <QOpenGLVertexArrayObject>

#include <tuple>

/// One mesh as drawn.
class GpuMesh {
public:
  explicit GpuMesh(Gl &gl);

  /// Uploads what has changed. Returns whether the mesh looks different now.
  /// @param toWorld  from the mesh into the scene, for its light
  bool Upload(const Direct3DRMMeshBuilder3 &mesh, const QMatrix4x4 &toWorld);

  /// Whether the mesh is paint on the ground, whose strokes must not break where they are thinner than a
  /// pixel. Its texture coordinates are the strokes' widths.
  bool IsPaint() const { return paint_; }

  /// `Plain` faces show nothing of the texture and are drawn without it. They come first in the index buffer.
  enum class Faces { All, Plain, Textured };
  void Draw(Faces faces);

  const Bounds &Box() const { return box_; }

private:
  void UploadGeometry(const MeshData &data);
  void UploadLight(const Direct3DRMMeshBuilder3 &mesh, const QMatrix4x4 &toWorld);

  Gl &gl_;
  QOpenGLVertexArrayObject array_;
  QOpenGLBuffer positions_, normals_, coordinates_, light_, indices_{QOpenGLBuffer::IndexBuffer};
  GLsizei indexCount_ = 0;
  GLsizei plainCount_ = 0; ///< indices of plain faces
  Bounds box_;
  bool paint_ = false;

  // What is uploaded.
  std::uint64_t geometry_ = ~0ULL, mapping_ = 0; ///< revisions of the geometry and the texture coordinates
  std::tuple<const Direct3DRMTexture *, const Direct3DRMMaterial2 *, QMatrix4x4> litBy_;
};

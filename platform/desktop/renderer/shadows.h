#pragma once

// Shadows on the ground: a map of the key light, and the parts of the ground that shadows can reach. Only
// these sample the map, so the cost grows with the area in shadow.

#include "platform/desktop/renderer/draw_list.h"
#include "platform/desktop/renderer/open_gl.h"

#include <QOpenGLShaderProgram>
#include <QOpenGLTexture>
#include <QOpenGLVertexArrayObject>

#include <span>
#include <vector>

class Shadows {
public:
  /// @param size  of the map's sides, pixels
  /// @param taps  samples of the map for a shadow's halo
  /// @throws RendererError
  Shadows(Gl &gl, int size, int taps);
  ~Shadows();
  Shadows(const Shadows &) = delete;
  Shadows &operator=(const Shadows &) = delete;

  /// Finds the meshes that cast shadows on these grounds, and redraws the map if one has moved.
  /// @return whether one has
  bool Update(std::span<const Item> items, std::span<const Item> grounds);

  /// Darkens the ground, which is where the stencil buffer has a 1.
  void Draw(const QMatrix4x4 &toClip);

private:
  /// The part of the ground that one mesh can shade.
  struct Region {
    GpuMesh *Caster;
    QMatrix4x4 ToWorld; ///< from the mesh into the scene
    Bounds Ground;      ///< in the scene
    float Softness;     ///< radius of the penumbra, scene units; grows with the height of the mesh
    float Halo;         ///< radius of the ambient occlusion around the shadow, scene units
    bool operator==(const Region &) const = default;
  };
  void DrawMap();

  Gl &gl_;
  int size_;
  GLuint buffer_ = 0;
  QOpenGLTexture map_{QOpenGLTexture::Target2D};
  QOpenGLShaderProgram toMap_, shade_;
  QOpenGLVertexArrayObject noVertices_;
  std::vector<Region> regions_;
};

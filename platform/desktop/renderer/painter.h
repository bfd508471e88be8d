#pragma once

// Draws the meshes of a graph front to back, with shadows on the ground.

#include "platform/desktop/renderer/frame_buffer.h"
#include "platform/desktop/renderer/gpu_mesh.h"
#include "platform/desktop/renderer/lens.h"
#include "platform/desktop/renderer/shadows.h"

#include <memory>
#include <optional>
#include <span>
#include <unordered_map>

/// The settings of a quality level.
struct PaintQuality {
  int Samples;       ///< per pixel, 0 for one
  int ShadowSize;    ///< pixels of the shadow map's sides
  int ShadowTaps;    ///< samples of the shadow map for a shadow's halo
  float Anisotropy;  ///< of textures, 1 for none
  bool FineTextures; ///< with blended mip-maps, and at their full resolution in a small view too
};

class Painter {
public:
  /// @param lens  chooses the view of every frame; outlives the painter
  Painter(Gl &gl, const PaintQuality &quality, Lens &lens);

  /// Draws the meshes below a frame.
  /// @param camera  its place; the lens chooses the view
  /// @param back    distance of the far clipping plane, scene units
  /// @param image   drawn into, Format_RGB32; holds the last frame
  /// @return whether anything has changed
  bool Paint(const Direct3DRMFrame3 &scene, const Direct3DRMFrame3 &camera, float back, QImage &image);

  /// Redraws everything in the next frame.
  void RedrawAll() { motion_.Reset(); }

private:
  void Resize(QSize size);
  void Draw(std::span<const Item> items, std::span<const Item> grounds, bool moving);
  void DrawItem(const Item &item);
  void DrawFaces(const Item &item, QOpenGLShaderProgram &surface, GpuMesh::Faces faces);
  void DrawOutline(const Item &item);
  QOpenGLTexture &Texture(const Ref<Direct3DRMTexture> &texture);
  void DrawBackdrop();

  Gl &gl_;
  Lens &lens_;
  PaintQuality quality_;
  Shadows shadows_;
  Motion motion_;
  std::optional<FrameBuffer> target_;
  bool smallView_ = false;
  // Uploaded meshes and textures. The references keep the keys alive, so that no address is reused.
  std::unordered_map<Ref<Direct3DRMMeshBuilder3>, GpuMesh> meshes_;
  std::unordered_map<Ref<Direct3DRMTexture>, std::unique_ptr<QOpenGLTexture>> textures_;
  QOpenGLShaderProgram plain_, textured_, painted_; ///< variants for surfaces
  QOpenGLShaderProgram backdrop_, outline_;
  QOpenGLVertexArrayObject noVertices_;
  QMatrix4x4 toClip_;
  QVector3D camera_;
  const Direct3DRMFrame3 *outlined_ = nullptr; ///< the camera's target, while it is small in the frame
};

#pragma once

// Draws the meshes of a graph, from the nearest thing to the farthest place, with shadows on the ground.

#include "platform/desktop/renderer/backdrop.h"
#include "platform/desktop/renderer/frame_buffer.h"
#include "platform/desktop/renderer/gpu_store.h"
#include "platform/desktop/renderer/lens.h"
#include "platform/desktop/renderer/motion.h"
#include "platform/desktop/renderer/shadows.h"

#include <compare>
#include <map>
#include <memory>
#include <span>

/// What a level of quality gives.
struct PaintQuality {
  int Samples;      ///< of a pixel, 0 for one
  int ShadowSize;   ///< pixels of the shadow map's sides
  int ShadowTaps;   ///< looks at the shadow map for what lies around a pixel
  float Anisotropy; ///< of textures; below 1 not even two of their sizes are mixed
};

class Painter {
public:
  /// @param lens  frames every picture; outlives the painter
  Painter(Gl &gl, const PaintQuality &quality, Lens &lens);
  ~Painter();
  Painter(const Painter &) = delete;
  Painter &operator=(const Painter &) = delete;

  /// @param camera  where it stands; the lens chooses what it shows
  /// @param back    distance of the far clipping plane, scene units
  /// @param picture is drawn into, Format_RGB32; holds the last picture
  /// @return whether anything has changed
  bool Paint(std::span<const Placed> placed, const Direct3DRMFrame3 &camera, float back, QImage &picture);

  /// The next picture is drawn as a whole.
  void Forget() { motion_.Forget(); }

private:
  void Draw(std::span<const Item> items, std::span<const Item> grounds, bool moving);
  void DrawGrounds(std::span<const Item> grounds, bool moving);
  void DrawItem(const Item &item, int taps);
  /// What a shading program for surfaces is made for.
  struct SurfaceKind {
    int ShadowTaps; ///< looks for a shadow's halo; 0 where none can lie
    bool Pictured;  ///< with a texture
    bool Paint;     ///< strokes of paint on the ground
    bool Specular;  ///< gleams in the key light
    auto operator<=>(const SurfaceKind &) const = default;
  };
  QOpenGLShaderProgram &SurfaceProgram(const SurfaceKind &kind);
  void SetScene(QOpenGLShaderProgram &surface);

  Gl &gl_;
  PaintQuality quality_;
  Lens &lens_;
  GpuStore store_;
  Shadows shadows_;
  Backdrop backdrop_;
  Motion motion_;
  std::unique_ptr<FrameBuffer> target_;
  std::map<SurfaceKind, std::unique_ptr<QOpenGLShaderProgram>> surfaces_;
  QOpenGLShaderProgram *bound_ = nullptr;
  QMatrix4x4 toClip_;
  QMatrix4x4 shown_; ///< the same, or the clip space of the part of the picture that is drawn now
  QVector3D camera_;
  float softness_ = 0, halo_ = 0; ///< of the shadows that are drawn now, in parts of the map
};

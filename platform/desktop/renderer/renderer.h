#pragma once

// Draws a scene graph off the screen with OpenGL 3.3 core. That is synchronous and repeatable: the same scene
// gives the same frame to the bit, and the window needs no OpenGL.

#include "platform/desktop/renderer/painter.h"
#include "scene/graph/rm_canvas.h"

#include <QImage>
#include <QOffscreenSurface>
#include <QOpenGLContext>

#include <optional>
#include <vector>

enum class Quality {
  Measured, ///< chosen from the kind of computer and the cost of the first frames
  Full,     ///< four samples a pixel, soft shadows, anisotropic textures
  Low       ///< one sample a pixel with smoothed edges, a smaller shadow map
};

class Renderer {
public:
  /// @throws RendererError
  explicit Renderer(Quality quality = Quality::Measured);
  ~Renderer();
  Renderer(const Renderer &) = delete;
  Renderer &operator=(const Renderer &) = delete;

  /// Draws the graph of this canvas unless it looks as in the last frame.
  /// @return whether `Frame` is new
  bool Draw(const RMCanvas &canvas, QSize devicePixels);

  /// The last frame; valid until the next `Draw`.
  const QImage &Frame() const { return frame_; }

  /// The level in use: `Full` or `Low`.
  Quality Level() const { return level_; }

private:
  void StartPainter();
  void ReleaseShaderCompiler();
  void Measure(double milliseconds);

  QOpenGLContext context_;
  QOffscreenSurface surface_;
  Gl gl_;
  Quality level_;
  Lens lens_;
  std::optional<Painter> painter_;
  QImage frame_;
  Ref<Direct3DRM3> drawnRoot_;
  std::uint64_t drawnRevision_ = 0;

  bool measuring_;
  std::size_t frames_ = 0;       ///< of this painter
  std::vector<double> measured_; ///< ms of each frame, wall or processor time, whichever is longer
};

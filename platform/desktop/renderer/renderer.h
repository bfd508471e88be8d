#pragma once

// Draws a scene graph off the screen with OpenGL 3.3 core. That is synchronous and repeatable: the same scene
// gives the same frame to the bit, and the window needs no OpenGL.

#include "scene/graph/rm_canvas.h"

#include <QImage>
#include <QSize>

#include <memory>
#include <stdexcept>

/// The computer lacks the OpenGL that the game needs; says what is missing.
class RendererError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

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
  const QImage &Frame() const;

  /// The level in use: `Full` or `Low`.
  Quality Level() const;

private:
  class Drawing;
  std::unique_ptr<Drawing> drawing_;
};

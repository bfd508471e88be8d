#pragma once

// Draws a scene graph with OpenGL 3.3 core into a picture of its own. Drawing off the screen keeps it
// synchronous and repeatable: the same scene gives the same picture to the bit, and the window stays a plain
// one.

#include "scene/graph/rm_canvas.h"

#include <QImage>
#include <QSize>

#include <memory>
#include <stdexcept>

/// The computer has no OpenGL that the scene can be drawn with; says what is missing.
class RendererError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

enum class Quality {
  Measured, ///< begins as the kind of computer suggests, and changes over if the first pictures say so
  Full,     ///< four samples a pixel, soft shadows, sharp textures at flat angles
  Low       ///< one sample a pixel with smoothed edges, small shadows
};

class Renderer {
public:
  /// @throws RendererError
  explicit Renderer(Quality quality = Quality::Measured);
  ~Renderer();
  Renderer(const Renderer &) = delete;
  Renderer &operator=(const Renderer &) = delete;

  /// Draws the graph of this canvas, unless nothing that shows has changed since the last picture. Returns
  /// whether `Picture` is new.
  bool Draw(const RMCanvas &canvas, QSize devicePixels);

  /// The picture drawn last; valid until the next `Draw`.
  const QImage &Picture() const;

  /// The level in use: `Full` or `Low`.
  Quality Level() const;

private:
  class Drawing;
  std::unique_ptr<Drawing> drawing_;
};

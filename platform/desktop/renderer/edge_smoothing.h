#pragma once

// Smooths the stairs of a picture that has one sample a pixel: where neighbours differ, a pixel is mixed with
// those along the edge that runs through it. A few looks a pixel, in place of four samples.

#include "platform/desktop/renderer/gpu_mesh.h"

#include <QOpenGLShaderProgram>

class EdgeSmoothing {
public:
  explicit EdgeSmoothing(Gl &gl);
  ~EdgeSmoothing();
  EdgeSmoothing(const EdgeSmoothing &) = delete;
  EdgeSmoothing &operator=(const EdgeSmoothing &) = delete;

  /// How far away a pixel may lie that has a say in another's colour, pixels.
  static constexpr int Reach = 3;

  /// Draws the smoothed form of a picture into what is drawn into now, pixel for pixel.
  void Draw(GLuint picture);

private:
  Gl &gl_;
  QOpenGLShaderProgram program_;
  GLuint array_ = 0; ///< without vertices: the program makes its own three
};

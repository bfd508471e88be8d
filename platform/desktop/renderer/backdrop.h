#pragma once

// What shows where nothing stands: dusk in the distance, from a dim ground over a glowing horizon to the
// evening sky.

#include "platform/desktop/renderer/gpu_mesh.h"

#include <QOpenGLShaderProgram>

class Backdrop {
public:
  explicit Backdrop(Gl &gl);
  ~Backdrop();
  Backdrop(const Backdrop &) = delete;
  Backdrop &operator=(const Backdrop &) = delete;

  /// Fills what is still empty.
  void Draw(const QMatrix4x4 &toClip);

private:
  Gl &gl_;
  QOpenGLShaderProgram program_;
  GLuint array_ = 0, vertices_ = 0, indices_ = 0;
  GLsizei indexCount_ = 0;
};

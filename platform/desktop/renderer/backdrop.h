#pragma once

// The background behind all meshes: a dome of dusk, from dim ground over a glowing horizon to evening sky.

#include "platform/desktop/renderer/open_gl.h"

#include <QMatrix4x4>
#include <QOpenGLBuffer>
#include <QOpenGLShaderProgram>
#include <QOpenGLVertexArrayObject>

class Backdrop {
public:
  explicit Backdrop(Gl &gl);

  /// Fills the pixels that no mesh covers.
  void Draw(const QMatrix4x4 &toClip);

private:
  Gl &gl_;
  QOpenGLShaderProgram program_;
  QOpenGLVertexArrayObject array_;
  QOpenGLBuffer vertices_, indices_{QOpenGLBuffer::IndexBuffer};
  GLsizei indexCount_ = 0;
};

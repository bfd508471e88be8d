#pragma once

// The background behind all meshes: a dome of dusk, from dim ground over a glowing horizon to evening sky.

#include "platform/desktop/renderer/open_gl.h"

#include <QMatrix4x4>
#include <QOpenGLShaderProgram>
#include <QOpenGLVertexArrayObject>

class Backdrop {
public:
  explicit Backdrop(Gl &gl);

  /// Fills the pixels that no mesh covers.
  void Draw(const QMatrix4x4 &toClip, const QVector3D &camera);

private:
  Gl &gl_;
  QOpenGLShaderProgram program_;
  QOpenGLVertexArrayObject noVertices_;
};

#include "platform/desktop/renderer/backdrop.h"

#include "platform/desktop/renderer/shaders.h"

Backdrop::Backdrop(Gl &gl) : gl_(gl) {
  BuildProgram(program_, BackdropVertexShader, BackdropFragmentShader);
  noVertices_.create();
}

void Backdrop::Draw(const QMatrix4x4 &toClip, const QVector3D &camera) {
  program_.bind();
  program_.setUniformValue("toScene", toClip.inverted());
  program_.setUniformValue("camera", camera);
  noVertices_.bind();
  gl_.glDepthFunc(GL_LEQUAL);
  gl_.glDrawArrays(GL_TRIANGLES, 0, 3);
}

#include "platform/desktop/renderer/edge_smoothing.h"

#include "platform/desktop/renderer/shaders.h"

EdgeSmoothing::EdgeSmoothing(Gl &gl) : gl_(gl) {
  BuildProgram(program_, SmoothingVertexShader, SmoothingFragmentShader);
  gl_.glGenVertexArrays(1, &array_);
}

EdgeSmoothing::~EdgeSmoothing() { gl_.glDeleteVertexArrays(1, &array_); }

void EdgeSmoothing::Draw(GLuint picture) {
  constexpr GLsizei Corners = 3;
  gl_.glDisable(GL_DEPTH_TEST);
  gl_.glActiveTexture(GL_TEXTURE0);
  gl_.glBindTexture(GL_TEXTURE_2D, picture);
  program_.bind();
  program_.setUniformValue("drawn", 0);
  gl_.glBindVertexArray(array_);
  gl_.glDrawArrays(GL_TRIANGLES, 0, Corners);
}

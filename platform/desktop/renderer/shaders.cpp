#include "platform/desktop/renderer/shaders.h"

#include "platform/desktop/renderer/renderer.h"

void BuildProgram(QOpenGLShaderProgram &program, const std::string &vertex, const std::string &fragment) {
  if (!program.addShaderFromSourceCode(QOpenGLShader::Vertex, vertex.c_str()) ||
      !program.addShaderFromSourceCode(QOpenGLShader::Fragment, fragment.c_str()) || !program.link()) {
    throw RendererError("a shading program can't be built: " + program.log().toStdString());
  }
  program.removeAllShaders(); // their source and intermediate code, which linking has used
}

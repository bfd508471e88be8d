#include "platform/desktop/renderer/shaders.h"

#include "platform/desktop/renderer/open_gl.h"

void BuildProgram(QOpenGLShaderProgram &program, const std::string &definitions, const char *vertex,
                  const char *fragment) {
  const std::string head = "#version 330 core\n" + definitions;
  if (!program.addShaderFromSourceCode(QOpenGLShader::Vertex, (head + vertex).c_str()) ||
      !program.addShaderFromSourceCode(QOpenGLShader::Fragment, (head + fragment).c_str()) ||
      !program.link()) {
    throw RendererError("a shading program can't be built: " + program.log().toStdString());
  }
  program.removeAllShaders(); // their source and intermediate code, which linking has used
}

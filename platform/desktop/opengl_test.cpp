#include "platform/desktop/opengl_test.h"

#include "platform/desktop/renderer/renderer.h"

#include <QGuiApplication>

#include <cstdlib>
#include <iostream>
#include <string_view>

bool AsksForOpenGLTest(int argc, char **argv) {
  return argc == 2 && std::string_view(argv[1]) == OpenGLTestOption;
}

int TestOpenGL(int &argc, char **argv) {
  const QGuiApplication application(argc, argv);
  try {
    const Renderer renderer(Quality::Low);
    std::_Exit(EXIT_SUCCESS); // skips the driver's clean-up, which may crash
  } catch (const std::exception &error) {
    std::cout << error.what() << std::flush;
    return EXIT_FAILURE;
  }
}

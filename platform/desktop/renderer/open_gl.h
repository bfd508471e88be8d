#pragma once

// The OpenGL that the scene is drawn with.

#include <QOpenGLFunctions_3_3_Core>

#include <stdexcept>

using Gl = QOpenGLFunctions_3_3_Core;

/// The computer lacks the OpenGL that the game needs; says what is missing.
class RendererError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

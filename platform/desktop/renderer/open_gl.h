#pragma once

// The OpenGL that the scene is drawn with.

#include <QOpenGLFunctions_3_3_Core>

using Gl = QOpenGLFunctions_3_3_Core;

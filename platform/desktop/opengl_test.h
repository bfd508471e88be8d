#pragma once

// Tries whether the game could draw here, in a process of its own: a driver takes memory that the launch
// window doesn't need, and may take its process down.

/// The program with this argument alone is that process.
constexpr const char *OpenGLTestOption = "--test-opengl";

bool AsksForOpenGLTest(int argc, char **argv);

/// Returns the process's status; what is missing it tells on standard output, where no library writes.
int TestOpenGL(int &argc, char **argv);

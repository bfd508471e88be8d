#pragma once

// Tests in a separate process whether OpenGL works: a driver uses memory that the launch window doesn't need,
// and may crash its process.

/// The program with this as its only argument is that process.
constexpr const char *OpenGLTestOption = "--test-opengl";

bool AsksForOpenGLTest(int argc, char **argv);

/// Returns the exit status of the process; prints what is missing to standard output, where no library
/// writes.
int TestOpenGL(int &argc, char **argv);

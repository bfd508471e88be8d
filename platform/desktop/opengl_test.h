#pragma once

// Tests in a separate process whether OpenGL works: a driver uses memory that the launch window doesn't need,
// and may crash its process.

/// The option that starts the program as that process.
constexpr const char *OpenGLTestOption = "--test-opengl";

bool AsksForOpenGLTest(int argc, char **argv);

/// Prints what is missing to standard output; libraries write to standard error.
/// @returns the exit status of the process
int TestOpenGL(int &argc, char **argv);

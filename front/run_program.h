#pragma once

#include "match/program.h"

/// Runs the whole program on a machine, from the launch window to the end.
/// @throws std::exception  if it can't go on; its session is closed by then
void RunProgram(Machine &machine, Program &program);

#pragma once

#include "match/program.h"

/// Runs the whole program on a machine, from the launch window to the end.
/// @returns the exit status
int RunProgram(Machine &machine, Program &program);

#pragma once

// All files are checked when the program starts and again when a match begins, so that a missing image
// doesn't surface after an hour of play.

#include "match/program.h"

/// Checks that every file which a match shows is readable.
/// @throws FileError  if one isn't; names the first and says why
void CheckMatchFiles(Machine &machine, Program &program);

/// The same for the information windows.
void CheckInformationFiles(Machine &machine);

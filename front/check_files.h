#pragma once

// What comes from files is looked at when the program starts and again when a match begins, so that nobody
// plays for an hour and then misses a picture.

#include "match/program.h"

/// Makes sure that everything which a match shows can be read.
/// @throws FileError  that names the first file which can't, and says why
void CheckMatchFiles(Machine &machine, Program &program);

/// The same for the windows that inform.
void CheckInformationFiles(Machine &machine);

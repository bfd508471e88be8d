#pragma once

// The windows that only inform. Each is made anew at each opening, waits until it has been closed, and
// changes nothing.

#include "platform/machine.h"

void ShowControls(Machine &machine);   ///< frmControls: how to play
void ShowBackground(Machine &machine); ///< frmBackground: how the game began
void ShowReadMe(Machine &machine);     ///< frmText: the read-me

#pragma once

// The information windows. Each call opens a new window and returns when it is closed.

#include "platform/machine.h"

void ShowControls(Machine &machine);   ///< frmControls: how to play
void ShowBackground(Machine &machine); ///< frmBackground: how the game began
void ShowReadMe(Machine &machine);     ///< frmText: the read-me

#pragma once

#include "platform/machine.h"

/// The network of this computer, for one program.
std::shared_ptr<DirectPlay4> CreateAsioDirectPlay(Machine &machine);

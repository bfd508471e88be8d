#pragma once

#include "platform/machine.h"

class HomeRouter;

/// The network of this computer, for one program.
/// @param router  lets callers in to a host; null: none is asked for anything
std::shared_ptr<DirectPlay4> CreateAsioDirectPlay(Machine &machine, HomeRouter *router = nullptr);

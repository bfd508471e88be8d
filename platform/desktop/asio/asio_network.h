#pragma once

#include "platform/machine.h"

class HomeRouter;

/// The real network, for one program.
/// @param router  forwards the port of a host; null for none
std::shared_ptr<DirectPlay4> CreateAsioDirectPlay(Machine &machine, HomeRouter *router = nullptr);

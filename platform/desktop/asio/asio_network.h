#pragma once

#include "platform/machine.h"

class HomeRouter;

/// Wakes the sleeping machine whenever the socket has data, while the result lives.
using WatchSocket = std::function<std::shared_ptr<void>(int socket)>;

/// The real network, for one program.
/// @param router  forwards the port of a host; null for none
/// @param watch   without it data is found when the machine pumps next
std::shared_ptr<DirectPlay4> CreateAsioDirectPlay(Machine &machine, HomeRouter *router = nullptr,
                                                  WatchSocket watch = {});

#pragma once

// A player at the launch window.

#include "tools/playthrough/seat.h"

#include <string>

/// A place on the launch window, twips.
struct Spot {
  int X, Y;
};

namespace Spots {
constexpr Spot Controls{1380, 3780}, Background{3300, 3780}, ReadMe{8400, 5700}, Address{6400, 5700};
constexpr Spot Rounds{3120, 4450}, AgainstComputer{1380, 5700}, AgainstHuman{3300, 5700};
constexpr Spot ThisComputer{5700, 2020}, FirstGame{5700, 4920}; ///< rows of the lists
constexpr Spot Connect{6060, 3240}, Join{6060, 3780}, Refresh{6060, 4260};
constexpr Spot Create{8040, 3780}, Cancel{8040, 4260};
} // namespace Spots

/// Waits for the launch window.
::Window OpenLaunchWindow(Seat &seat);
void ClickSpot(Seat &seat, ::Window launch, const Spot &spot);
void EnterRounds(Seat &seat, ::Window launch, const std::string &rounds);
void CloseLaunchWindow(Seat &seat); ///< by the keyboard, which it must have

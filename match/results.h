#pragma once

// The results of a shot that have a card.

#include <cstdint>

namespace Results {

/// A result's code is the number of its card, `Picture1` to `Picture7`, and goes over the wire as it is.
enum Code : std::int16_t {
  GoodKick = 1,
  MissedKick,
  Touchdown,
  Turnover, ///< the piece fell off the table
  Bonus,
  Penalty, ///< over the far edge before the third attempt
  Short,   ///< the third attempt came to rest short of the End Zone
  First = GoodKick,
  Last = Short,
};

} // namespace Results

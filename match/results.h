#pragma once

// The results of a shot that have a card.

#include <cstdint>

namespace Results {

/// The code is the number of the card, `Picture1` to `Picture7`, and is also the code on the wire.
enum Code : std::int16_t {
  GoodKick = 1,
  MissedKick,
  Touchdown,
  Turnover, ///< the piece fell off the table
  Bonus,
  Penalty, ///< over the far edge before the third attempt
  Short,   ///< the third attempt stopped short of the End Zone
  First = GoodKick,
  Last = Short,
};

} // namespace Results

#pragma once

// Two programs in one process, that is two computers, over a line as bad as one likes. Scripted players on
// both find each other in the lobby and play a match with mouse and keys. Everything happens on one virtual
// clock and by one seed.

#include "platform/headless/wire.h"

#include <cstdint>
#include <filesystem>
#include <string>

/// How one side saw the match.
struct SeenMatch {
  int Rounds = 0;
  int Home = 0, Away = 0;
  std::string EndCard;
  int Shots = 0;              ///< flicks that flew, own and replayed
  std::uint64_t PathHash = 0; ///< of every place of the piece in them
  std::string LeftBy;         ///< title of the box that ended it, if one did
};

struct SimulatedMatch {
  SeenMatch Host, Joiner;
  FaultyWire::Counters Line;
  bool Loss = false, Break = false, Cut = false; ///< what the line was set to do
  std::int32_t VirtualMs = 0;
  std::string Disagreement; ///< empty if both sides agree
};

/// Plays one match of that many rounds.
/// @throws std::runtime_error  if it doesn't end in bounded virtual time
SimulatedMatch Simulate(const std::filesystem::path &game, std::uint32_t seed, int rounds);

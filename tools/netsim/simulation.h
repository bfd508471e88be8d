#pragma once

// Two programs in one process, that is two computers, over a line as bad as one likes. Scripted players on
// both find each other in the lobby and play a match with mouse and keys. Everything happens on one virtual
// clock and by one seed.

#include "platform/headless/wire.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

/// How one side saw the match.
struct SeenMatch {
  int Rounds = 0;
  int Home = 0, Away = 0;
  std::string EndCard;
  std::vector<std::uint64_t> Flicks; ///< own and replayed: hash of every place of the piece in each
  std::vector<float> Kicks;          ///< height of the piece after a kick's first step, which tells its force
  bool Quit = false;                 ///< this player pressed Esc
  std::string Box;                   ///< text of the box that ended it, if one did
};

struct SimulatedMatch {
  SeenMatch Host, Joiner;
  FaultyWire::Counters Line;
  bool Break = false; ///< the line broke before the match was over
  int Reconnects = 0; ///< connections that took over from a broken one
  std::int32_t VirtualMs = 0;
  std::string Disagreement; ///< empty if both sides agree
};

/// Plays one match of that many rounds.
/// @throws std::runtime_error  if it doesn't end in bounded virtual time
SimulatedMatch Simulate(const std::filesystem::path &game, std::uint32_t seed, int rounds);

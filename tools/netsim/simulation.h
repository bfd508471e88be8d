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

  int Dropped = 0;          ///< messages that the program took for out of place
  int ShotsSent = 0;        ///< flicks and kicks
  int ShotsWithoutHand = 0; ///< of those, that no hand on the button has let go
  int CardsInCharge = 0;    ///< cards of the other side that came while the hand was on the button
  int LeftInCharge = 0;     ///< the player went to another window with the hand on the button
  int LinesSaid = 0;        ///< chat, numbered from 1
  int LinesHeard = 0;       ///< number of the other side's last
  bool LineMissing = false; ///< one before it never showed
  bool ToldOfBreak = false; ///< the title has told of a broken line
};

/// How well the two computers and the line between them are.
struct Conditions {
  std::int32_t LatencyMs = 0, JitterMs = 0;      ///< one way
  double Loss = 0;                               ///< share of the packets
  std::int32_t HostDrawMs = 0, JoinerDrawMs = 0; ///< time that a picture takes
  bool TenTimesApart = false;                    ///< the two are, in speed
  bool LeaveAtOnce = false;                      ///< both players press Esc at one moment
};

struct SimulatedMatch {
  SeenMatch Host, Joiner;
  Conditions Under;
  FaultyWire::Counters Line;
  bool Break = false; ///< the line broke before the match was over
  int Reconnects = 0; ///< connections that took over from a broken one
  std::int32_t VirtualMs = 0;
  bool NeverMet = false;    ///< the line broke in the moment of joining
  std::string Disagreement; ///< empty if both sides agree

  /// A hash of all that both sides saw: the same for a seed on every computer and with every compiler.
  std::uint64_t Digest() const;
};

/// Plays one match of that many rounds.
/// @throws std::runtime_error  if it doesn't end in bounded virtual time
SimulatedMatch Simulate(const std::filesystem::path &game, std::uint32_t seed, int rounds);

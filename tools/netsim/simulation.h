#pragma once

// Two programs in one process, over a simulated line of any quality. Scripted players on both find each other
// in the lobby and play a match with mouse and keys. Everything runs on one virtual clock and from one seed.

#include "platform/headless/wire.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

/// The match as one side saw it.
struct SeenMatch {
  int Rounds = 0;
  int Home = 0, Away = 0;
  std::string EndCard;
  std::vector<std::uint64_t> Flicks; ///< own and replayed: hash of all positions of the piece in each
  std::vector<float>
      Kicks;         ///< height of the piece after the first step of each kick, which depends on its force
  bool Quit = false; ///< this player pressed Esc
  std::string Box;   ///< text of the box that ended the match, if any

  int Dropped = 0;               ///< messages dropped by the program
  int ShotsSent = 0;             ///< flicks and kicks
  int ShotsNotReleased = 0;      ///< of those, not released by the player
  int CardsWhileCharging = 0;    ///< cards of the other side during a charge
  int SwitchesWhileCharging = 0; ///< switches to another window during a charge
  int LinesSaid = 0;             ///< chat, numbered from 1
  int LinesHeard = 0;            ///< number of the last line received
  bool LineMissing = false;      ///< an earlier line was never shown
  bool ToldOfBreak = false;      ///< the title has reported a broken line
};

/// Speed of the two computers and quality of the line.
struct Conditions {
  std::int32_t LatencyMs = 0, JitterMs = 0;      ///< one way
  double Loss = 0;                               ///< fraction of packets lost
  std::int32_t HostDrawMs = 0, JoinerDrawMs = 0; ///< time to draw a frame
  bool TenTimesApart = false;                    ///< one computer is ten times as fast as the other
  bool LeaveAtOnce = false;                      ///< both players press Esc at the same moment
};

struct SimulatedMatch {
  SeenMatch Host, Joiner;
  Conditions Under;
  FaultyWire::Counters Line;
  bool Break = false; ///< there was an outage during the match
  int Reconnects = 0; ///< connections that replaced a broken one
  std::int32_t VirtualMs = 0;
  bool NeverMet = false;    ///< the line broke at the moment of joining
  std::string Disagreement; ///< empty if both sides agree

  /// A hash of what both sides saw. A seed gives the same hash on every computer and with every compiler.
  std::uint64_t Digest() const;
};

/// Plays one match.
/// @throws std::runtime_error  if it exceeds the maximum virtual time
SimulatedMatch Simulate(const std::filesystem::path &game, std::uint32_t seed, int rounds);

#include "tools/netsim/simulation.h"

#include "front/run_program.h"
#include "platform/session/session_direct_play.h"
#include "tools/netsim/fibre.h"
#include "tools/netsim/scripted_player.h"

#include <algorithm>
#include <stdexcept>

namespace {

constexpr std::int64_t LongestMatchMs = 4L * 3600 * 1000; ///< of the virtual clock, for any number of rounds

/// One computer with its program and its player.
struct Computer {
  Computer(const std::filesystem::path &game, FaultyWire &line, std::string at, bool host, int rounds,
           std::uint32_t seed)
      : address(std::move(at)), machine(game), program(machine), player(machine, host, rounds, seed),
        wire(line), fibre([this] { RunProgram(machine, program); }) {
    machine.MakeDirectPlay = [this] {
      return std::make_shared<session::SessionDirectPlay>(machine, wire.Plug(address));
    };
    machine.NextArrival = [this] { return wire.NextArrival(address); };
    machine.Sleeper = [this](std::int32_t moment) {
      wake = moment;
      fibre.Pause();
    };
  }

  /// When it has something to do at the latest; what arrives meanwhile counts too.
  std::int32_t NextMoment() const { return std::min(wake, wire.NextArrival(address).value_or(wake)); }

  std::string address;
  HeadlessMachine machine;
  Program program;
  ScriptedPlayer player;
  FaultyWire &wire;
  std::int32_t wake = 0;
  Fibre fibre;
};

std::string Compare(const SeenMatch &host, const SeenMatch &joiner) {
  if (!host.LeftBy.empty() || !joiner.LeftBy.empty()) return "a side left: " + host.LeftBy + joiner.LeftBy;
  if (host.Rounds != joiner.Rounds) return "rounds differ";
  if (host.Home != joiner.Away || host.Away != joiner.Home) return "scores aren't mirrored";
  if (host.Shots != joiner.Shots) return "numbers of shots differ";
  if (host.PathHash != joiner.PathHash) return "paths differ";
  const auto mirrored = [](const std::string &card) {
    return card == "frmHome" ? "frmAway" : card == "frmAway" ? "frmHome" : card;
  };
  if (host.EndCard.empty() || host.EndCard != mirrored(joiner.EndCard)) return "end cards don't fit";
  return {};
}

} // namespace

SimulatedMatch Simulate(const std::filesystem::path &game, std::uint32_t seed, int rounds) {
  std::mt19937 engine(seed);
  const auto random = [&engine] { return static_cast<std::uint32_t>(engine()); };
  const auto between = [&](int low, int high) {
    return low + static_cast<int>(random() % static_cast<unsigned>(high - low + 1));
  };
  std::int32_t now = 0;
  FaultyWire wire([&now] { return now; }, random());
  SimulatedMatch match;

  FaultyWire::Quality &line = wire.Line();
  line.LatencyMs = between(1, 150);
  line.JitterMs = between(0, 80);
  match.Loss = between(0, 1) == 1;
  if (match.Loss) line.Loss = 0.01 * between(1, 12);
  match.Break = between(0, 2) == 0;
  if (match.Break) {
    // One after the other, with time between them to come together again: thirty seconds without a line end a
    // match.
    std::int32_t at = between(8000, 40000);
    for (int i = between(1, 3); i > 0; --i) {
      const std::int32_t end = at + between(200, 20000);
      line.Breaks.push_back({at, end});
      at = end + between(15000, 40000);
    }
  }
  match.Cut = between(0, 3) == 0;
  const std::int32_t cutAt = between(10000, 60000);

  Computer host(game, wire, "10.0.0.1", true, rounds, random());
  // The joiner's own number of rounds doesn't count.
  Computer joiner(game, wire, "10.0.0.2", false, rounds + 2, random());
  host.machine.DrawMs = between(0, 1) * between(0, 60);
  joiner.machine.DrawMs = between(0, 1) * between(0, 60);
  host.machine.Seed = random();
  joiner.machine.Seed = random();

  bool cut = false;
  while (!host.fibre.Done() || !joiner.fibre.Done()) {
    Computer *next = &host;
    if (host.fibre.Done() || (!joiner.fibre.Done() && joiner.NextMoment() < host.NextMoment()))
      next = &joiner;
    now = std::max(now, next->NextMoment());
    if (now > LongestMatchMs) throw std::runtime_error("the match doesn't end");
    if (match.Cut && !cut && now >= cutAt) {
      cut = true;
      wire.CutConnections();
    }
    next->machine.SetNow(now);
    next->fibre.Resume();
  }
  match.Host = host.player.Seen();
  match.Joiner = joiner.player.Seen();
  match.Line = wire.Counted();
  match.VirtualMs = now;
  match.Disagreement = Compare(match.Host, match.Joiner);
  return match;
}

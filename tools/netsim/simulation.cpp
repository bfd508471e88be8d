#include "tools/netsim/simulation.h"

#include "front/run_program.h"
#include "platform/search_dialog.h"
#include "platform/session/session_direct_play.h"
#include "tools/fnv_hash.h"
#include "tools/netsim/fibre.h"
#include "tools/netsim/scripted_player.h"

#include <algorithm>
#include <bit>
#include <stdexcept>

namespace {

// Maximum virtual time of a match, including all outages and pauses.
constexpr std::int32_t LongestRoundMs = 900000;
constexpr std::int32_t LongestRestMs = 300000;

/// A network that reports outgoing shots to the scripted player.
class WatchedPlay : public session::SessionDirectPlay {
public:
  WatchedPlay(Machine &machine, std::shared_ptr<session::Transport> transport, ScriptedPlayer &player)
      : SessionDirectPlay(machine, std::move(transport), ShowSearchDialog), player_(player) {}

  void Send(std::int32_t from, std::int32_t to, std::int32_t flags,
            const DirectPlayMessage &message) override {
    auto copy =
        session::SessionMessage::Decode(dynamic_cast<const session::SessionMessage &>(message).Encode());
    const std::string tag = copy.ReadString();
    if (tag == "Flick" || tag == "Goal") {
      for (int place = 0; place < 3; ++place) copy.ReadSingle();
      player_.SeeShotSent(copy.ReadSingle());
    }
    SessionDirectPlay::Send(from, to, flags, message);
  }

private:
  ScriptedPlayer &player_;
};

/// One computer with a program and a player.
struct Computer {
  Computer(const std::filesystem::path &game, FaultyWire &line, std::string at, bool host, int rounds,
           std::uint32_t seed)
      : address(std::move(at)), machine(game), program(machine), player(machine, host, rounds, seed),
        wire(line), fibre([this] { RunProgram(machine, program); }) {
    machine.MakeDirectPlay = [this] {
      const auto made = std::make_shared<WatchedPlay>(machine, wire.Plug(address), player);
      play = made;
      return made;
    };
    machine.NextArrival = [this] { return wire.NextArrival(address); };
    machine.Sleeper = [this](std::int32_t moment) {
      wake = moment;
      CountReconnects();
      fibre.Pause();
    };
  }

  void CountReconnects() {
    const auto open = play.lock();
    if (open && open->Opened()) reconnects = std::max(reconnects, open->Opened()->GetLink().Resumes());
  }

  /// When it must run next: its wake time or the next arrival.
  std::int32_t NextMoment() const {
    return machine.Drawing ? wake : std::min(wake, wire.NextArrival(address).value_or(wake));
  }

  std::string address;
  HeadlessMachine machine;
  Program program;
  ScriptedPlayer player;
  FaultyWire &wire;
  std::weak_ptr<session::SessionDirectPlay> play;
  int reconnects = 0;
  std::int32_t wake = 0;
  Fibre fibre;
};

/// Compares two lists of shots up to the length of the shorter one.
template <class Shot>
std::string CompareShots(const std::string &what, const std::vector<Shot> &host,
                         const std::vector<Shot> &joiner) {
  const auto [first, second] = std::ranges::mismatch(host, joiner);
  if (first == host.end() || second == joiner.end()) return {};
  return what + " " + std::to_string(first - host.begin() + 1) + " differs";
}

/// Errors visible on one side alone.
std::string CheckSide(const SeenMatch &side) {
  if (side.ShotsNotReleased > 0) return "a shot was sent without a release of the button";
  if (side.Dropped > 0) return "a message was dropped";
  if (side.LineMissing) return "a chat line was lost";
  return {};
}

std::string Compare(const SeenMatch &host, const SeenMatch &joiner) {
  for (const SeenMatch *side : {&host, &joiner}) {
    if (const auto wrong = CheckSide(*side); !wrong.empty()) return wrong;
  }
  if (const auto flick = CompareShots("flick", host.Flicks, joiner.Flicks); !flick.empty()) return flick;
  if (const auto kick = CompareShots("kick", host.Kicks, joiner.Kicks); !kick.empty()) return kick;
  if (host.Quit || joiner.Quit) {
    // The remaining side is told, unless its match is already over. The joiner doesn't wait for the host. The
    // host waits for the joiner's last message, after which the joiner may still press Esc; both then have
    // the same points.
    const bool samePoints = host.Home == joiner.Away && host.Away == joiner.Home;
    const auto fits = [](const SeenMatch &side, bool mayBeOver) {
      return side.Quit || side.Box == "Away Team Disconnected!" || (mayBeOver && !side.EndCard.empty());
    };
    return fits(host, samePoints) && fits(joiner, true) ? "" : "a side wasn't told that the other has left";
  }
  if (!host.Box.empty() || !joiner.Box.empty()) return "a box ended it: " + host.Box + joiner.Box;
  if (host.Rounds != joiner.Rounds) return "rounds differ";
  if (host.Home != joiner.Away || host.Away != joiner.Home) return "scores aren't mirrored";
  if (host.Flicks.size() != joiner.Flicks.size()) return "numbers of flicks differ";
  if (host.Kicks.size() != joiner.Kicks.size()) return "numbers of kicks differ";
  const auto mirrored = [](const std::string &card) {
    return card == "frmHome" ? "frmAway" : card == "frmAway" ? "frmHome" : card;
  };
  if (host.EndCard.empty() || host.EndCard != mirrored(joiner.EndCard)) return "end cards don't fit";
  return {};
}

/// In one match of three the computers differ tenfold in speed, in the others they are similar.
template <class Between> void ChooseSpeeds(Conditions &under, Between between) {
  under.TenTimesApart = between(0, 2) == 0;
  if (under.TenTimesApart) {
    const std::int32_t quick = between(3, 30);
    const bool hostIsQuick = between(0, 1) == 1;
    under.HostDrawMs = hostIsQuick ? quick : 10 * quick;
    under.JoinerDrawMs = hostIsQuick ? 10 * quick : quick;
    return;
  }
  for (std::int32_t *draw : {&under.HostDrawMs, &under.JoinerDrawMs}) {
    if (between(0, 1) == 1) *draw = between(0, 60);
  }
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
  Conditions &under = match.Under;

  FaultyWire::Quality &line = wire.Line();
  line.LatencyMs = under.LatencyMs = between(1, 150);
  line.JitterMs = under.JitterMs = between(0, 80);
  if (between(0, 1) == 1) line.Loss = under.Loss = 0.01 * between(1, 12);
  if (between(0, 2) == 0) {
    // The outages are separated, so that the programs can reconnect: thirty seconds without a line end a
    // match.
    std::int32_t at = between(8000, 40000);
    for (int i = between(1, 3); i > 0; --i) {
      const std::int32_t end = at + between(200, 20000);
      line.Breaks.push_back({at, end});
      at = end + between(15000, 40000);
    }
  }
  bool cut = between(0, 3) == 0; // connections are still to be cut
  const std::int32_t cutAt = between(10000, 60000);

  Computer host(game, wire, "10.0.0.1", true, rounds, random());
  // The joiner's own number of rounds is ignored.
  Computer joiner(game, wire, "10.0.0.2", false, rounds + 2, random());
  ChooseSpeeds(under, between);
  host.machine.DrawMs = under.HostDrawMs;
  joiner.machine.DrawMs = under.JoinerDrawMs;
  host.machine.Seed = random();
  joiner.machine.Seed = random();
  // In one match of eight a player quits, sometimes both do, and sometimes both at the same moment.
  for (Computer *computer : {&host, &joiner}) {
    if (between(0, 15) == 0) computer->player.QuitAt(between(5000, 60000));
  }
  under.LeaveAtOnce = between(0, 39) == 0;
  if (under.LeaveAtOnce) {
    const std::int32_t moment = between(10000, 60000);
    host.player.QuitAt(moment);
    joiner.player.QuitAt(moment);
  }

  const std::int32_t longest = LongestRestMs + rounds * LongestRoundMs;
  while (!host.fibre.Done() || !joiner.fibre.Done()) {
    Computer *next = &host;
    if (host.fibre.Done() || (!joiner.fibre.Done() && joiner.NextMoment() < host.NextMoment()))
      next = &joiner;
    now = std::max(now, next->NextMoment());
    if (now > longest) throw std::runtime_error("the match doesn't end");
    if (cut && now >= cutAt) {
      cut = false;
      wire.CutConnections();
    }
    next->machine.SetNow(now);
    next->fibre.Resume();
    // If the line breaks at the moment of joining, the match may have begun only for the host.
    if (host.fibre.Done() && !joiner.player.AtTable()) {
      match.NeverMet = true;
      joiner.player.GoHome();
    }
  }
  match.Host = host.player.Seen();
  match.Joiner = joiner.player.Seen();
  match.Line = wire.Counted();
  match.Break = !line.Breaks.empty() && line.Breaks.front().From < now;
  match.Reconnects = std::max(host.reconnects, joiner.reconnects);
  match.VirtualMs = now;
  const bool badLine = line.Loss > 0 || !line.Breaks.empty() || match.Line.CutStreams > 0;
  if (!match.NeverMet) {
    match.Disagreement = Compare(match.Host, match.Joiner);
  } else if (!badLine && !match.Host.Quit) {
    match.Disagreement = "on a good line the two didn't meet";
  }
  return match;
}

std::uint64_t SimulatedMatch::Digest() const {
  std::uint64_t hash = FnvStart;
  const auto add = [&hash](std::uint64_t value) { AddToHash(hash, value); };
  for (const SeenMatch *side : {&Host, &Joiner}) {
    for (const std::uint64_t flick : side->Flicks) add(flick);
    for (const float kick : side->Kicks) add(std::bit_cast<std::uint32_t>(kick));
    for (const int number : {side->Rounds, side->Home, side->Away, side->LinesSaid, side->LinesHeard}) {
      add(static_cast<std::uint64_t>(number));
    }
  }
  add(static_cast<std::uint64_t>(Line.Packets));
  add(static_cast<std::uint64_t>(VirtualMs));
  return hash;
}

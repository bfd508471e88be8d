// Plays matches between two simulated computers over bad lines, and reports whether the two ever disagree.
//   netsim [--matches N] [--seed S] [--rounds R]
// The seeds of the matches are S, S + 1, ... A seed gives the same match on every computer.

#include "tools/game_directory.h"
#include "tools/netsim/simulation.h"

#include <algorithm>
#include <chrono>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>

namespace {

/// Totals over all matches.
struct Tally {
  long Matches = 0, Bad = 0;
  long Loss = 0, Breaks = 0, Cuts = 0, Reconnects = 0, Told = 0, NeverMet = 0;
  long Quits = 0, AtOnce = 0, TenTimesApart = 0;
  long Flicks = 0, Kicks = 0, Points = 0, Lines = 0;
  long ShotsSent = 0, WithoutHand = 0, Dropped = 0, CardsWhileCharging = 0, SwitchesWhileCharging = 0;
  double VirtualSeconds = 0;
  std::vector<std::int32_t> Latencies, Jitters, Draws; ///< ms
  std::uint64_t Digest = 0;

  void Add(const SimulatedMatch &match) {
    Loss += match.Line.Lost > 0;
    Breaks += match.Break;
    Cuts += match.Line.CutStreams > 0;
    Reconnects += match.Reconnects > 0;
    Told += match.Host.ToldOfBreak || match.Joiner.ToldOfBreak;
    NeverMet += match.NeverMet;
    Quits += match.Host.Quit || match.Joiner.Quit;
    AtOnce += match.Host.Quit && match.Joiner.Quit && match.Under.LeaveAtOnce;
    TenTimesApart += match.Under.TenTimesApart;
    Flicks += static_cast<long>(match.Host.Flicks.size());
    Kicks += static_cast<long>(match.Host.Kicks.size());
    Points += match.Host.Home + match.Host.Away;
    for (const SeenMatch *side : {&match.Host, &match.Joiner}) {
      Lines += side->LinesHeard;
      ShotsSent += side->ShotsSent;
      WithoutHand += side->ShotsNotReleased;
      Dropped += side->Dropped;
      CardsWhileCharging += side->CardsWhileCharging;
      SwitchesWhileCharging += side->SwitchesWhileCharging;
    }
    VirtualSeconds += match.VirtualMs / 1000.0;
    Latencies.push_back(match.Under.LatencyMs);
    Jitters.push_back(match.Under.JitterMs);
    Draws.push_back(match.Under.HostDrawMs);
    Draws.push_back(match.Under.JoinerDrawMs);
    Digest = Digest * 31 + match.Digest();
  }

  double Share(long count) const {
    return Matches > 0 ? 100.0 * static_cast<double>(count) / static_cast<double>(Matches) : 0.0;
  }

  void Print(double seconds) {
    std::printf("%ld matches, %ld disagreements\n", Matches, Bad);
    std::printf(
        "shots:     %ld sent, %ld without a release; %ld times a card came and %ld times the player went "
        "to another window with a hand on the button\n",
        ShotsSent, WithoutHand, CardsWhileCharging, SwitchesWhileCharging);
    std::printf("messages:  %ld dropped; %ld chat lines read\n", Dropped, Lines);
    std::printf("play:      %ld flicks, %ld kicks, %ld points; Esc in %.1f %%, by both at once in %.1f %%\n",
                Flicks, Kicks, Points, Share(Quits), Share(AtOnce));
    PrintRange("delay:     ", Latencies, "ms one way");
    PrintRange("jitter:    ", Jitters, "ms more");
    std::printf(
        "line:      loss in %.0f %%, breaks in %.0f %%, cut connections in %.0f %%, reconnects in %.0f "
        "%%, told in the title in %.0f %%, never met %ld\n",
        Share(Loss), Share(Breaks), Share(Cuts), Share(Reconnects), Share(Told), NeverMet);
    PrintRange("drawing:   ", Draws, "ms a frame");
    std::printf("computers: ten times apart in speed in %.0f %%\n", Share(TenTimesApart));
    std::printf("%.0f s of play in %.1f s, %.1f matches a second; digest %016" PRIx64 "\n", VirtualSeconds,
                seconds, static_cast<double>(Matches) / seconds, Digest);
  }

  static void PrintRange(const char *what, std::vector<std::int32_t> &values, const char *unit) {
    if (values.empty()) return;
    std::ranges::sort(values);
    std::printf("%s%d to %d, half of them up to %d, nine in ten up to %d %s\n", what, values.front(),
                values.back(), values[values.size() / 2], values[values.size() * 9 / 10], unit);
  }
};

} // namespace

int main(int argc, char **argv) {
  long matches = 100, seed = 1, rounds = 1;
  for (int i = 1; i < argc; i += 2) {
    long *value = std::strcmp(argv[i], "--matches") == 0  ? &matches
                  : std::strcmp(argv[i], "--seed") == 0   ? &seed
                  : std::strcmp(argv[i], "--rounds") == 0 ? &rounds
                                                          : nullptr;
    char *end = nullptr;
    if (value && i + 1 < argc) *value = std::strtol(argv[i + 1], &end, 10);
    if (!end || *end || *value < 0) {
      std::fprintf(stderr, "usage: netsim [--matches N] [--seed S] [--rounds R]\n");
      return 2;
    }
  }
  const auto start = std::chrono::steady_clock::now();
  Tally tally;
  for (; tally.Matches < matches; ++tally.Matches) {
    const auto own = static_cast<std::uint32_t>(seed + tally.Matches);
    try {
      const SimulatedMatch match = Simulate(GameDirectory(), own, static_cast<int>(rounds));
      tally.Add(match);
      if (match.Disagreement.empty()) continue;
      std::printf("seed %u: %s (host %d:%d in %zu flicks, joiner %d:%d in %zu)\n", own,
                  match.Disagreement.c_str(), match.Host.Home, match.Host.Away, match.Host.Flicks.size(),
                  match.Joiner.Home, match.Joiner.Away, match.Joiner.Flicks.size());
    } catch (const std::exception &error) {
      std::printf("seed %u: %s\n", own, error.what());
    }
    ++tally.Bad;
  }
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
  tally.Print(took.count());
  return tally.Bad == 0 ? 0 : 1;
}

// Plays matches between two simulated computers over bad lines, and tells whether the two ever disagree.
//   netsim [--matches N] [--seed S] [--rounds R]
// A match's seed is S, S + 1, ...: a seed that fails plays the same again.

#include "tools/netsim/simulation.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>

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
  const auto game = std::filesystem::weakly_canonical("/proc/self/exe").parent_path().parent_path() / "game";
  const auto start = std::chrono::steady_clock::now();
  long bad = 0, loss = 0, breaks = 0, cuts = 0, reconnects = 0, quits = 0, flicks = 0, kicks = 0, points = 0;
  double virtualSeconds = 0;
  for (long i = 0; i < matches; ++i) {
    const auto own = static_cast<std::uint32_t>(seed + i);
    try {
      const SimulatedMatch match = Simulate(game, own, static_cast<int>(rounds));
      loss += match.Line.Lost > 0;
      breaks += match.Break;
      cuts += match.Line.CutStreams > 0;
      reconnects += match.Reconnects > 0;
      quits += match.Host.Quit || match.Joiner.Quit;
      flicks += static_cast<long>(match.Host.Flicks.size());
      kicks += static_cast<long>(match.Host.Kicks.size());
      points += match.Host.Home + match.Host.Away;
      virtualSeconds += match.VirtualMs / 1000.0;
      if (match.Disagreement.empty()) continue;
      std::printf("seed %u: %s (host %d:%d in %zu flicks, joiner %d:%d in %zu)\n", own,
                  match.Disagreement.c_str(), match.Host.Home, match.Host.Away, match.Host.Flicks.size(),
                  match.Joiner.Home, match.Joiner.Away, match.Joiner.Flicks.size());
    } catch (const std::exception &error) {
      std::printf("seed %u: %s\n", own, error.what());
    }
    ++bad;
  }
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
  const auto share = [&](long count) {
    return matches > 0 ? 100.0 * static_cast<double>(count) / static_cast<double>(matches) : 0.0;
  };
  std::printf(
      "%ld matches, %ld disagreements; loss in %.0f %%, breaks in %.0f %%, cut connections in %.0f %%, "
      "reconnects in %.0f %%, Esc in %.0f %%; %ld flicks, %ld kicks, %ld points; %.0f s of play in %.1f s, "
      "%.1f matches a second\n",
      matches, bad, share(loss), share(breaks), share(cuts), share(reconnects), share(quits), flicks, kicks,
      points, virtualSeconds, took.count(), static_cast<double>(matches) / took.count());
  return bad == 0 ? 0 : 1;
}

// Whole network matches between two programs over bad lines: both sides must agree on everything.

#include "tools/netsim/simulation.h"

#include <gtest/gtest.h>

namespace {

TEST(NetworkSimulationTest, BothSidesAgreeWhateverTheLineDoes) {
  struct Row {
    std::uint32_t seed;
    int matches, rounds;
  };
  int shots = 0, points = 0, reconnects = 0;
  for (const Row &row : {Row{1, 120, 1}, Row{90000, 12, 3}}) {
    for (int i = 0; i < row.matches; ++i) {
      const std::uint32_t seed = row.seed + static_cast<std::uint32_t>(i);
      SCOPED_TRACE(seed);
      const SimulatedMatch match = Simulate(SNAPWEDGE_GAME_DIR, seed, row.rounds);
      EXPECT_EQ(match.Disagreement, "");
      EXPECT_EQ(match.Host.Rounds, row.rounds) << "the host's number counts on both";
      EXPECT_EQ(match.Joiner.Rounds, row.rounds);
      shots += match.Host.Shots;
      points += match.Host.Home + match.Host.Away;
      reconnects += match.Line.Connects > 2 ? 1 : 0;
    }
  }
  EXPECT_GT(shots, 400) << "the players do play";
  EXPECT_GT(points, 300) << "and score";
  EXPECT_GT(reconnects, 10) << "over lines that break";
}

TEST(NetworkSimulationTest, ASeedPlaysTheSameMatchAgain) {
  const SimulatedMatch first = Simulate(SNAPWEDGE_GAME_DIR, 7, 2), again = Simulate(SNAPWEDGE_GAME_DIR, 7, 2);
  EXPECT_EQ(first.Host.PathHash, again.Host.PathHash);
  EXPECT_EQ(first.VirtualMs, again.VirtualMs);
  EXPECT_NE(first.Host.PathHash, Simulate(SNAPWEDGE_GAME_DIR, 8, 2).Host.PathHash);
}

} // namespace

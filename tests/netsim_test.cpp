// Whole network matches between two programs over bad lines: both sides must agree on everything.

#include "tools/netsim/simulation.h"

#include <gtest/gtest.h>

namespace {

TEST(NetworkSimulationTest, BothSidesAgreeWhateverLineComputersAndPlayersDo) {
  struct Row {
    std::uint32_t seed;
    int matches, rounds;
  };
  int shots = 0, points = 0, reconnects = 0, quits = 0, unlike = 0, told = 0, lines = 0;
  int cardsInCharge = 0, leftInCharge = 0;
  for (const Row &row : {Row{1, 40, 1}, Row{90000, 4, 3}}) {
    for (int i = 0; i < row.matches; ++i) {
      const std::uint32_t seed = row.seed + static_cast<std::uint32_t>(i);
      SCOPED_TRACE(seed);
      const SimulatedMatch match = Simulate(SNAPWEDGE_GAME_DIR, seed, row.rounds);
      EXPECT_EQ(match.Disagreement, "");
      shots += static_cast<int>(match.Host.Flicks.size());
      points += match.Host.Home + match.Host.Away;
      reconnects += match.Reconnects > 0 ? 1 : 0;
      unlike += match.Under.TenTimesApart ? 1 : 0;
      for (const SeenMatch *side : {&match.Host, &match.Joiner}) {
        told += side->ToldOfBreak ? 1 : 0;
        lines += side->LinesHeard;
        cardsInCharge += side->CardsWhileCharging;
        leftInCharge += side->SwitchesWhileCharging;
      }
      if (match.Host.Quit || match.Joiner.Quit) {
        ++quits;
        continue;
      }
      EXPECT_EQ(match.Host.Rounds, row.rounds) << "both use the host's number of rounds";
      EXPECT_EQ(match.Joiner.Rounds, row.rounds);
    }
  }
  EXPECT_GT(shots, 150) << "the players do play";
  EXPECT_GT(points, 150) << "and score";
  EXPECT_GT(lines, 50) << "and chat";
  EXPECT_GT(reconnects, 5) << "over lines that break";
  EXPECT_GT(told, 5) << "and see that a line has broken";
  EXPECT_GT(unlike, 5) << "on computers that are far apart";
  EXPECT_GT(leftInCharge, 5) << "and leave the window with the button held";
  // A card during a charge is rare: about one match in sixty.
  for (std::uint32_t seed = 1041; cardsInCharge == 0 && seed < 1341; ++seed) {
    SCOPED_TRACE(seed);
    const SimulatedMatch match = Simulate(SNAPWEDGE_GAME_DIR, seed, 1);
    EXPECT_EQ(match.Disagreement, "");
    cardsInCharge += match.Host.CardsWhileCharging + match.Joiner.CardsWhileCharging;
  }
  EXPECT_GT(cardsInCharge, 0) << "or hold it when a card comes";
  EXPECT_GT(quits, 0) << "and some have enough";
}

TEST(NetworkSimulationTest, ASeedPlaysTheSameMatchAgain) {
  const SimulatedMatch first = Simulate(SNAPWEDGE_GAME_DIR, 7, 2), again = Simulate(SNAPWEDGE_GAME_DIR, 7, 2);
  EXPECT_EQ(first.Host.Flicks, again.Host.Flicks);
  EXPECT_EQ(first.Digest(), again.Digest());
  EXPECT_NE(first.Host.Flicks, Simulate(SNAPWEDGE_GAME_DIR, 8, 2).Host.Flicks);
}

} // namespace

// The computer opponent's plan, over many seeds.

#include "shot/computer.h"
#include "tests/game_kit.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>

namespace {

TEST(ComputerTest, ThePlanStaysInItsRangesAndUsesAllOfThem) {
  for (const SkillLevel &level : SkillLevels) {
    SCOPED_TRACE(level.Name);
    HeadlessMachine machine(SNAPWEDGE_GAME_DIR);
    std::map<float, int> turns, spreads;
    int negativeTurns = 0, nonZeroTurns = 0;
    constexpr int Plans = 6000;
    for (int i = 0; i < Plans; ++i) {
      const auto shots = static_cast<std::int16_t>(1 + i % 3);
      const float base = shots == 3 ? 96.0f : shots == 2 ? 27.0f : 20.0f;
      const ComputerPlan plan = PlanComputerShot(machine, level, shots);
      ASSERT_LE(std::abs(plan.Turn), 0.1125f * level.HeadingErrors);
      ASSERT_LE(std::abs(plan.Force - base), 1.22501f * level.ForceErrors);
      ++turns[std::abs(plan.Turn)];
      ++spreads[std::round(std::abs(plan.Force - base) / level.ForceErrors * 40.0f)];
      if (plan.Turn != 0.0f) ++nonZeroTurns;
      if (plan.Turn < 0.0f) ++negativeTurns;
    }
    EXPECT_EQ(turns.size(), 10U);
    EXPECT_FLOAT_EQ(turns.rbegin()->first, 0.1125f * level.HeadingErrors);
    EXPECT_EQ(spreads.size(), 50U);
    EXPECT_NEAR(static_cast<double>(negativeTurns) / nonZeroTurns, 0.6, 0.03)
        << "six of ten signs are negative";
    EXPECT_NEAR(static_cast<double>(turns[0.0f]) / Plans, 0.1, 0.02);
  }
}

/// Plays possessions of the computer, each with its own seed, and counts the cards. Returns the computer's
/// points.
int PlayPossessions(const SkillLevel &skill, std::uint32_t count, std::map<std::int16_t, int> &cards) {
  int points = 0;
  for (std::uint32_t seed = 1; seed <= count; ++seed) {
    SCOPED_TRACE(seed);
    Game game("Computer", 1);
    game.machine.Seed = seed;
    game.program.Skill = skill;
    game.SetUp();
    game.window.Reset();
    game.machine.OnDraw = [&](Canvas &) {
      EXPECT_EQ(game.window.ProgressBar1.Value, 0.0f);
      game.machine.PressMouse(1);
      game.machine.ReleaseMouse(1);
    };
    int frames = 0;
    while (game.window.Player == 2 && ++frames < 10) game.Frames(1);
    EXPECT_EQ(game.window.Player, 1) << "at most three attempts";
    EXPECT_EQ(game.window.HomeScore, 0);
    for (const std::int16_t card : game.Cards) ++cards[card];
    points += game.window.AwayScore;
  }
  return points;
}

TEST(ComputerTest, EveryPossessionEndsAndAHigherLevelScoresMore) {
  constexpr std::uint32_t Possessions = 300;
  int lower = 0;
  for (const SkillLevel &skill : SkillLevels) {
    SCOPED_TRACE(skill.Name);
    std::map<std::int16_t, int> cards;
    const int points = PlayPossessions(skill, Possessions, cards);
    EXPECT_GT(points, lower);
    lower = points;
    EXPECT_GT(cards[3], 0) << "the computer scores";
    EXPECT_GT(cards[4] + cards[6] + cards[7], 0) << "the computer fails";
    EXPECT_EQ(cards[3], cards[1]) << "every kick is good";
  }
}

TEST(ComputerTest, TheHeadingIsMeasuredFromTheFieldAndTheViewFromTheSide) {
  Game game("Computer");
  game.SetUp();
  game.window.Reset();
  game.window.AimFrame->AddRotation(D3DRMCOMBINE_BEFORE, 0, 1, 0, 2.0f);
  HeadlessMachine twin(SNAPWEDGE_GAME_DIR);
  twin.Seed = game.machine.Seed = 3; // a shot that stops on the plain table
  const ComputerPlan plan = PlanComputerShot(twin, DefaultSkillLevel, 3);
  game.window.CompShot1();
  Vector direction, up;
  game.window.AimFrame->GetOrientation(game.window.RMCanvas1.SceneFrame, direction, up);
  EXPECT_NEAR(std::atan2(direction.x, direction.z), plan.Turn, 1e-6f);
  EXPECT_TRUE(game.Cards.empty());
  EXPECT_EQ(game.Place(game.window.CameraFrame), (Vector{100, 20, 0}));
}

} // namespace

// The decorations of the meter: the accuracy of its scale, the mark of the last release, the cap.

#include "scene/places.h"
#include "scene/yards.h"
#include "tests/game_kit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr int Steps = 12;

const ProgressBar::Mark &MarkAt(const Game &game, float value) {
  for (const ProgressBar::Mark &mark : game.window.ProgressBar1.Scale) {
    if (mark.Value == value) return mark;
  }
  throw std::runtime_error("no such mark");
}

TEST(MeterTest, EachStepIsWorthTheYardsThatAFlickOfItGoes) {
  Game game;
  game.SetUp();
  std::string all;
  for (int step = 1; step <= Steps; ++step) {
    SCOPED_TRACE(step);
    const std::string told = MarkAt(game, 8.0f * static_cast<float>(step)).Text;
    game.PutPiece(0, 85, 3);
    game.Shoot(step);
    EXPECT_EQ(told, InYards(85.0f - game.Place(game.window.PieceFrame).z));
    all += told + ' ';
  }
  EXPECT_EQ(all, "0.7 2.7 5.9 10 16 23 32 41 52 64 78 93 ");
}

TEST(MeterTest, DistancesAreWrittenInYards) {
  for (const auto &[units, written] : {std::pair{0.0f, "0.0"},
                                       {1.0f, "0.6"},
                                       {16.57f, "9.9"},
                                       {16.6f, "10"},
                                       {17.6f, "11"},
                                       {173.0f, "104"}}) {
    EXPECT_EQ(InYards(units), written);
  }
}

TEST(MeterTest, AYardIsATenthOfThePaintedLinesDistance) {
  Game game;
  game.SetUp();
  // Only lines that cross the whole field have vertices at these distances from the middle on both sides.
  constexpr float GoalLine = -400.0f / 6.0f, Nearly = 1.5f;
  std::vector<float> edges;
  for (const Vector &vertex : game.window.LinesMesh->Data().Positions) {
    if (std::abs(vertex.x) > 84.0f && std::abs(vertex.x) < 85.0f) edges.push_back(vertex.z);
  }
  for (int line = 0; line <= 9; ++line) {
    const float z = GoalLine + static_cast<float>(10 * line) * UnitsPerYard;
    const auto on = [&](float edge) { return std::abs(edge - z) < Nearly; };
    EXPECT_TRUE(std::ranges::any_of(edges, on)) << 10 * line << " yards from the goal line";
  }
}

/// Plays a point-after with a straight kick of a number of frames that arrives when the posts are in the
/// middle. Returns whether it was good, and the scale.
bool KickIsGood(Game &game, int frames, std::vector<ProgressBar::Mark> &scale) {
  bool pressed = false, released = false;
  game.OnPump = [&] {
    frmSnapwedge &window = game.window;
    if (!window.KickMode) return;
    scale = window.ProgressBar1.Scale;
    window.GoalSpeed = 0;
    if (!pressed) game.machine.PressMouse(1);
    pressed = true;
    if (released || window.NoShot || window.Force < 8.0f * static_cast<float>(frames)) return;
    released = true;
    game.machine.ReleaseMouse(1);
  };
  game.ScoreTouchdown();
  game.OnPump = nullptr;
  return game.Cards.back() == 1;
}

TEST(MeterTest, TheMarkOfTheBarIsWhereKicksBeginToBeGood) {
  std::vector<float> strong;
  for (int step = 1; step <= Steps; ++step) {
    SCOPED_TRACE(step);
    Game game;
    game.SetUp();
    std::vector<ProgressBar::Mark> scale;
    const bool good = KickIsGood(game, step, scale);
    strong.clear();
    for (const ProgressBar::Mark &mark : scale) {
      if (mark.Strong) strong.push_back(mark.Value);
    }
    ASSERT_EQ(strong.size(), 1U);
    EXPECT_EQ(good, 8.0f * static_cast<float>(step) >= strong[0]);
    EXPECT_EQ(MarkAt(game, 8.0f).Text, "0.7") << "the next possession has the flick's scale again";
  }
  EXPECT_EQ(strong, std::vector<float>{72.0f});
}

TEST(MeterTest, TheLastReleaseLeavesItsMarkUntilTheTurnover) {
  Game game;
  game.SetUp();
  EXPECT_FALSE(game.window.ProgressBar1.Ghost);
  game.Shoot(5);
  EXPECT_EQ(game.window.ProgressBar1.Ghost, 40.0f);
  game.Shoot(0);
  EXPECT_EQ(game.window.ProgressBar1.Ghost, 40.0f) << "a release without power doesn't count";
  game.Shoot(2); // the third try, far too short
  EXPECT_EQ(game.window.Player, 2);
  EXPECT_FALSE(game.window.ProgressBar1.Ghost);
}

TEST(MeterTest, TheCapIsLitFromTheOverchargeToTheTurnover) {
  Game game;
  game.SetUp();
  std::vector<bool> lit;
  game.machine.OnDraw = [&](Canvas &) {
    if (game.window.NoShot) lit.push_back(game.window.ProgressBar1.CapLit);
  };
  game.Shoot(13);
  ASSERT_GT(lit.size(), 100U);
  EXPECT_EQ(std::ranges::count(lit, false), 0);
  EXPECT_FALSE(game.window.ProgressBar1.CapLit);
  lit.clear();
  game.Shoot(12);
  EXPECT_EQ(std::ranges::count(lit, true), 0) << "the strongest aimed shot isn't an overcharge";
}

} // namespace

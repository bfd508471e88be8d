// Flicks: force to distance, steps and spin; falls; camera and arrow.

#include "tests/game_kit.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>

namespace {

TEST(FlickTest, EveryForceOfTheMeterHasItsStepsDistanceAndSpin) {
  struct Row {
    int frames;
    int steps;
    double distance;
    double turns;
  };
  // clang-format off
  const Row rows[] = {{1, 14, 1.15, 0.05},    {2, 27, 4.43, 0.18},    {3, 40, 9.84, 0.39},   {4, 54, 17.39, 0.69},
                      {5, 67, 27.07, 1.08},   {6, 81, 38.88, 1.55},   {7, 94, 52.83, 2.10},  {8, 107, 68.91, 2.74},
                      {9, 121, 87.12, 3.47},  {10, 134, 107.47, 4.28}, {11, 147, 129.95, 5.17}, {12, 161, 154.56, 6.15}};
  // clang-format on
  for (const Row &row : rows) {
    SCOPED_TRACE(row.frames * 8);
    Game game;
    game.SetUp();
    int steps = 0;
    double spin = 0;
    Vector last{0, 0, 1};
    game.machine.OnDraw = [&](Canvas &) {
      if (!game.window.NoShot) return;
      ++steps;
      EXPECT_TRUE(game.window.ArrowFrame->Visuals().empty());
      Vector direction, up;
      game.window.PieceFrame->GetOrientation(game.window.RMCanvas1.SceneFrame, direction, up);
      const double cross =
          static_cast<double>(last.x) * direction.z - static_cast<double>(last.z) * direction.x;
      const double dot =
          static_cast<double>(last.x) * direction.x + static_cast<double>(last.z) * direction.z;
      spin += std::abs(std::atan2(cross, dot));
      last = direction;
    };
    const std::int32_t begin = game.machine.Now();
    game.Shoot(row.frames);
    EXPECT_EQ(steps, row.steps);
    const Vector rest = game.Place(game.window.PieceFrame);
    EXPECT_NEAR(85.0 - static_cast<double>(rest.z), row.distance, 0.005);
    EXPECT_EQ(rest.x, 0.0f);
    EXPECT_EQ(rest.y, 0.0f);
    EXPECT_NEAR(spin / (2 * std::numbers::pi), row.turns, 0.006);
    EXPECT_EQ(game.window.Force, 0.0f);
    EXPECT_EQ(game.window.ArrowFrame->Visuals().size(), 1U);
    EXPECT_EQ(game.window.Label2.Caption, "Shots: 2");
    EXPECT_NEAR(game.window.SkyU, 0.0008f * static_cast<float>(row.frames + 1 + row.steps), 1e-5f)
        << "the sky drifts on every frame and step";
    // One frame for the press, those of the meter, the steps of the flight, and a last frame that ends with
    // it.
    EXPECT_GE(game.machine.Now() - begin, row.steps * 20);
    EXPECT_LE(game.machine.Now() - begin, row.steps * 20 + (row.frames + 1) * 25);
  }
}

TEST(FlickTest, SmallAndZeroForcesEndThroughTheClamp) {
  for (const auto &[force, distance] : {std::pair{0.0f, 0.0f}, {0.3f, 0.006f}, {1.0f, 0.028f}}) {
    SCOPED_TRACE(force);
    Game game;
    game.SetUp();
    game.SoundsSince();
    game.Flick(force);
    EXPECT_NEAR(85.0f - game.Place(game.window.PieceFrame).z, distance, 1e-5f);
    EXPECT_EQ(game.window.Shots, 2);
    EXPECT_EQ(game.SoundsSince(), "play swoosh.daw");
    EXPECT_FALSE(game.window.ShotPending);
    EXPECT_FALSE(game.window.NoShot);
  }
}

TEST(FlickTest, TheSlowestComputerPlaysTheSamePath) {
  Vector rest[2];
  for (int slow = 0; slow < 2; ++slow) {
    Game game;
    game.machine.DrawMs = slow * 90;
    game.SetUp();
    game.machine.MoveMouse(17, 0);
    game.Frames(1);
    game.Shoot(7);
    rest[slow] = game.Place(game.window.PieceFrame);
  }
  EXPECT_EQ(rest[0], rest[1]);
}

TEST(FlickTest, AnOverchargeFiresByItselfAndFallsOffTheFarEdge) {
  Game game;
  game.SetUp();
  game.machine.PressMouse(1);
  Vector fellFrom;
  float bar = -1, force = 0;
  game.machine.OnDraw = [&](Canvas &) {
    if (!game.window.NoShot || game.window.Force == 0.0f) return;
    if (bar < 0) {
      bar = game.window.ProgressBar1.Value;
      force = game.window.Force;
    }
    const Vector place = game.Place(game.window.PieceFrame);
    if (place.y == 0.0f) fellFrom = place;
  };
  game.Frames(13);
  EXPECT_EQ(game.window.MouseMode, 1);
  EXPECT_EQ(game.window.Force, 96.0f);
  game.Frames(1);
  EXPECT_EQ(bar, 95.0f) << "the bar falls from its last value, not from the overcharge";
  EXPECT_FLOAT_EQ(force, 120.0f - 0.6f);
  EXPECT_LT(fellFrom.z, -88.0f);
  EXPECT_GT(fellFrom.z, -91.0f);
  EXPECT_EQ(game.Cards, std::vector<std::int16_t>{4});
  EXPECT_EQ(game.window.Player, 2);
  EXPECT_EQ(game.window.MouseMode, 0);
  EXPECT_EQ(game.window.Force, 0.0f);
  EXPECT_EQ(game.window.ProgressBar1.Value, 0.0f);
}

TEST(FlickTest, TheFallDropsThreeAStepForFiftyStepsUnderALowCamera) {
  Game game;
  game.SetUp();
  game.PutPiece(80.0f, 0.0f, 3);
  std::vector<float> heights;
  Vector camera;
  game.machine.OnDraw = [&](Canvas &) {
    if (!game.window.NoShot || !game.window.PieceSurface.empty()) return;
    heights.push_back(game.Place(game.window.PieceFrame).y);
    camera = game.Place(game.window.CameraFrame);
  };
  game.window.CameraFrame->SetPosition(game.window.RMCanvas1.SceneFrame, 30, 15, 40);
  const float quarter = static_cast<float>(std::numbers::pi / 2);
  game.Flick(50.0f, -quarter);
  ASSERT_EQ(heights.size(), 50U + 1U) << "the first frame of the flight is drawn before the first ray";
  EXPECT_EQ(heights.back(), -147.0f);
  EXPECT_EQ(camera, (Vector{30, -10, 40}));
  const Vector after = game.Place(game.window.PieceFrame);
  EXPECT_EQ(after.z, 85.0f);
  Vector direction, up;
  game.window.RMCanvas1.Update();
  game.window.PieceFrame->GetOrientation(game.window.RMCanvas1.SceneFrame, direction, up);
  EXPECT_EQ(up.y, 1.0f) << "the tumble has stopped";
  EXPECT_FALSE(game.window.ShotPending);
}

TEST(FlickTest, TheCameraKeepsItsPlaceBehindTheAim) {
  Game game;
  game.SetUp();
  game.window.Reset(); // the other player's turn is the same
  game.machine.MoveMouse(60, 0);
  game.Frames(1);
  Vector before, after;
  game.window.CameraFrame->GetPosition(game.window.AimFrame, before);
  const Vector placeBefore = game.Place(game.window.CameraFrame);
  bool moved = false;
  game.machine.OnDraw = [&](Canvas &) {
    if (!game.window.NoShot) return;
    if (!(game.Place(game.window.CameraFrame) == placeBefore)) moved = true;
    Vector piece;
    game.window.PieceFrame->GetPosition(game.window.CameraFrame, piece);
    EXPECT_LT(std::hypot(piece.x, piece.y), 0.05f * piece.z) << "it follows the piece";
  };
  game.machine.After(300, [&] { game.machine.MoveMouse(50, 20); });
  game.Shoot(5);
  game.window.CameraFrame->GetPosition(game.window.AimFrame, after);
  Vector piece, direction, up, laterDirection;
  game.window.PieceFrame->GetPosition(game.window.CameraFrame, piece);
  EXPECT_NEAR(std::hypot(piece.x, piece.y), 0.0f, 1e-3f) << "it looks at the piece when the flight ends";
  game.window.AimFrame->GetOrientation(game.window.RMCanvas1.SceneFrame, direction, up);
  game.Frames(1);
  game.window.AimFrame->GetOrientation(game.window.RMCanvas1.SceneFrame, laterDirection, up);
  EXPECT_EQ(laterDirection, direction) << "mouse motion during the flight is ignored";
  EXPECT_FALSE(moved) << "during a flight the camera only turns";
  EXPECT_NEAR(before.x, after.x, 1e-3f);
  EXPECT_NEAR(before.y, after.y, 1e-3f);
  EXPECT_NEAR(before.z, after.z, 1e-3f);
}

TEST(FlickTest, AThousandRandomShotsTakeTheSamePathInEveryBuild) {
  // The value doesn't depend on compiler or optimisation. If it differs, two computers would diverge.
  constexpr std::uint64_t Golden = 0x88f85f98232c794d;
  Game game("Human", 99);
  game.SetUp();
  std::mt19937 random(20260101);
  const auto uniform = [&](float low, float high) {
    return low + (high - low) * static_cast<float>(random() >> 8) / 16777216.0f;
  };
  PathHash hash;
  game.machine.OnDraw = [&](Canvas &) {
    if (!game.window.NoShot) return;
    hash.Add(game.Place(game.window.PieceFrame));
    hash.Add(game.Place(game.window.CornerA));
    hash.Add(game.Place(game.window.CornerC));
  };
  for (int shot = 0; shot < 1000; ++shot) {
    // One draw per statement, since the order of evaluation of arguments is unspecified.
    const float x = uniform(-80, 80);
    const float z = uniform(-80, 85);
    const float pieceTurn = uniform(-3, 3);
    const float force = uniform(0, 120);
    const float turn = uniform(-3, 3);
    game.PutPiece(x, z, 2, pieceTurn);
    game.Flick(force, turn);
    hash.Add(static_cast<float>(game.window.HomeScore));
    if (game.window.KickMode) break;
  }
  EXPECT_EQ(hash.Value(), Golden) << "new value: 0x" << std::hex << hash.Value();
}

} // namespace

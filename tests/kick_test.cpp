// The point-after and the kick.

#include "tests/network_kit.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

/// A game after a Touchdown; `act` runs in each frame of the point-after, with the number of frames so far.
void PlayPointAfter(Game &game, const std::function<void(int frame)> &act, float turn = 0.0f) {
  int frame = 0;
  game.machine.OnDraw = [&](Canvas &) {
    if (game.window.KickMode && !game.window.NoShot) act(frame++);
  };
  game.ScoreTouchdown(turn);
  game.machine.OnDraw = nullptr;
}

struct SeenKick {
  int steps = 0;
  Vector end;
  Vector direction, up; ///< of the piece
  Vector camera;
  float lag = 0; ///< largest `ViewMisses` of the piece's position one step earlier
  float postsX = 0;
  bool arrow = false;
  std::int16_t shots = 0;
};

/// Deviation of the camera's direction from a point, as the distance of two unit vectors.
float ViewMisses(const Game &game, const Vector &place) {
  const Vector camera = game.Place(game.window.CameraFrame);
  const Vector to{place.x - camera.x, place.y - camera.y, place.z - camera.z};
  const float far = std::hypot(to.x, to.y, to.z);
  Vector view, up;
  game.window.CameraFrame->GetOrientation(game.window.RMCanvas1.SceneFrame, view, up);
  return std::hypot(view.x - to.x / far, view.y - to.y / far, view.z - to.z / far);
}

/// Kicks with a force after a number of frames with the aim turned, and returns how the flight ended.
SeenKick Kick(Game &game, float force, int wait = 0, float turn = 0) {
  SeenKick seen;
  float rise = game.window.KickRise;
  int frame = 0;
  bool released = false;
  game.machine.OnDraw = [&](Canvas &) {
    if (!game.window.KickMode) return;
    if (!released && frame++ == wait) {
      released = true;
      game.window.AimFrame->AddRotation(D3DRMCOMBINE_BEFORE, 0, 1, 0, turn);
      game.window.Force = force;
      seen.end = game.Place(game.window.PieceFrame);
      game.window.RMCanvas1_MouseUp(1, 0, 0.0f, 0.0f);
      return;
    }
    if (game.window.KickRise == rise) return;
    rise = game.window.KickRise;
    ++seen.steps;
    seen.camera = game.Place(game.window.CameraFrame);
    seen.lag = std::max(seen.lag, ViewMisses(game, seen.end));
    seen.end = game.Place(game.window.PieceFrame);
    seen.postsX = game.Place(game.window.GoalFrame).x;
    game.window.PieceFrame->GetOrientation(game.window.RMCanvas1.SceneFrame, seen.direction, seen.up);
    seen.arrow = !game.window.ArrowFrame->Visuals().empty();
    seen.shots = game.window.Shots;
  };
  game.ScoreTouchdown();
  game.machine.OnDraw = nullptr;
  return seen;
}

TEST(KickTest, EveryForceHasItsStepsHeightAndEnd) {
  struct Row {
    float force;
    int steps;
    float height; ///< below 0 if the kick fell short
    float z;
  };
  for (const Row &row :
       {Row{30, 135, -1, -14.25f}, Row{8, 135, -1, 60}, Row{48, 135, -1, -75}, Row{56, 130, 4.38f, -95},
        Row{64, 114, 18.91f, -95.4f}, Row{72, 102, 29.99f, -96.6f}, Row{80, 91, 39.67f, -95},
        Row{88, 83, 47.04f, -95.6f}, Row{90, 81, 48.75f, -95.25f}, Row{96, 76, 53.30f, -95.4f}}) {
    SCOPED_TRACE(row.force);
    Game game;
    game.SetUp();
    const SeenKick seen = Kick(game, row.force);
    EXPECT_EQ(seen.steps, row.steps);
    if (row.height < 0) {
      EXPECT_LT(seen.end.y, 0.0f);
    } else {
      EXPECT_NEAR(seen.end.y, row.height, 0.006f);
    }
    EXPECT_NEAR(seen.end.z, row.z, 0.01f);
    const float tumble =
        static_cast<float>(row.steps) * row.force / 280.0f; // tumbling forward, away from the kicker
    EXPECT_NEAR(seen.direction.y, std::sin(tumble), 1e-4f);
    EXPECT_NEAR(seen.direction.z, std::cos(tumble), 1e-4f);
    EXPECT_NEAR(seen.up.x, 1.0f, 1e-5f);
    EXPECT_EQ(seen.camera, (Vector{100, 20, 0}));
    EXPECT_LT(seen.lag, 1e-3f) << "the camera is one step behind the piece";
    EXPECT_FALSE(seen.arrow);
    EXPECT_EQ(seen.shots, 3);
    EXPECT_EQ(seen.postsX, static_cast<float>(std::min(row.steps, 178 - row.steps)));
    EXPECT_EQ(game.Cards.back(), 2) << "the posts have moved away";
    EXPECT_EQ(game.window.HomeScore, 6);
    EXPECT_EQ(game.window.Player, 2);
  }
}

TEST(KickTest, TheKickIsSetUpAtTheNearEndWhateverTheFlickLeft) {
  Game game;
  game.SetUp();
  const auto look = [&](int frame) {
    if (frame == 0) {
      EXPECT_EQ(game.Place(game.window.PieceFrame), (Vector{0, 4, 85}));
      EXPECT_EQ(game.Place(game.window.AimFrame), (Vector{0, 0, 87}));
      EXPECT_EQ(game.Place(game.window.CameraFrame), (Vector{0, 15, 120}));
      EXPECT_EQ(game.window.lblPlayer1.Caption, "Home Team Score: 6");
      EXPECT_EQ(game.window.Label2.Caption, "Shots: 0");
      EXPECT_EQ(game.window.Shots, 3);
      EXPECT_FALSE(game.window.ShotPending);
      EXPECT_EQ(game.window.ArrowFrame->Visuals().size(), 1U);
    }
    Vector direction, up;
    game.window.AimFrame->GetOrientation(game.window.RMCanvas1.SceneFrame, direction, up);
    EXPECT_EQ(direction, (Vector{0, 0, 1}));
    if (frame == 2) game.machine.PressMouse(1);
    if (frame == 8) game.machine.ReleaseMouse(1);
  };
  PlayPointAfter(game, look, 0.7f);
  EXPECT_EQ(game.Cards, (std::vector<std::int16_t>{3, 2}));
}

TEST(KickTest, AKickIsGoodBetweenThePostsAndNotOnThem) {
  constexpr int ThereAndBack = 2 * 178; // frames, from the middle to both sides
  constexpr int Flight = 76;            // steps of a kick of 96
  for (const auto &[posts, good] :
       {std::pair{-14, false}, {-13, true}, {0, true}, {13, true}, {14, false}, {20, false}}) {
    SCOPED_TRACE(posts);
    Game game;
    game.SetUp();
    const SeenKick seen = Kick(game, 96, ThereAndBack + posts - Flight);
    EXPECT_EQ(seen.postsX, static_cast<float>(posts));
    EXPECT_EQ(game.window.HomeScore, good ? 7 : 6);
  }
}

TEST(KickTest, AGoodKickPaysOnePointAndEndsThePossession) {
  Game game;
  game.SetUp();
  // The posts start toward +x; when the kick arrives they are on their way back through the middle.
  Kick(game, 96, 2 * 178 - 76);
  EXPECT_EQ(game.Cards, (std::vector<std::int16_t>{3, 1}));
  EXPECT_EQ(game.window.HomeScore, 7);
  EXPECT_EQ(game.window.Player, 2);
  EXPECT_EQ(game.window.lblPlayer1.Caption, "Home Team Score: 7");
  EXPECT_FALSE(game.window.KickMode);
  EXPECT_FALSE(game.window.NoShot);
  EXPECT_EQ(game.window.ArrowFrame->Visuals().size(), 1U);
  Kick(game, 96);
  EXPECT_EQ(game.Cards, (std::vector<std::int16_t>{3, 1, 3, 2})) << "the next kick is judged independently";
  EXPECT_EQ(game.window.AwayScore, 6);
}

TEST(KickTest, ThePostsTurnOnlyBeyondTheirBounds) {
  Game game;
  game.SetUp();
  float most = 0, least = 0;
  PlayPointAfter(game, [&](int frame) {
    const float x = game.Place(game.window.GoalFrame).x;
    most = std::max(most, x);
    least = std::min(least, x);
    if (frame == 600) game.machine.PressMouse(1);
    if (frame == 610) game.machine.ReleaseMouse(1);
  });
  EXPECT_EQ(most, 89.0f);
  EXPECT_EQ(least, -89.0f);
}

TEST(KickTest, TheKickerAimsWithTheMouseAndOverchargesToThirty) {
  Game game;
  game.SetUp();
  std::int32_t pressed = 0, fired = 0;
  float power = 0;
  std::vector<Vector> flight;
  game.OnPump = [&] {
    const Vector place = game.Place(game.window.PieceFrame);
    const bool flies = game.window.KickMode && game.window.NoShot;
    if (flies && (flight.empty() || place != flight.back())) flight.push_back(place);
  };
  PlayPointAfter(game, [&](int frame) {
    if (frame == 2) game.machine.MoveMouse(-30, 0);
    if (frame == 5) {
      game.machine.PressMouse(1);
      pressed = game.machine.Now();
    }
    if (game.window.MouseMode == 1) fired = game.machine.Now();
    power = std::max(power, game.window.Force);
  });
  EXPECT_LE(fired - pressed, 260);
  EXPECT_EQ(power, 96.0f);
  ASSERT_GE(flight.size(), 2U);
  EXPECT_NEAR(flight[1].x - flight[0].x, -30.0f / 40.0f * std::sin(0.1f), 1e-4f);
  EXPECT_NEAR(flight[1].z - flight[0].z, -30.0f / 40.0f * std::cos(0.1f), 1e-4f);
  EXPECT_EQ(game.Cards, (std::vector<std::int16_t>{3, 2}));
  EXPECT_EQ(game.window.Force, 0.0f);
  EXPECT_EQ(game.window.MouseMode, 0);
}

TEST(KickTest, AButtonHeldBeyondAnOverchargedKickShootsNothing) {
  Game game;
  game.SetUp();
  // Released in the frame in which the kick ends.
  int releases = 0;
  game.OnPump = [&] {
    if (game.Cards.size() != 2 || game.window.KickMode || game.window.Player != 1) return;
    ++releases;
    game.machine.ReleaseMouse(1);
  };
  game.SoundsSince();
  PlayPointAfter(game, [&](int frame) {
    if (frame == 3) game.machine.PressMouse(1);
  });
  EXPECT_EQ(releases, 1);
  EXPECT_EQ(game.SoundsSince(), "play swoosh.daw, play yeah2.daw, play wis2.daw, play boo.daw");
  EXPECT_EQ(game.Cards, (std::vector<std::int16_t>{3, 2}));
  EXPECT_EQ(game.window.Shots, 3);
  EXPECT_EQ(game.window.Player, 2);
}

TEST(KickTest, AReleaseWithoutForceIsNoKick) {
  Game game;
  game.SetUp();
  int kicks = 0;
  PlayPointAfter(game, [&](int frame) {
    if (frame == 3) {
      game.machine.PressMouse(1);
      game.machine.ReleaseMouse(1);
    }
    if (frame == 6) {
      EXPECT_FALSE(game.window.ShotPending);
      EXPECT_EQ(game.window.ProgressBar1.Value, 0.0f);
      game.machine.PressMouse(1);
    }
    if (frame == 12) {
      game.machine.ReleaseMouse(1);
      ++kicks;
    }
  });
  EXPECT_EQ(kicks, 1);
  EXPECT_EQ(game.Cards, (std::vector<std::int16_t>{3, 2}));
}

TEST(KickTest, TheComputerNeverMisses) {
  for (const float direction : {1.0f, -1.0f}) {
    SCOPED_TRACE(direction);
    Game game("Computer");
    game.SetUp();
    game.window.Reset();
    game.window.GoalSpeed = direction;
    game.PutPiece(0, -87, 1);
    game.window.CheckRay();
    int frames = 0, steps = 0;
    game.machine.OnDraw = [&](Canvas &) {
      if (game.window.KickMode) ++(game.window.KickRise == 0.0f ? frames : steps);
    };
    std::int16_t side = 2;
    game.window.NoShot = False;
    game.window.Shots = 0;
    game.window.ArrowFrame->DeleteVisual(game.window.ArrowMesh);
    game.window.CheckScore(side);
    EXPECT_EQ(game.Cards, (std::vector<std::int16_t>{3, 1}));
    EXPECT_EQ(game.window.AwayScore, 7);
    EXPECT_EQ(game.window.GoalSpeed, -1.0f);
    // Only frames of the kick's steps have a rise; the last frame of the set-up precedes them.
    EXPECT_NEAR(frames, direction > 0 ? 89 : 267, 1);
    EXPECT_EQ(steps, 81) << "as many as a kick of 90 has";
  }
}

TEST(KickTest, TheSkyDriftsInEveryFrameOfThePointAfter) {
  constexpr std::size_t Enough = 20; // frames; the computer waits longer before its kick
  constexpr float Drift = 0.0008f;
  for (const char *mode : {"Human", "Computer", "INET"}) {
    SCOPED_TRACE(mode);
    Game game(mode);
    game.program.DP = std::make_shared<FakePlay>();
    game.SetUp();
    frmSnapwedge &window = game.window;
    window.Reset(); // to side B: the computer, or the other computer
    game.PutPiece(0, -87, 1);
    window.CheckRay();
    window.ReadAim();
    window.ReadShotPlace();
    std::vector<std::pair<float, float>> sky;
    game.machine.OnDraw = [&](Canvas &) {
      if (!window.KickMode) return;
      sky.emplace_back(window.SkyU, window.SkyV);
      if (sky.size() == Enough) throw ProgramEnd{};
    };
    float power = 0;
    EXPECT_THROW(window.Flick(window.FrameX, window.FrameY, window.FrameZ, power, window.X1, window.Y1,
                              window.Z1, window.X2, window.Y2, window.Z2, window.Player),
                 ProgramEnd);
    for (std::size_t i = 1; i < sky.size(); ++i) {
      EXPECT_NEAR(sky[i].first - sky[i - 1].first, Drift, 1e-6f);
      EXPECT_NEAR(sky[i].second - sky[i - 1].second, Drift, 1e-6f);
    }
  }
}

} // namespace

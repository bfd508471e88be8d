// The mouse: aim, meter, gate, zoom and orbit, and the keys.

#include "tests/network_kit.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

float Heading(Game &game) {
  Vector direction, up;
  game.window.AimFrame->GetOrientation(game.window.RMCanvas1.SceneFrame, direction, up);
  return std::atan2(direction.x, direction.z);
}

TEST(AimTest, ThePointerTurnsTheAimAndComesHome) {
  Game game;
  game.SetUp();
  game.Frames(1);
  game.machine.MoveMouse(-30, 0);
  game.Frames(1);
  EXPECT_NEAR(Heading(game), 0.1f, 1e-6f) << "30 pixels to the left are a tenth of a radian";
  game.Frames(3);
  EXPECT_NEAR(Heading(game), 0.1f, 1e-6f) << "the pointer is back at its home";
  game.machine.MoveMouse(45, 200);
  game.Frames(1);
  EXPECT_NEAR(Heading(game), -0.05f, 1e-6f);
  EXPECT_EQ(game.Place(game.window.CameraFrame), (Vector{0, 10, 120}));
}

TEST(AimTest, TheMeterIsAStateMachine) {
  struct Row {
    const char *name;
    std::vector<int> events; ///< 1, 2: press of that button; -1, -2: release; 0: a frame
    int mode;
    float force;
    int pending;
    int shots;
  };
  const Row rows[] = {
      {"left press", {1, 0}, 1, 0, -1, 3},
      {"charging", {1, 0, 0, 0}, 1, 16, -1, 3},
      {"twelve frames are the most", {1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, 1, 96, -1, 3},
      {"left release shoots", {1, 0, 0, -1, 0}, 0, 0, 0, 2},
      {"a click shorter than a frame spends an attempt", {1, -1, 0}, 0, 0, 0, 2},
      {"right press", {2, 0}, 2, 0, 0, 3},
      {"right release", {2, 0, -2, 0}, 0, 0, 0, 3},
      {"the right button freezes the meter", {1, 0, 0, 2, 0, 0, 0}, 2, 16, -1, 3},
      {"the left press goes on from there", {1, 0, 0, 2, 0, 1, 0, 0}, 1, 24, -1, 3},
      {"a right release stops it", {1, 0, 0, -2, 0, 0}, 0, 16, -1, 3},
      {"the left release still shoots", {1, 0, 0, -2, 0, 0, -1, 0}, 0, 0, 0, 2},
      {"a left release in orbit shoots", {2, 0, -1, 0}, 0, 0, 0, 2},
      {"a middle button is nothing", {4, 0}, 0, 0, 0, 3},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.name);
    Game game;
    game.SetUp();
    for (const int event : row.events) {
      if (event > 0) game.machine.PressMouse(static_cast<std::int16_t>(event));
      if (event < 0) game.machine.ReleaseMouse(static_cast<std::int16_t>(-event));
      if (event == 0) game.Frames(1);
    }
    EXPECT_EQ(game.window.MouseMode, row.mode);
    EXPECT_EQ(game.window.Force, row.force);
    EXPECT_EQ(game.window.ShotPending, row.pending);
    EXPECT_EQ(game.window.Shots, row.shots);
    if (row.pending) {
      EXPECT_EQ(game.window.ProgressBar1.Value, row.force);
    }
  }
}

TEST(AimTest, TheGateIsShutDuringCardsShotsAndTheOthersTurn) {
  using Shut = void (*)(Game &);
  const std::pair<const char *, Shut> rows[] = {
      {"a shot runs", [](Game &g) { g.window.NoShot = True; }},
      {"a delay runs", [](Game &g) { g.window.Busy = True; }},
      {"the first card is up", [](Game &g) { g.window.Picture1.Visible = true; }},
      {"the last card is up", [](Game &g) { g.window.Picture7.Visible = true; }},
      {"the match is over", [](Game &g) { g.window.LastWait = True; }},
      {"the computer's turn", [](Game &g) { g.program.MyTurn = False; }},
  };
  for (const auto &[name, shut] : rows) {
    SCOPED_TRACE(name);
    Game game("Computer");
    game.SetUp();
    shut(game);
    game.machine.PressMouse(1);
    game.machine.Pump();
    game.machine.ReleaseMouse(1);
    game.machine.Pump();
    EXPECT_EQ(game.window.MouseMode, 0);
    EXPECT_EQ(game.window.ShotPending, 0);
    EXPECT_EQ(game.window.Shots, 3);
  }
}

TEST(AimTest, TheScreenStandsStillWhileTheMeterRises) {
  Game game;
  game.SetUp();
  game.machine.PressMouse(1);
  game.Frames(1);
  const long drawn = game.machine.Draws;
  game.Frames(5);
  EXPECT_EQ(game.machine.Draws, drawn);
}

TEST(AimTest, TheCameraStaysInItsBox) {
  struct Row {
    const char *name;
    bool shift;
    int button;
    int dx, dy;
  };
  for (const Row &row :
       {Row{"zoom in", true, 0, 0, -90}, Row{"zoom out", true, 0, 0, 90}, Row{"orbit down", false, 2, 0, 70},
        Row{"orbit up", false, 2, 0, -70}, Row{"orbit left", false, 2, -200, 0},
        Row{"orbit right", false, 2, 200, 0}, Row{"zoom wins over orbit", true, 2, 300, -90}}) {
    SCOPED_TRACE(row.name);
    Game game;
    game.SetUp();
    const Vector start = game.Place(game.window.CameraFrame);
    if (row.shift) game.machine.PressKey(KeyCodes::Shift);
    if (row.button) game.machine.PressMouse(static_cast<std::int16_t>(row.button));
    game.Frames(1);
    for (int frame = 0; frame < 60; ++frame) {
      game.machine.MoveMouse(row.dx, row.dy);
      game.Frames(1);
    }
    game.Frames(1); // a camera outside the limits on two axes is back after a frame
    const Vector camera = game.Place(game.window.CameraFrame);
    EXPECT_NE(camera, start);
    EXPECT_LE(std::abs(camera.x), 130.0f);
    EXPECT_LE(std::abs(camera.z), 130.0f);
    EXPECT_GE(camera.y, 5.0f);
    EXPECT_LE(camera.y, 30.0f);
    EXPECT_EQ(Heading(game), 0.0f) << "zoom and orbit leave the aim alone";
  }
}

TEST(AimTest, ACameraOutsideTheBoxIsPulledBackOnTheLastAxisFirst) {
  struct Row {
    Vector from, afterOne, afterTwo;
  };
  for (const Row &row :
       {Row{{0, 10, 140}, {0, 10, 130}, {0, 10, 130}}, Row{{0, 10, -140}, {0, 10, -130}, {0, 10, -130}},
        Row{{140, 10, 0}, {130, 10, 0}, {130, 10, 0}}, Row{{-140, 10, 0}, {-130, 10, 0}, {-130, 10, 0}},
        Row{{0, 4, 100}, {0, 5, 100}, {0, 5, 100}}, Row{{0, 31, 100}, {0, 30, 100}, {0, 30, 100}},
        Row{{140, 31, 0}, {140, 30, 0}, {130, 30, 0}}, Row{{-140, 9, 140}, {-130, 9, 140}, {-130, 9, 130}}}) {
    SCOPED_TRACE(::testing::Message() << row.from.x << ' ' << row.from.y << ' ' << row.from.z);
    Game game;
    game.SetUp();
    game.window.CameraFrame->SetPosition(game.window.RMCanvas1.SceneFrame, row.from.x, row.from.y,
                                         row.from.z);
    game.Frames(1);
    EXPECT_EQ(game.Place(game.window.CameraFrame), row.afterOne);
    game.Frames(1);
    EXPECT_EQ(game.Place(game.window.CameraFrame), row.afterTwo);
  }
}

TEST(AimTest, TheRightButtonOrbitsInTheCamerasOwnAxes) {
  Game game;
  game.SetUp();
  game.machine.PressMouse(2);
  game.Frames(1);
  game.machine.MoveMouse(-50, 30);
  game.Frames(1);
  const Vector camera = game.Place(game.window.CameraFrame);
  EXPECT_NEAR(camera.x, -5.0f, 1e-4f);
  EXPECT_NEAR(std::hypot(camera.y - 10.0f, camera.z - 120.0f), 3.0f, 1e-3f);
  EXPECT_LT(camera.y, 10.0f);
  Vector piece;
  game.window.PieceFrame->GetPosition(game.window.CameraFrame, piece);
  EXPECT_NEAR(std::hypot(piece.x, piece.y), 0.0f, 1e-3f) << "it still looks at the piece";
  EXPECT_GT(piece.z, 0.0f);
}

TEST(AimTest, ShiftZoomsAlongTheViewAndLetsGo) {
  Game game;
  game.SetUp();
  game.machine.PressKey(KeyCodes::Shift);
  game.Frames(1);
  game.machine.MoveMouse(0, -50);
  game.Frames(1);
  const Vector camera = game.Place(game.window.CameraFrame);
  EXPECT_NEAR(std::hypot(camera.y - 10.0f, camera.z - 120.0f), 5.0f, 1e-3f);
  EXPECT_LT(camera.z, 120.0f) << "up is toward the piece";
  game.machine.ReleaseKey(KeyCodes::Shift);
  game.Frames(1);
  game.machine.MoveMouse(30, 0);
  game.Frames(1);
  EXPECT_NEAR(Heading(game), -0.1f, 1e-6f);
  game.machine.PressKey(KeyCodes::Shift);
  game.machine.PressMouse(1);
  game.Frames(1);
  game.machine.MoveMouse(0, -50);
  game.Frames(1);
  EXPECT_NEAR(game.Place(game.window.CameraFrame).z, 120.0f - 2 * (120.0f - camera.z), 0.1f)
      << "also while the meter rises";
  EXPECT_EQ(game.window.ProgressBar1.Value, 8.0f);
}

/// Runs `play` and moves the mouse at every pump at which `moves` is true. The motion must not turn the next
/// aim.
void PlayWhileTheMouseMoves(Game &game, const std::function<bool()> &moves,
                            const std::function<void()> &play) {
  int moved = 0;
  game.machine.Player = [&] {
    if (!moves()) return;
    game.machine.MoveMouse(3, 0);
    ++moved;
  };
  play();
  game.machine.Player = nullptr;
  EXPECT_GT(moved, 0);
  game.Frames(1);
  EXPECT_EQ(Heading(game), 0.0f);
}

TEST(AimTest, MotionOfTheMouseIsDiscardedWhileNobodyAims) {
  const auto underCard = [](Game &game) { return game.window.AnyPictures() != False; };
  {
    SCOPED_TRACE("in a fall");
    Game game;
    game.SetUp();
    game.PutPiece(0, -80, 3);
    PlayWhileTheMouseMoves(
        game, [&] { return game.Place(game.window.PieceFrame).y < 0.0f && !underCard(game); },
        [&] { game.Flick(60); });
  }
  {
    SCOPED_TRACE("in the frame of a shot that fires by itself");
    Game game;
    game.SetUp();
    PlayWhileTheMouseMoves(
        game, [&] { return game.window.Force == 96.0f && !game.window.NoShot; },
        [&] {
          game.machine.PressMouse(1);
          game.Frames(14);
        });
    EXPECT_EQ(game.Cards, std::vector<std::int16_t>{4});
  }
  {
    SCOPED_TRACE("in a kick's flight");
    Game game;
    game.SetUp();
    game.PutPiece(0, -87, 1);
    game.window.CheckRay();
    game.machine.OnDraw = [&, pressed = false](Canvas &) mutable {
      if (!game.window.KickMode || std::exchange(pressed, true)) return;
      game.machine.PressMouse(1);
      game.machine.After(150, [&] { game.machine.ReleaseMouse(1); });
    };
    PlayWhileTheMouseMoves(
        game, [&] { return game.window.KickMode && game.window.NoShot && !underCard(game); },
        [&] { game.Flick(0); });
  }
  {
    SCOPED_TRACE("in the computer's point-after");
    Game game("Computer");
    game.SetUp();
    game.window.Reset();
    game.PutPiece(0, -87, 0);
    game.window.CheckRay();
    game.window.ArrowFrame->DeleteVisual(game.window.ArrowMesh); // as at the end of a flick
    std::int16_t side = 2;
    PlayWhileTheMouseMoves(
        game, [&] { return game.window.KickMode; }, [&] { game.window.CheckScore(side); });
  }
  {
    SCOPED_TRACE("in the other computer's point-after");
    NetworkGame game(true);
    game.PutPiece(0, -87, 1);
    game.window.PieceSurface = "Table";
    game.Receive(Shot("Flick", 0, -87));
    game.ReceiveIn(2000, Shot("Goal", 96));
    PlayWhileTheMouseMoves(
        game, [&] { return game.window.KickMode; }, [&] { game.Frames(1); });
  }
}

TEST(AimTest, LosingTheKeyboardPutsTheMeterToRestWithoutAShot) {
  Game game;
  game.SetUp();
  game.machine.PressKey(KeyCodes::Shift);
  game.machine.PressMouse(1);
  game.Frames(4);
  game.machine.LoseFocus();
  game.Frames(1);
  EXPECT_EQ(game.window.MouseMode, 0);
  EXPECT_EQ(game.window.Force, 0.0f);
  EXPECT_EQ(game.window.ProgressBar1.Value, 0.0f);
  EXPECT_EQ(game.window.Shots, 3);
  EXPECT_FALSE(game.window.ShiftDown);
  game.machine.ReleaseMouse(1);
  game.Frames(1);
  EXPECT_EQ(game.window.Shots, 3) << "the release belongs to an earlier press";
  game.machine.After(200, [&] { game.machine.LoseFocus(); });
  game.Shoot(3);
  EXPECT_EQ(game.window.Shots, 2) << "play continues";
  EXPECT_NEAR(game.Place(game.window.PieceFrame).z, 85.0f - 9.84f, 0.005f) << "the flight continues";
}

TEST(KeysTest, TheStadiumGoesAndComesInEveryPhase) {
  Game game;
  game.SetUp();
  const auto shown = [&] {
    return game.window.StadiumFrame->Visuals().size() + game.window.SkyFrame->Visuals().size();
  };
  EXPECT_EQ(shown(), 3U);
  // In flight, and under the card of the fall.
  game.PutPiece(0, -80, 3);
  std::vector<std::size_t> seen;
  long drawn = 0;
  for (const std::int32_t moment : {100, 300, 2500}) {
    game.machine.After(moment, [&] {
      drawn = game.machine.Draws;
      game.machine.PressKey(65);
      game.machine.PressKey(KeyCodes::Tilde); // there is nobody to write to
      game.machine.PressKey(KeyCodes::S);
    });
    game.machine.After(moment + 1, [&] {
      seen.push_back(shown());
      EXPECT_GT(game.machine.Draws, drawn);
    });
  }
  game.Flick(60);
  EXPECT_EQ(seen, (std::vector<std::size_t>{0, 3, 0}));
  EXPECT_FALSE(game.program.StadiumOn);
}

TEST(KeysTest, EscapeEndsTheProgramFromWithinAShotWithAWhistle) {
  for (const bool kick : {false, true}) {
    SCOPED_TRACE(kick ? "kick" : "flick");
    Game game;
    game.SetUp();
    game.SoundsSince();
    game.machine.DrawMs = 25; // so slow that no step waits
    if (kick) {
      game.PutPiece(0, -87, 1);
      game.window.CheckRay();
    }
    game.machine.OnDraw = [&](Canvas &) {
      const frmSnapwedge &window = game.window;
      if (window.NoShot && (window.KickMode != False) == kick) game.machine.PressKey(KeyCodes::Escape);
      if (!window.KickMode || window.NoShot) return;
      if (window.Force == 0.0f) game.machine.PressMouse(1);
      if (window.Force == 48.0f) game.machine.ReleaseMouse(1);
    };
    EXPECT_THROW(game.Flick(kick ? 0 : 96), ProgramEnd);
    EXPECT_EQ(game.SoundsSince(), kick ? "play swoosh.daw, play yeah2.daw, play wis2.daw, play wis3.daw"
                                       : "play swoosh.daw, play wis3.daw");
    EXPECT_EQ(game.Cards, kick ? std::vector<std::int16_t>{3} : std::vector<std::int16_t>{});
    EXPECT_TRUE(game.machine.CursorShown);
  }
}

TEST(KeysTest, TheCloseBoxIsEscape) {
  Game game;
  game.SetUp();
  EXPECT_FALSE(game.machine.CursorShown);
  game.machine.CloseBox(game.window);
  EXPECT_THROW(game.Frames(1), ProgramEnd);
  EXPECT_TRUE(game.machine.CursorShown);
}

} // namespace

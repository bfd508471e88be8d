// The verdict on a resting piece.

#include "tests/game_kit.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace {

constexpr auto HalfTurn = static_cast<float>(std::numbers::pi);

struct Row {
  const char *name;
  float x, z;
  float pieceTurn;
  std::int16_t shotsBefore;
  std::vector<std::int16_t> cards;
  std::int32_t points;
  bool possessionEnds;
  float tableZ = 0; ///< offset of the table, to move its far edge off the far-edge line
};

/// Whether the camera has the close-up view.
bool IsCloseUp(const Game &game) {
  Vector behind;
  game.window.CameraFrame->GetPosition(game.window.PieceFrame, behind);
  return std::hypot(behind.x, behind.y - 20.0f, behind.z - 20.0f) < 1e-3f;
}

/// Plays a flick of force 0, which judges the piece where it is.
TEST(JudgingTest, EveryOutcomeHasItsCardItsPointsAndItsTurnover) {
  // Unturned, corner A is at (5, 2.5), B at (-5, 2.5), C at (0, -2.5) from the centre; half a turn mirrors
  // them.
  const Row rows[] = {
      {"on the table, first", 0, 0, 0, 3, {}, 0, false},
      {"on the table, second", 0, 0, 0, 2, {}, 0, false},
      {"on the table, third", 0, 0, 0, 1, {7}, 0, true},
      {"bonus on the first", 0, -79, 0, 3, {5}, 3, false},
      {"bonus area on the second", 0, -79, 0, 2, {}, 0, false},
      {"bonus area on the third", 0, -79, 0, 1, {7}, 0, true},
      {"one corner on the bonus area", 0, -69.5f, 0, 3, {5}, 3, false},
      {"short of the bonus area", 0, -68, 0, 3, {}, 0, false},
      {"over the far edge on the first", 40, -87, 0, 3, {6}, 0, true},
      {"over the far edge on the second", 0, -87, 0, 2, {6}, 0, true},
      {"A and B on the bonus area, C over the far edge", 0, -87, 0, 3, {6}, 0, true},
      {"a corner over the edge at +x on the first", 86, 0, 0, 3, {}, 0, false},
      {"a corner over the edge at +x on the third", 86, 0, 0, 1, {7}, 0, true},
      {"a corner over the edge at -x on the second", -86, 0, 0, 2, {}, 0, false},
      {"A over the side edge hides C past the line", 85, -86, 0, 2, {}, 0, false},
      {"A past the line counts before B", 0, -86, HalfTurn, 2, {6}, 0, true},
      {"only B past the line", 40, -85, -HalfTurn / 2, 2, {6}, 0, true},
      {"past the line with the table under it", 40, -86, 0, 3, {}, 0, false, -4},
      {"the same with a later corner over the side edge", 85, -84, HalfTurn * 2 / 3, 2, {6}, 0, true, -4},
      {"A over a far edge that comes just before the line", 40, -82.2f, 2.0344f, 2, {}, 0, false, 4},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.name);
    Game game;
    game.SetUp();
    game.window.TableFrame->SetPosition(game.window.TableFrame, 0, 0, row.tableZ);
    game.PutPiece(row.x, row.z, row.shotsBefore, row.pieceTurn);
    game.window.CheckRay();
    bool closeUp = false, winCam = false;
    game.machine.OnDraw = [&](Canvas &) {
      closeUp = closeUp || IsCloseUp(game);
      winCam = winCam || game.Place(game.window.CameraFrame) == Vector{row.x < 0 ? -88.0f : 88.0f, 30, -88};
    };
    std::int32_t pointsUnderCard = 0;
    game.machine.After(10, [&] { pointsUnderCard = game.window.HomeScore; });
    game.Flick(0.0f);
    EXPECT_EQ(game.Cards, row.cards);
    EXPECT_EQ(pointsUnderCard, row.points);
    const int card = row.cards.empty() ? 0 : row.cards[0];
    EXPECT_EQ(closeUp, card == 5 || card == 6);
    EXPECT_EQ(winCam, card == 6 || card == 7);
    EXPECT_EQ(game.window.HomeScore, row.points);
    EXPECT_EQ(game.window.AwayScore, 0);
    EXPECT_EQ(game.window.Player, row.possessionEnds ? 2 : 1);
    EXPECT_EQ(game.window.Shots, row.possessionEnds ? 3 : row.shotsBefore - 1);
    EXPECT_EQ(game.window.lblPlayer1.Caption, "Home Team Score: " + std::to_string(row.points));
    EXPECT_FALSE(game.window.AnyPictures());
    EXPECT_FALSE(game.window.Busy);
  }
}

TEST(JudgingTest, TheAwaySideGetsItsOwnPoints) {
  Game game;
  game.SetUp();
  game.window.Reset();
  game.PutPiece(0, -79, 3);
  game.Flick(0.0f);
  EXPECT_EQ(game.window.HomeScore, 0);
  EXPECT_EQ(game.window.AwayScore, 3);
  EXPECT_EQ(game.window.lblPlayer2.Caption, "Away Team Score: 3");
}

TEST(JudgingTest, AFallOnTheStepThatEndsTheFlightIsAFall) {
  Game game;
  game.SetUp();
  game.PutPiece(0, -87.99f, 1);
  game.Flick(0.6f);
  EXPECT_EQ(game.Cards, std::vector<std::int16_t>{4});
  EXPECT_EQ(game.window.HomeScore, 0);
}

TEST(JudgingTest, TouchdownPaysSixBeforeItsCardAndLeadsToTheKick) {
  Game game;
  game.SetUp();
  game.PutPiece(0, -87, 1);
  game.window.CheckRay();
  std::int32_t pointsUnderCard = -1;
  bool closeUp = false;
  game.machine.OnDraw = [&](Canvas &) {
    if (game.window.KickMode) throw ProgramEnd{};
    closeUp = closeUp || IsCloseUp(game);
  };
  Vector cameraUnderCard;
  game.machine.After(100, [&] {
    pointsUnderCard = game.window.HomeScore;
    cameraUnderCard = game.Place(game.window.CameraFrame);
  });
  EXPECT_THROW(game.Flick(0.0f), ProgramEnd);
  EXPECT_TRUE(closeUp);
  EXPECT_EQ(pointsUnderCard, 6);
  EXPECT_EQ(cameraUnderCard, (Vector{88, 30, -88}));
  EXPECT_EQ(game.Cards, std::vector<std::int16_t>{3});
  EXPECT_EQ(game.window.Player, 1);
}

TEST(JudgingTest, APieceThatWasNeverOverTheTableHasNoOutcomeAtTheFarEdge) {
  Game game;
  game.SetUp();
  game.PutPiece(0, -87, 2);
  game.window.PieceSurface.clear();
  game.Flick(0.0f);
  EXPECT_TRUE(game.Cards.empty());
  EXPECT_EQ(game.window.Player, 1);
}

TEST(JudgingTest, ResetPutsEverythingBackAndKeepsWhatOutlivesAPossession) {
  Game game("Human", 4);
  game.SetUp();
  game.PutPiece(10, -40, 1, 1.0f);
  game.window.GoalSpeed = -1.0f;
  game.window.HomeScore = 9;
  game.window.Force = 40;
  game.window.ProgressBar1.Value = 40;
  game.window.GoalFrame->SetPosition(game.window.RMCanvas1.SceneFrame, 33, 20, -95);
  game.window.AimFrame->AddRotation(D3DRMCOMBINE_BEFORE, 0, 1, 0, 2.0f);
  game.window.Reset();
  EXPECT_EQ(game.Place(game.window.PieceFrame), (Vector{0, 0, 85}));
  EXPECT_EQ(game.Place(game.window.AimFrame), (Vector{0, 0, 85}));
  EXPECT_EQ(game.Place(game.window.ArrowFrame), (Vector{0, 0, 85}));
  EXPECT_EQ(game.Place(game.window.GoalFrame), (Vector{0, 20, -95}));
  EXPECT_EQ(game.Place(game.window.CameraFrame), (Vector{0, 10, 120}));
  for (const auto &frame : {game.window.PieceFrame, game.window.AimFrame}) {
    Vector direction, up;
    frame->GetOrientation(game.window.RMCanvas1.SceneFrame, direction, up);
    EXPECT_EQ(direction, (Vector{0, 0, 1}));
    EXPECT_EQ(up, (Vector{0, 1, 0}));
  }
  EXPECT_EQ(game.window.Shots, 3);
  EXPECT_EQ(game.window.Force, 0.0f);
  EXPECT_EQ(game.window.ProgressBar1.Value, 0.0f);
  EXPECT_EQ(game.window.GoalSpeed, -1.0f);
  EXPECT_EQ(game.window.HomeScore, 9);
  EXPECT_EQ(game.window.Label1.Caption, "Round: 1 of 4");
  EXPECT_TRUE(game.window.Label4.Visible);
  EXPECT_FALSE(game.window.Label3.Visible);
  EXPECT_EQ(game.window.lblPlayer2.ForeColor, (Color{255, 255, 0}));
  EXPECT_EQ(game.window.lblPlayer1.ForeColor, (Color{192, 192, 0}));
  game.window.Reset();
  EXPECT_TRUE(game.window.Label3.Visible);
  EXPECT_FALSE(game.window.Label4.Visible);
}

} // namespace

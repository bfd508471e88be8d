// The score board behind the controls: lit boards, large digits, attempts left.

#include "match/results.h"
#include "tests/network_kit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace {

/// The points shown by the digits of a board.
std::string Written(const SideBoard &board) {
  std::string points;
  for (const BackPicture &digit : board.Digits) {
    if (digit.Visible) points += static_cast<char>('0' + digit.Column);
  }
  return points;
}

int TriesShown(const Game &game) {
  return static_cast<int>(
      std::ranges::count_if(game.window.Tries, [](const BackPicture &attempt) { return attempt.Visible; }));
}

TEST(ScoreBoardTest, TheSideOnTurnIsLitAndItsAttemptsAreLaidOut) {
  Game game;
  game.SetUp();
  const auto lit = [&](const SideBoard &board) { return board.Line.Visible && board.Tile.Visible; };
  EXPECT_TRUE(lit(game.window.HomeBoard));
  EXPECT_FALSE(lit(game.window.AwayBoard));
  std::vector<int> tries = {TriesShown(game)};
  for (int attempt = 0; attempt < 3; ++attempt) {
    game.Shoot(2);
    tries.push_back(TriesShown(game));
  }
  EXPECT_EQ(tries, (std::vector<int>{3, 2, 1, 3}));
  EXPECT_FALSE(lit(game.window.HomeBoard));
  EXPECT_TRUE(lit(game.window.AwayBoard));
  EXPECT_EQ(game.window.AwayBoard.Digits[0].Picture, "DigitsLit");
  EXPECT_EQ(game.window.HomeBoard.Digits[0].Picture, "Digits");
}

TEST(ScoreBoardTest, AKickIsNoneOfTheAttempts) {
  Game game;
  game.SetUp();
  int frame = 0;
  game.OnPump = [&] {
    if (!game.window.KickMode || game.window.NoShot) return;
    if (frame == 0) game.machine.PressMouse(1);
    if (frame++ == 5) game.machine.ReleaseMouse(1);
  };
  std::set<int> atCard;
  game.machine.OnRepaint = [&] {
    if (game.window.Card(Results::MissedKick).Visible) atCard.insert(TriesShown(game));
  };
  game.ScoreTouchdown();
  EXPECT_EQ(atCard, std::set<int>{0});
  EXPECT_EQ(TriesShown(game), 3) << "the next possession";
}

TEST(ScoreBoardTest, AtTheEndTheWinnersBoardIsLitAndNoLine) {
  Game game;
  game.SetUp();
  game.window.AwayScore = 3;
  game.machine.Player = [&] {
    if (Window *page = game.machine.FindWindow("frmAway")) game.machine.ClickOn(*page);
  };
  EXPECT_THROW(game.window.EndMatch(), ProgramEnd);
  EXPECT_TRUE(game.window.AwayBoard.Tile.Visible);
  EXPECT_FALSE(game.window.HomeBoard.Tile.Visible);
  EXPECT_FALSE(game.window.AwayBoard.Line.Visible || game.window.HomeBoard.Line.Visible);
  EXPECT_EQ(TriesShown(game), 0);
}

TEST(ScoreBoardTest, TheOtherSideStaysLitWhileItsShotsAreReplayed) {
  NetworkGame game(true);
  game.PutPiece(0, -79, 3);
  game.Receive(Shot("Flick", 0, -79)); // onto the circle: 3 points, and the score is written again
  game.Frames(20);
  ASSERT_EQ(game.window.AwayScore, 3);
  EXPECT_TRUE(game.window.AwayBoard.Tile.Visible);
  EXPECT_FALSE(game.window.HomeBoard.Tile.Visible);
}

TEST(ScoreBoardTest, PointsAreWrittenInTheMiddleAndFlashForAMoment) {
  Game game;
  game.SetUp();
  SideBoard &board = game.window.HomeBoard;
  EXPECT_EQ(Written(board), "0");
  const int middle = board.Digits[0].Left;
  game.PutPiece(0, -70, 3);
  game.Shoot(3); // the bonus
  EXPECT_EQ(Written(board), "3");
  int flashing = 0, changes = 0;
  bool before = false;
  for (int frame = 0; frame < 200; ++frame) {
    const bool now = board.Tile.Picture == "ScoreTileFlash";
    flashing += now ? 1 : 0;
    changes += now != before ? 1 : 0;
    before = now;
    game.Frames(1);
  }
  EXPECT_EQ(flashing, 30);
  EXPECT_EQ(changes, 6);
  EXPECT_EQ(board.Line.Picture, "ScoreLine");
  for (const auto &[points, left] : {std::pair{7, middle}, {42, middle - 7}, {990, middle - 14}}) {
    game.window.HomeScore = points;
    game.window.PostScore();
    EXPECT_EQ(Written(board), std::to_string(points));
    EXPECT_EQ(board.Digits[0].Left, left);
  }
}

TEST(ScoreBoardTest, TheOthersVersionAndTheKeyForMessagesAreShownInANetworkGameAlone) {
  Game game;
  game.SetUp();
  EXPECT_FALSE(game.window.VersionSlip.Visible || game.window.MessageKey.Visible);
  const NetworkGame network(false);
  EXPECT_TRUE(network.window.VersionSlip.Visible && network.window.MessageKey.Visible);
}

TEST(ScoreBoardTest, TheKeysThatAimAndShootAreLitWhileTheyWork) {
  Game game("Computer");
  game.SetUp();
  EXPECT_TRUE(game.window.MouseKeys.Visible);
  std::set<bool> inFlight, atComputer;
  game.machine.OnDraw = [&](Canvas &) {
    if (game.program.MyTurn && game.window.NoShot) inFlight.insert(game.window.MouseKeys.Visible);
    if (!game.program.MyTurn) atComputer.insert(game.window.MouseKeys.Visible);
  };
  game.Shoot(12);
  EXPECT_TRUE(game.window.MouseKeys.Visible) << "the second try";
  game.Shoot(13);
  while (!game.program.MyTurn) game.Frames(1);
  EXPECT_EQ(inFlight, std::set<bool>{false});
  EXPECT_EQ(atComputer, std::set<bool>{false});
  EXPECT_TRUE(game.window.MouseKeys.Visible);
  EXPECT_FALSE(NetworkGame(true).window.MouseKeys.Visible) << "the other side begins";
  game.window.HintOver();
  EXPECT_FALSE(game.window.MouseKeys.Visible);
}

} // namespace

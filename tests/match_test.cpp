// Whole matches from the set-up to the end card, the sounds of the cards, and the waits.

#include "tests/game_kit.h"

#include <gtest/gtest.h>

#include <random>

namespace {

/// Plays whole matches with the mouse: presses, holds, releases, and closes the end card with a click.
/// @returns the name of the end card
std::shared_ptr<std::string> PlayByMouse(Game &game, std::uint32_t seed) {
  auto random = std::make_shared<std::mt19937>(seed);
  auto wait = std::make_shared<int>(0);
  auto endCard = std::make_shared<std::string>();
  game.machine.OnDraw = nullptr;
  game.OnPump = [&game, random, wait, endCard] {
    for (const char *card : {"frmHome", "frmAway", "frmTie"}) {
      Window *window = game.machine.FindWindow(card);
      if (!window) continue;
      *endCard = card;
      game.machine.ClickOn(*window);
    }
    if (--*wait > 0) return;
    *wait = static_cast<int>((*random)() % 14);
    game.machine.MoveMouse(static_cast<int>((*random)() % 61) - 30, 0);
    if ((*random)() % 2 == 0) {
      game.machine.PressMouse(1);
    } else {
      game.machine.ReleaseMouse(1);
    }
  };
  return endCard;
}

TEST(MatchTest, WholeMatchesEndAfterTheirRoundsWithACard) {
  for (const char *mode : {"Human", "Computer"}) {
    for (std::uint32_t seed = 1; seed <= 12; ++seed) {
      SCOPED_TRACE(std::string(mode) + " " + std::to_string(seed));
      Game game(mode, 3);
      game.machine.Seed = seed;
      const auto endCard = PlayByMouse(game, seed);
      EXPECT_THROW(game.window.Load(), ProgramEnd);
      EXPECT_EQ(game.window.Round, 3);
      EXPECT_LE(game.window.HomeScore, 30);
      EXPECT_LE(game.window.AwayScore, 30);
      EXPECT_FALSE(endCard->empty());
      EXPECT_TRUE(game.window.NoShot);
      EXPECT_TRUE(game.machine.CursorShown);
    }
  }
}

TEST(MatchTest, TheEndCardAndItsSoundsFitTheScore) {
  struct Row {
    std::int16_t home, away;
    const char *card, *sound;
  };
  for (const Row &row : {Row{7, 6, "frmHome", "play yeah2.daw"}, Row{0, 3, "frmAway", "play boo.daw"},
                         Row{6, 6, "frmTie", "play yeah.daw"}}) {
    SCOPED_TRACE(row.card);
    Game game;
    game.SetUp();
    game.SoundsSince();
    game.window.HomeScore = row.home;
    game.window.AwayScore = row.away;
    game.window.PostScore(); // the boards begin to flash
    const auto endCard = PlayByMouse(game, 1);
    EXPECT_THROW(game.window.EndMatch(), ProgramEnd);
    EXPECT_EQ(*endCard, row.card);
    const auto lit = [](const SideBoard &board) {
      return board.Tile.Visible && board.Tile.Picture == "ScoreTile";
    };
    EXPECT_EQ(lit(game.window.HomeBoard), row.home >= row.away);
    EXPECT_EQ(lit(game.window.AwayBoard), row.away >= row.home);
    EXPECT_EQ(game.SoundsSince(), std::string("play wis3.daw, play guit2.daw, loop theme.daw, ") + row.sound);
  }
}

TEST(MatchTest, SetUpStopsTheLaunchWindowsSoundsAndStartsTheCrowd) {
  Game game;
  game.SetUp();
  EXPECT_EQ(game.SoundsSince(),
            "stop crowd2.daw, stop crowd.daw, stop yeah2.daw, stop theme.daw, play wis2.daw, "
            "play guit2.daw, loop crowd.daw, loop crowd2.daw");
  EXPECT_EQ(game.program.MyTurn, True);
  EXPECT_TRUE(game.window.Visible);
  EXPECT_FALSE(game.machine.CursorShown);
  EXPECT_TRUE(game.window.CapturesPointer);
  EXPECT_FALSE(game.window.Text2.Enabled);
}

TEST(MatchTest, EveryCardIsUpForThreeSeconds) {
  for (std::int16_t code = 1; code <= 7; ++code) {
    for (const Flag turn : {True, False}) {
      SCOPED_TRACE(std::to_string(code) + (turn ? " home" : " away"));
      Game game;
      game.SetUp();
      game.program.MyTurn = turn;
      game.window.Player = turn ? 1 : 2;
      const std::int32_t begin = game.machine.Now();
      const long repaints = game.machine.Repaints;
      game.machine.Focus = nullptr;
      bool upToTheEnd = false;
      game.machine.After(2999, [&] { upToTheEnd = game.window.Card(code).Visible; });
      game.window.ShowMessage(static_cast<std::int16_t>(code));
      EXPECT_EQ(game.machine.Now() - begin, 3000);
      EXPECT_EQ(game.Cards, std::vector<std::int16_t>{code});
      EXPECT_TRUE(upToTheEnd);
      EXPECT_EQ(game.window.Label3.Visible, turn != False) << "the side on turn is marked";
      EXPECT_GT(game.machine.Repaints, repaints);
      EXPECT_EQ(game.machine.Focus, &game.window.RMCanvas1);
      EXPECT_FALSE(game.window.AnyPictures());
    }
  }
}

TEST(MatchTest, WithoutSoundNothingIsAskedAndTheMatchIsTheSame) {
  std::vector<std::int16_t> cards[2];
  std::int32_t ends[2];
  for (const bool silent : {false, true}) {
    Game game("Computer", 2);
    if (silent) game.program.SoundOn = False;
    PlayByMouse(game, 5);
    EXPECT_THROW(game.window.Load(), ProgramEnd);
    EXPECT_EQ(game.machine.Sounds.empty(), silent);
    cards[silent] = game.Cards;
    ends[silent] = game.machine.Now();
  }
  EXPECT_EQ(cards[0], cards[1]);
  EXPECT_EQ(ends[0], ends[1]);
}

TEST(MatchTest, WithoutMessagesAResultPlaysItsSoundsAndPausesOneSecond) {
  Game game;
  game.SetUp();
  game.SoundsSince();
  game.program.MessagesOn = False;
  const std::int32_t begin = game.machine.Now();
  game.window.ShowMessage(3);
  EXPECT_EQ(game.SoundsSince(), "play yeah2.daw, play wis2.daw");
  EXPECT_EQ(game.machine.Now() - begin, 1000);
  EXPECT_TRUE(game.Cards.empty());
  EXPECT_FALSE(game.window.Busy);
}

TEST(MatchTest, FramesLastTwentyFiveMillisecondsEvenAcrossTheClocksWrap) {
  Game game;
  game.machine.SetNow(0x7FFFFFF0);
  game.SetUp();
  const auto begin = static_cast<std::uint32_t>(game.machine.Now());
  game.Frames(4);
  EXPECT_EQ(static_cast<std::uint32_t>(game.machine.Now()) - begin, 100U);
}

TEST(MatchTest, WithoutTheStadiumOnlyTheFieldIsThereAndTheKeyBringsItBack) {
  Game game;
  game.program.StadiumOn = False;
  game.SetUp();
  EXPECT_TRUE(game.window.StadiumFrame->Visuals().empty());
  EXPECT_TRUE(game.window.SkyFrame->Visuals().empty());
  EXPECT_EQ(game.window.TableFrame->Visuals().size(), 3U);
  game.machine.PressKey(KeyCodes::S);
  game.Frames(1);
  EXPECT_EQ(game.window.StadiumFrame->Visuals().size(), 2U);
  EXPECT_EQ(game.window.SkyFrame->Visuals().size(), 1U);
}

} // namespace

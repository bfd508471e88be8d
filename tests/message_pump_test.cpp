// Incoming messages during a match: replays, cards, scores, and invalid messages.

#include "tests/network_kit.h"

#include <gtest/gtest.h>

#include <limits>
#include <set>

namespace {

TEST(MessagePumpTest, AFlickIsReplayedFromItsInputs) {
  NetworkGame game(true);
  EXPECT_EQ(game.window.Player, 2);
  EXPECT_EQ(game.Place(game.window.CameraFrame), (Vector{100, 20, 0}));
  game.Receive(Shot("Flick", 40));
  game.Frames(1);
  EXPECT_NEAR(game.Place(game.window.PieceFrame).z, 85.0f - 27.07f, 0.01f);
  EXPECT_EQ(game.window.Shots, 2);
  EXPECT_EQ(game.window.Player, 1) << "as received, until the turnover";
  EXPECT_EQ(game.window.Force, 0.0f);
  EXPECT_TRUE(game.play->Sent.empty()) << "the waiting computer sends nothing about a replay";
}

TEST(MessagePumpTest, TheWaitingSideWatchesFromTheSideline) {
  NetworkGame game(true);
  const auto fromTheSide = [&] { return game.Place(game.window.CameraFrame) == Vector{100, 20, 0}; };
  int drawn = 0;
  game.machine.OnDraw = [&](Canvas &) {
    ++drawn;
    EXPECT_TRUE(fromTheSide());
  };
  game.Receive(Shot("Flick", 40));
  game.Frames(3);
  EXPECT_GT(drawn, 60);
  game.machine.OnDraw = nullptr;
  // A bonus has a close-up.
  game.PutPiece(0, -79, 3);
  game.Receive(Shot("Flick", 0, -79));
  game.Frames(1);
  EXPECT_FALSE(fromTheSide());
  game.Frames(1);
  EXPECT_TRUE(fromTheSide());
}

TEST(MessagePumpTest, BothSidesShowTheSameRound) {
  for (const bool joins : {false, true}) {
    SCOPED_TRACE(joins ? "joiner" : "host");
    NetworkGame game(joins);
    game.window.Round = 0;
    std::vector<std::string> rounds; // as shown at the end of each possession, the host's first
    std::string letter;
    game.OnPump = [&] {
      if (game.Letter() != letter) {
        letter = game.Letter();
        if (rounds.size() == 4) throw ProgramEnd{};
        rounds.emplace_back();
        // Either side's shot falls off the table.
        if (letter == "A") game.machine.PressMouse(1);
        if (letter == "C") game.ReceiveIn(200, Shot("Flick", 120));
      }
      rounds.back() = game.window.Label1.Caption;
    };
    EXPECT_THROW(game.window.PlayRounds(), ProgramEnd);
    EXPECT_EQ(rounds,
              (std::vector<std::string>{"Round: 1 of 5", "Round: 1 of 5", "Round: 2 of 5", "Round: 2 of 5"}));
  }
}

TEST(MessagePumpTest, TheShootersCardRulesTheWaitersScreen) {
  struct Row {
    const char *name;
    std::int32_t result, go; ///< times of "RESULT" and "Continue", ms after the start of the flight
  };
  for (const Row &row :
       {Row{"in time", 3000, 6000}, Row{"both at once", 100, 101}, Row{"after the turnover", 7000, 10000}}) {
    SCOPED_TRACE(row.name);
    NetworkGame game(true);
    game.Receive(Shot("Flick", 120));
    game.ReceiveIn(row.result, {std::string("RESULT"), std::int32_t{4}});
    game.ReceiveIn(row.go, {std::string("Continue")});
    bool sendersMark = false;
    game.machine.OnRepaint = [&, count = game.machine.OnRepaint] {
      count();
      sendersMark = game.window.Label3.Visible;
    };
    std::int32_t turnover = 0, cardDown = 0;
    for (int frame = 0; frame < 400 && (!cardDown || !turnover); ++frame) {
      game.Frames(1);
      if (game.program.MyTurn && !turnover) turnover = game.machine.Now();
      if (!game.Cards.empty() && !game.window.AnyPictures()) cardDown = game.machine.Now();
    }
    EXPECT_EQ(game.Cards, std::vector<std::int16_t>{4});
    EXPECT_EQ(game.window.Player, 1);
    EXPECT_GE(cardDown, row.go);
    EXPECT_TRUE(sendersMark) << "the flick's side is marked";
    EXPECT_EQ(game.SoundsSince(), "play swoosh.daw, play yeah2.daw");
    EXPECT_FALSE(game.window.Busy);
  }
}

TEST(MessagePumpTest, EveryResultOfTheOtherSideHasItsSounds) {
  const std::string sounds[] = {"play boo.daw",   "play yeah2.daw", "play wis2.daw, play boo.daw",
                                "play yeah2.daw", "play boo.daw",   "play wis1.daw, play yeah.daw",
                                "play yeah2.daw"};
  for (std::int32_t code = 1; code <= 7; ++code) {
    SCOPED_TRACE(code);
    NetworkGame game(true);
    game.Receive({std::string("RESULT"), code});
    game.ReceiveIn(500, {std::string("Continue")});
    game.machine.Focus = nullptr;
    game.Frames(1);
    EXPECT_EQ(game.machine.Focus, &game.window.RMCanvas1);
    EXPECT_EQ(game.SoundsSince(), sounds[code - 1]);
    EXPECT_EQ(game.Cards, std::vector<std::int16_t>{static_cast<std::int16_t>(code)});
    EXPECT_FALSE(game.window.AnyPictures());
  }
}

TEST(MessagePumpTest, ACardThatComesLateFiresNoShot) {
  struct Row {
    const char *name;
    std::int16_t button;
    std::int32_t release; ///< ms after the press; the card is shown from 200 to 1200
    bool held = false;    ///< still held long after play continues
  };
  for (const Row &row : {Row{"let go under the card", 1, 600}, Row{"let go after it", 1, 1600},
                         Row{"let go much later", 1, 60000, true}, Row{"an orbit", 2, 600}}) {
    SCOPED_TRACE(row.name);
    NetworkGame game(true);
    game.Receive(Shot("Flick", 120));
    while (!game.program.MyTurn) game.Frames(1); // before the card of the fall
    game.play->Sent.clear();
    game.ReceiveIn(200, {std::string("RESULT"), std::int32_t{4}});
    game.ReceiveIn(1200, {std::string("Continue")});
    game.machine.PressMouse(row.button);
    game.machine.After(row.release, [&] { game.machine.ReleaseMouse(row.button); });
    game.Frames(4);
    EXPECT_EQ(game.window.MouseMode, row.button);
    game.Frames(100);
    EXPECT_EQ(game.Cards, std::vector<std::int16_t>{4});
    EXPECT_TRUE(game.play->Sent.empty());
    EXPECT_EQ(game.window.MouseMode, 0);
    EXPECT_EQ(game.window.ProgressBar1.Value, 0.0f);
    EXPECT_EQ(game.window.Shots, 3);
    if (row.held) game.machine.ReleaseMouse(row.button);
    game.Shoot(3);
    EXPECT_EQ(game.window.Shots, 2) << "play continues";
    EXPECT_EQ(game.play->Sent, std::vector<std::string>{"Flick"});
  }
}

TEST(MessagePumpTest, AnInvalidMessageHasNoEffect) {
  constexpr float NotANumber = std::numeric_limits<float>::quiet_NaN();
  const auto changed = [](std::size_t index, Field value) {
    auto fields = Shot("Flick", 40);
    fields[index] = std::move(value);
    return fields;
  };
  auto missing = Shot("Flick", 40);
  missing.pop_back();
  auto surplus = Shot("Flick", 40);
  surplus.emplace_back(1.0f);
  const std::pair<const char *, std::vector<Field>> rows[] = {
      {"no tag", {}},
      {"a number for a tag", {std::int32_t{7}}},
      {"an unknown tag", {std::string("flick"), 1.0f}},
      {"a field of another type", changed(1, std::int32_t{3})},
      {"not a number", changed(3, NotANumber)},
      {"infinite", changed(4, std::numeric_limits<float>::infinity())},
      {"too strong", changed(4, 120.5f)},
      {"negative", changed(4, -1.0f)},
      {"far away", changed(1, 301.0f)},
      {"a direction too long", changed(7, 1.0012f)},
      {"an up vector that leans", changed(10, 0.0012f)},
      {"an unknown side", changed(11, std::int32_t{3})},
      {"a missing field", missing},
      {"a surplus field", surplus},
      {"a kick outside the point-after", Shot("Goal", 96)},
      {"a result of 0", {std::string("RESULT"), std::int32_t{0}}},
      {"a result of 8", {std::string("RESULT"), std::int32_t{8}}},
      {"a negative score", {std::string("Score"), std::int32_t{-1}, std::int32_t{0}, std::int32_t{1}}},
      {"a score beyond the rounds begun",
       {std::string("Score"), std::int32_t{11}, std::int32_t{0}, std::int32_t{1}}},
      {"the same of this side's score",
       {std::string("Score"), std::int32_t{0}, std::int32_t{11}, std::int32_t{1}}},
      {"a score of a round before all",
       {std::string("Score"), std::int32_t{6}, std::int32_t{0}, std::int32_t{-1}}},
      {"a score of a round beyond all",
       {std::string("Score"), std::int32_t{6}, std::int32_t{0}, std::int32_t{100}}},
      {"half a score", {std::string("Score"), std::int32_t{6}}},
      {"a version without a number", {std::string("Version"), std::string("SW")}},
      {"a long version", {std::string("Version"), std::string(9, 'x'), std::int32_t{1}}},
      {"a surplus version", {std::string("Version"), std::string("SW"), std::int32_t{1}, std::int32_t{1}}},
      {"a surplus result", {std::string("RESULT"), std::int32_t{5}, std::int32_t{1}}},
      {"a surplus chat line", {std::string("MESSAGE"), std::string("hi"), std::int32_t{1}}},
      {"a surplus END", {std::string("END"), std::int32_t{1}}},
      {"a stray Continue", {std::string("Continue")}},
      {"OVER", {std::string("OVER")}},
  };
  const std::set<std::string> ignored = {"no tag", "a number for a tag", "an unknown tag", "a stray Continue",
                                         "OVER"}; // without being counted as dropped
  for (const auto &[name, fields] : rows) {
    SCOPED_TRACE(name);
    NetworkGame game(true);
    game.Receive(fields);
    game.Frames(2);
    EXPECT_EQ(game.Place(game.window.PieceFrame), (Vector{0, 0, 85}));
    EXPECT_EQ(game.window.Shots, 3);
    EXPECT_EQ(game.window.Player, 2);
    EXPECT_EQ(game.window.Force, 0.0f);
    EXPECT_EQ(game.window.HomeScore + game.window.AwayScore, 0);
    EXPECT_EQ(game.window.Label5.Caption, "");
    EXPECT_EQ(game.window.Text1.Text, "");
    EXPECT_TRUE(game.Cards.empty());
    EXPECT_EQ(game.SoundsSince(), "");
    EXPECT_TRUE(game.play->Incoming.empty());
    EXPECT_EQ(game.window.DroppedMessages, ignored.contains(name) ? 0 : 1);
  }
}

TEST(MessagePumpTest, ScoresAreMirroredAndOnlyRise) {
  NetworkGame game(false);
  game.window.HomeScore = 6;
  game.window.AwayScore = 3;
  game.Receive({std::string("Score"), std::int32_t{7}, std::int32_t{4}, std::int32_t{1}});
  game.Frames(1);
  EXPECT_EQ(game.window.HomeScore, 6);
  EXPECT_EQ(game.window.AwayScore, 7);
  EXPECT_EQ(game.window.lblPlayer2.Caption, "Away Team Score: 7");
  game.Receive({std::string("Score"), std::int32_t{6}, std::int32_t{0}, std::int32_t{1}});
  game.Frames(1);
  EXPECT_EQ(game.window.AwayScore, 7);
}

TEST(MessagePumpTest, EitherSideLearnsInItsOwnWayThatTheOtherIsOver) {
  struct Row {
    const char *name;
    bool joiner;
    std::vector<Field> fields;
    bool over;
  };
  const auto score = [](std::int32_t round) {
    return std::vector<Field>{std::string("Score"), std::int32_t{0}, std::int32_t{0}, round};
  };
  for (const Row &row : {Row{"the joiner by a score of the last round", true, score(5), true},
                         Row{"not by one of the round before", true, score(4), false},
                         Row{"nor by what the host goes by", true, {std::string("OVER")}, false},
                         Row{"the host by OVER", false, {std::string("OVER")}, true},
                         Row{"not by a score", false, score(5), false}}) {
    SCOPED_TRACE(row.name);
    NetworkGame game(row.joiner);
    game.Receive(row.fields);
    game.Frames(1);
    EXPECT_EQ(game.window.OtherSideOver != False, row.over);
  }
}

TEST(MessagePumpTest, ABrokenLineAndItsReturnAreTold) {
  NetworkGame game(true);
  game.Receive({std::string("RESULT"), std::int32_t{5}}); // during a card too
  game.ReceiveIn(12000, {std::string("Continue")});
  std::vector<std::string> titles;
  std::set<std::string> stalled, going;
  game.machine.After(1000, [&] { game.play->LineDown = true; });
  game.machine.After(3000, [&] { game.play->LineDown = false; });
  for (const std::int32_t moment : {900, 1100, 2900, 3100, 6900, 7100}) {
    game.machine.After(moment, [&] {
      titles.push_back(game.window.Caption);
      (game.play->LineDown ? stalled : going).insert(game.window.lblHint.Caption);
    });
  }
  game.Frames(1);
  const std::string waiting = "Snapwedge V1.01 - waiting for the other computer ...";
  const std::string back = "Snapwedge V1.01 - the other computer is back";
  EXPECT_EQ(titles,
            (std::vector<std::string>{"Snapwedge V1.01", waiting, waiting, back, back, "Snapwedge V1.01"}));
  const std::string hint = "Waiting for the other computer. The match goes on once it answers.";
  EXPECT_EQ(stalled, std::set<std::string>{hint});
  EXPECT_FALSE(going.contains(hint));
  game.window.Reset(); // this side's possession has begun
  game.play->LineDown = true;
  game.Frames(2);
  EXPECT_NE(game.window.lblHint.Caption, hint) << "the side on turn can play on";
}

TEST(MessagePumpTest, TheOtherSidesLeavingEndsTheProgramWithABox) {
  const auto lost = std::make_shared<session::SessionMessage>(DirectPlayMessage::Kind::ConnectionLost);
  for (const auto &news : {lost, Message({std::string("END")})}) {
    for (const bool underACard : {false, true}) {
      SCOPED_TRACE(underACard);
      NetworkGame game(true);
      if (underACard) game.Receive({std::string("RESULT"), std::int32_t{5}});
      game.play->LineDown = true;
      game.play->Incoming.push_back(std::make_shared<session::SessionMessage>(*news));
      EXPECT_THROW(game.Frames(3), ProgramEnd);
      EXPECT_EQ(game.window.Caption, "Snapwedge V1.01") << "the title waits for nobody";
      EXPECT_EQ(game.window.lblHint.Caption, "The other player has left. OK ends the game.");
      ASSERT_EQ(game.machine.Boxes.size(), 1U);
      EXPECT_EQ(game.machine.Boxes[0].Text, "Away Team Disconnected!");
      EXPECT_EQ(game.machine.Boxes[0].Title, "Game Over:");
      EXPECT_TRUE(game.machine.CursorShown);
      EXPECT_TRUE(game.SoundsSince().ends_with("play wis3.daw"));
    }
  }
}

TEST(MessagePumpTest, AShotStartsAfterThePreviousVerdict) {
  struct Row {
    const char *name;
    std::vector<Field> first;
    std::int16_t shots;
  };
  for (const Row &row : {Row{"in the pause after a fall", Shot("Flick", 120), 3},
                         Row{"in the pause after a penalty", Shot("Flick", 0, -87), 3}}) {
    SCOPED_TRACE(row.name);
    NetworkGame game(true);
    game.PutPiece(0, -87, row.shots, 1);
    game.window.PieceSurface = "Table";
    game.Receive(row.first);
    for (int i = 0; i < 3; ++i) game.Receive(Shot("Flick", 0, -87));
    for (int frame = 0; frame < 200 && !game.program.MyTurn; ++frame) game.Frames(1);
    EXPECT_TRUE(game.program.MyTurn) << "one possession, one turnover";
    EXPECT_EQ(game.window.Shots, 3);
    EXPECT_EQ(game.window.AwayScore, 0);
    EXPECT_EQ(game.window.DroppedMessages, 3);
  }
  NetworkGame over(false);
  over.window.LastWait = True; // the host's possessions are over, and it waits for the joiner's last one
  over.Receive(Shot("Flick", 120));
  over.Frames(3);
  EXPECT_EQ(over.window.Shots, 3);
  EXPECT_EQ(over.window.DroppedMessages, 1);
}

TEST(MessagePumpTest, AFlickThatComesInThePauseOfABonusIsPlayedBehindIt) {
  constexpr float BonusZ = -79.2f;
  NetworkGame game(true);
  game.PutPiece(0, BonusZ, 3);
  game.window.PieceSurface = "TableBon";
  for (const float force : {0.0f, 0.0f, 8.0f}) game.Receive(Shot("Flick", force, BonusZ));
  game.ReceiveIn(500, {std::string("RESULT"), std::int32_t{5}});
  game.ReceiveIn(600, {std::string("Continue")});
  game.Frames(1);
  EXPECT_EQ(game.window.Shots, 2);
  EXPECT_EQ(game.window.AwayScore, 3);
  EXPECT_EQ(game.Cards, std::vector<std::int16_t>{5});
  game.Frames(1);
  EXPECT_EQ(game.window.Shots, 1);
  game.Frames(1);
  EXPECT_NEAR(game.Place(game.window.PieceFrame).z, 85.0f, 0.01f) << "the third flick and the turnover";
  EXPECT_TRUE(game.program.MyTurn);
  EXPECT_EQ(game.window.DroppedMessages, 0);
}

TEST(MessagePumpTest, InThisSidesTurnTheOtherHasNoShotAndNoResult) {
  const std::pair<const char *, std::vector<Field>> rows[] = {
      {"a flick", Shot("Flick", 60)},
      {"a kick", Shot("Goal", 60)},
      {"a result", {std::string("RESULT"), std::int32_t{4}}},
  };
  for (const auto &[name, fields] : rows) {
    SCOPED_TRACE(name);
    NetworkGame game(false);
    game.machine.PressMouse(1);
    game.Frames(3);
    game.Receive(fields);
    game.Frames(3);
    EXPECT_EQ(game.window.DroppedMessages, 1);
    EXPECT_EQ(game.window.MouseMode, 1) << "the meter continues to charge";
    EXPECT_EQ(game.window.ProgressBar1.Value, 40.0f);
    EXPECT_EQ(game.window.Shots, 3);
    EXPECT_EQ(game.Place(game.window.PieceFrame), (Vector{0, 0, 85}));
    EXPECT_TRUE(game.Cards.empty());
  }
}

TEST(MessagePumpTest, ALateResultIsShownOnce) {
  NetworkGame game(true);
  game.Receive(Shot("Flick", 120));
  while (!game.program.MyTurn) game.Frames(1);
  for (int i = 0; i < 2; ++i) {
    game.Receive({std::string("RESULT"), std::int32_t{4}});
    game.Receive({std::string("Continue")});
  }
  game.Frames(4);
  EXPECT_EQ(game.Cards, std::vector<std::int16_t>{4});
  EXPECT_EQ(game.window.DroppedMessages, 1);
}

TEST(MessagePumpTest, EscLeavesACardWhoseContinueNeverComes) {
  NetworkGame game(true);
  game.Receive({std::string("RESULT"), std::int32_t{5}});
  game.ReceiveIn(1000, {std::string("Continue"), std::int32_t{1}});
  game.machine.After(100000, [&] { game.machine.PressKey(KeyCodes::Escape); });
  EXPECT_THROW(game.Frames(1), ProgramEnd);
  EXPECT_GE(game.machine.Now(), 100000) << "a \"Continue\" with a surplus field is ignored";
  EXPECT_EQ(game.play->Sent, std::vector<std::string>{"END"});
}

TEST(MessagePumpTest, TheShooterSendsItsShotItsResultAndItsGoAhead) {
  NetworkGame game(false);
  game.program.MessagesOn = False; // only affects a match on one computer
  game.Flick(120);
  EXPECT_EQ(game.play->Sent, (std::vector<std::string>{"Flick", "RESULT", "Continue"}));
  EXPECT_EQ(game.Cards, std::vector<std::int16_t>{4});
  game.machine.Focus = &game.window.RMCanvas1;
  game.machine.PressKey(KeyCodes::Escape);
  EXPECT_THROW(game.Frames(1), ProgramEnd);
  EXPECT_EQ(game.play->Sent.back(), "END");
}

TEST(MessagePumpTest, TheScoreOfAGoodKickIsSentAfterItsCard) {
  NetworkGame game(false);
  game.window.GoalSpeed = 0; // the posts stay in the middle
  game.PutPiece(0, -87, 1);
  game.window.CheckRay();
  game.machine.OnDraw = [&](Canvas &) {
    if (!game.window.KickMode || game.window.NoShot) return;
    game.window.Force = 96;
    game.window.RMCanvas1_MouseUp(1, 0, 0.0f, 0.0f);
  };
  game.Flick(0);
  EXPECT_EQ(game.play->Sent,
            (std::vector<std::string>{"Flick", "RESULT", "Continue", "Goal", "RESULT", "Continue", "Score"}));
  EXPECT_EQ(game.window.HomeScore, 7);
}

TEST(MessagePumpTest, TheKickIsJudgedByTheKickerAlone) {
  NetworkGame game(true);
  game.window.GoalSpeed = 0; // the kick is good here too
  // The replay of the flick, then of the kick. Only "Score" adds the point.
  game.Receive(Shot("Flick", 0, -87));
  game.window.PieceSurface = "Table";
  game.window.Shots = 1;
  game.ReceiveIn(10, {std::string("RESULT"), std::int32_t{3}});
  game.ReceiveIn(20, {std::string("Continue")});
  // All unexpected: a kick without force, a flick during the wait, a kick during a kick.
  game.ReceiveIn(2980, Shot("Goal", 0));
  game.ReceiveIn(2990, Shot("Flick", 0, -87));
  game.ReceiveIn(3000, Shot("Goal", 96));
  game.ReceiveIn(3001, Shot("Goal", 96));
  game.ReceiveIn(4600, {std::string("RESULT"), std::int32_t{1}});
  game.ReceiveIn(7600, {std::string("Continue")});
  game.ReceiveIn(7700, {std::string("Score"), std::int32_t{7}, std::int32_t{0}, std::int32_t{1}});
  game.PutPiece(0, -87, 1);
  for (int frame = 0; frame < 500 && !game.program.MyTurn; ++frame) game.Frames(1);
  EXPECT_EQ(game.window.AwayScore, 6);
  game.Frames(10);
  EXPECT_EQ(game.Cards, (std::vector<std::int16_t>{3, 1}));
  EXPECT_EQ(game.window.AwayScore, 7);
  EXPECT_EQ(game.window.HomeScore, 0);
  EXPECT_EQ(game.window.DroppedMessages, 3);
}

TEST(MessagePumpTest, ToThePlayerAMatchEndsWithItsCardWhateverTheOtherSideAcknowledges) {
  NetworkGame game(false);
  Window launch;
  game.machine.Show(launch);
  game.program.LaunchWindow = &launch;
  game.play->Takes = false;
  std::set<std::string> sounding{"crowd.daw", "crowd2.daw"}; // started by the set-up
  game.machine.After(1000, [&] { game.machine.ClickOn(*game.machine.FindWindow("frmTie")); });
  game.machine.After(1100, [&] {
    EXPECT_TRUE(game.machine.Shown.empty());
    for (const std::string &sound : game.machine.Sounds) {
      const std::string file = sound.substr(sound.find(' ') + 1);
      if (sound.starts_with("stop")) {
        sounding.erase(file);
      } else {
        sounding.insert(file);
      }
    }
    EXPECT_FALSE(game.machine.Sounds.empty());
    EXPECT_TRUE(sounding.empty());
    game.SoundsSince();
  });
  game.machine.After(300000, [] { throw std::runtime_error("a program without a window goes on"); });
  EXPECT_THROW(game.window.EndMatch(), ProgramEnd);
  EXPECT_GE(game.machine.Now(), 40000) << "a line that is down may come back";
  EXPECT_EQ(game.SoundsSince(), "");
}

TEST(MessagePumpTest, AKickOfTheOtherSideComesDownHoweverWeak) {
  // Gravity rounds to zero for the weakest, and is tiny for the next.
  for (const float force : {1e-44f, 1e-41f, 1e-30f, 0.001f, 0.5f, 8.0f}) {
    SCOPED_TRACE(force);
    NetworkGame game(true);
    game.PutPiece(0, -87, 1, 1);
    game.window.PieceSurface = "Table";
    game.Receive(Shot("Flick", 0, -87));
    game.ReceiveIn(2000, Shot("Goal", force));
    game.machine.After(20000, [] { throw std::runtime_error("the kick hangs in the air"); });
    EXPECT_NO_THROW(game.Frames(1));
    EXPECT_TRUE(game.program.MyTurn);
    EXPECT_EQ(game.window.AwayScore, 6);
    EXPECT_EQ(game.window.DroppedMessages, 0);
  }
}

} // namespace

// The line under the view: what the player can do, and after a shot what happened and why. Played with the
// mouse, read from the window.

#include "match/results.h"
#include "tests/network_kit.h"

#include <gtest/gtest.h>

#include <map>

namespace {

const std::string HomeBegins =
    "Home Team's turn: 104 yards to the far edge. Hold the left button, let go to shoot.";
const std::string AwayBegins =
    "Away Team's turn: 104 yards to the far edge. Hold the left button, let go to shoot.";

/// A game that records the line at each card and during flights.
struct Told {
  explicit Told(const std::string &mode = "Human") : game(mode) {
    game.machine.OnRepaint = [this] {
      for (std::int16_t code = Results::First; code <= Results::Last; ++code) {
        if (game.window.Card(code).Visible) atCard.emplace_back(code, game.window.lblHint.Caption);
      }
    };
    game.machine.OnDraw = [this](Canvas &) {
      if (game.window.NoShot && (inFlight.empty() || inFlight.back() != game.window.lblHint.Caption))
        inFlight.push_back(game.window.lblHint.Caption);
    };
    game.SetUp();
  }

  void Turn(float angle) { game.window.AimFrame->AddRotation(D3DRMCOMBINE_BEFORE, 0, 1, 0, angle); }

  Game game;
  std::vector<std::pair<std::int16_t, std::string>> atCard;
  std::vector<std::string> inFlight;
};

TEST(HintsTest, EveryEndOfAFlickHasItsReason) {
  const std::string noPower = "No power: let go before the meter rose. ";
  struct Row {
    const char *name;
    void (*play)(Told &);
    std::int16_t card; ///< of the last shot, 0 for none
    std::string atCard;
    std::string afterwards;
  };
  const Row rows[] = {
      {"nothing yet", [](Told &) {}, 0, "", HomeBegins},
      {"a full shot", [](Told &t) { t.game.Shoot(12); }, 0, "",
       "No corner is on the circle. 11 yards to the far edge: don't cross it before the third try."},
      {"well short of the circle", [](Told &t) { t.game.Shoot(11); }, 0, "",
       "26 yards to the far edge. Don't cross it yet: only the third try counts."},
      {"the third try is next",
       [](Told &t) {
         t.game.PutPiece(30, -70, 2);
         t.game.Shoot(3);
       },
       0, "", "Last try: 1.6 to 4.8 yards can hang a corner over the edge."},
      {"the third try is next, from where any power will do",
       [](Told &t) {
         t.game.PutPiece(30, -85, 2);
         t.Turn(3.14f);
         t.game.Shoot(1);
       },
       0, "", "Last try: up to 2.4 yards can hang a corner over the edge."},
      {"on the circle too late",
       [](Told &t) {
         t.game.PutPiece(0, -70, 2);
         t.game.Shoot(3);
       },
       0, "", "The circle pays on try one only. Last try: 1.6 to 4.8 yards can hang a corner over the edge."},
      {"no power", [](Told &t) { t.game.Shoot(0); }, 0, "", noPower + "Two tries are left."},
      {"no power twice",
       [](Told &t) {
         t.game.Shoot(0);
         t.game.Shoot(0);
       },
       0, "", noPower + "One try is left."},
      {"no power on the third try",
       [](Told &t) {
         t.game.PutPiece(0, 0, 1);
         t.game.Shoot(0);
       },
       Results::Short, noPower + "That was the third try.", AwayBegins},
      {"overcharge", [](Told &t) { t.game.Shoot(13); }, Results::Turnover,
       "Held past the top of the meter: the shot fires by itself, far too hard.", AwayBegins},
      {"off the far edge",
       [](Told &t) {
         t.game.PutPiece(0, -60, 3);
         t.game.Shoot(6);
       },
       Results::Turnover, "Too hard: it slid off the far edge.", AwayBegins},
      {"off the left side",
       [](Told &t) {
         t.game.PutPiece(70, 0, 3);
         t.Turn(-1.5f);
         t.game.Shoot(5);
       },
       Results::Turnover, "Aimed too far aside: it slid off the side.", AwayBegins},
      {"off the right side",
       [](Told &t) {
         t.game.PutPiece(-70, 0, 3);
         t.Turn(1.5f);
         t.game.Shoot(5);
       },
       Results::Turnover, "Aimed too far aside: it slid off the side.", AwayBegins},
      {"off the near edge",
       [](Told &t) {
         t.Turn(3.14f);
         t.game.Shoot(5);
       },
       Results::Turnover, "It slid off the near edge.", AwayBegins},
      {"over the edge on the first try",
       [](Told &t) {
         t.game.PutPiece(30, -60.5f, 3);
         t.game.Shoot(5);
       },
       Results::Penalty, "Over the edge on the first try: that counts on the third try only.", AwayBegins},
      {"over the edge on the second try",
       [](Told &t) {
         t.game.PutPiece(30, -60.5f, 2);
         t.game.Shoot(5);
       },
       Results::Penalty, "Over the edge on the second try: that counts on the third try only.", AwayBegins},
      {"the circle on the first try",
       [](Told &t) {
         t.game.PutPiece(0, -70, 3);
         t.game.Shoot(3);
       },
       Results::Bonus, "A corner on the circle on the first try: 3 points. Two tries are left.",
       "4.9 yards to the far edge. Don't cross it yet: only the third try counts."},
      {"short of the edge",
       [](Told &t) {
         t.game.PutPiece(30, 0, 1);
         t.game.Shoot(5);
       },
       Results::Short, "No corner hangs over the far edge: 35 yards short on the third try.", AwayBegins},
      {"over a side edge",
       [](Told &t) {
         t.game.PutPiece(86, 0, 3);
         t.game.Shoot(1);
       },
       0, "", "A corner over the side counts for nothing. 52 yards to the far edge."},
      {"over a side edge on the second try",
       [](Told &t) {
         t.game.PutPiece(86, 0, 2);
         t.game.Shoot(1);
       },
       0, "", "A corner over the side counts for nothing. Last try, 52 yards to the far edge."},
      {"over a side edge on the third try",
       [](Told &t) {
         t.game.PutPiece(86, 0, 1);
         t.game.Shoot(1);
       },
       Results::Short, "A corner over the side counts for nothing. That was the third try.", AwayBegins},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.name);
    Told told;
    row.play(told);
    if (row.card) {
      ASSERT_EQ(told.atCard.size(), 1U);
      EXPECT_EQ(told.atCard[0].first, row.card);
      EXPECT_EQ(told.atCard[0].second, row.atCard);
      if (row.card == Results::Turnover) {
        EXPECT_EQ(told.inFlight.back(), row.atCard) << "while it falls";
      }
    } else {
      EXPECT_TRUE(told.atCard.empty());
    }
    EXPECT_EQ(told.game.window.lblHint.Caption, row.afterwards);
  }
}

/// Plays a point-after; `act` runs in each frame, with its number.
void PlayPointAfter(Told &told, const std::function<void(int frame)> &act) {
  Game &game = told.game;
  int frame = 0;
  game.OnPump = [&] {
    if (game.window.KickMode && !game.window.NoShot) act(frame++);
  };
  game.ScoreTouchdown();
  game.OnPump = nullptr;
}

TEST(HintsTest, EveryEndOfAKickHasItsReason) {
  struct Row {
    const char *name;
    int frames; ///< for which the button is held
    float turn, postsX, postsStep;
    std::int16_t card;
    std::string flight, atCard;
  };
  const std::string flies = "The posts go on moving while it flies.";
  // A kick of 80 takes 91 steps to the posts.
  for (const Row &row :
       {Row{"good", 10, 0, -85, 1, Results::GoodKick, flies, "Between the posts and over the bar: 1 point."},
        Row{"weak", 5, 0, 0, 1, Results::MissedKick, flies, "Too weak: the kick came down before the posts."},
        Row{"low", 8, 0, 0, 1, Results::MissedKick, flies, "Too weak: the kick passed under the bar."},
        Row{"left of the posts", 10, 0.3f, 0, -1, Results::MissedKick, flies,
            "Wide to the left of the posts."},
        Row{"the posts went right", 10, 0, 0, -1, Results::MissedKick, flies,
            "Wide to the left of the posts."},
        Row{"the posts went left", 10, 0, 0, 1, Results::MissedKick, flies,
            "Wide to the right of the posts."},
        Row{"held too long", 13, 0, 0, 1, Results::MissedKick,
            "Held past the top of the meter: the shot fires by itself, far too weak.",
            "Held past the top of the meter: the kick comes off far too weak."}}) {
    SCOPED_TRACE(row.name);
    Told told;
    bool pressed = false, released = false;
    std::string aiming;
    PlayPointAfter(told, [&](int frame) {
      if (frame == 0) {
        aiming = told.game.window.lblHint.Caption;
        told.inFlight.clear();
      }
      if (frame < 2) return;
      if (!pressed) {
        pressed = true;
        told.game.window.GoalSpeed = row.postsStep;
        told.Turn(row.turn);
        told.game.machine.PressMouse(1);
      } else if (!released && told.game.window.Force >= 8.0f * static_cast<float>(row.frames)) {
        released = true;
        told.game.window.GoalFrame->SetPosition(told.game.window.RMCanvas1.SceneFrame, row.postsX, 20, -95);
        told.game.machine.ReleaseMouse(1);
      }
    });
    EXPECT_EQ(aiming, "Kick for 1 point: over the bar, aimed ahead of the moving posts.");
    ASSERT_EQ(told.atCard.size(), 2U);
    EXPECT_EQ(told.atCard[0],
              (std::pair<std::int16_t, std::string>(
                  Results::Touchdown,
                  "A corner over the edge on the third try: 6 points, and a kick for 1 more.")));
    EXPECT_EQ(told.atCard[1], std::pair(row.card, row.atCard));
    ASSERT_FALSE(told.inFlight.empty());
    EXPECT_EQ(told.inFlight.front(), row.flight);
    EXPECT_EQ(told.game.window.lblHint.Caption, AwayBegins);
  }
}

TEST(HintsTest, AKickWithoutPowerSaysSoAndCanBeTriedAgain) {
  Told told;
  std::string after;
  PlayPointAfter(told, [&](int frame) {
    auto &machine = told.game.machine;
    if (frame == 2) {
      machine.PressMouse(1);
      machine.ReleaseMouse(1);
    }
    if (frame == 4) {
      after = told.game.window.lblHint.Caption;
      machine.PressMouse(1);
    }
    if (frame == 20) machine.ReleaseMouse(1);
  });
  EXPECT_EQ(after, "No kick: let go before the meter rose. Hold the left button a little longer.");
}

TEST(HintsTest, ASharedMouseOrTheComputerShowsWhoseShotItIs) {
  Told told("Computer");
  Game &game = told.game;
  EXPECT_EQ(game.window.lblHint.Caption,
            "Your turn: 104 yards to the far edge. Hold the left button, let go to shoot.");
  game.Shoot(12);
  EXPECT_EQ(told.inFlight, (std::vector<std::string>{"Power for 93 yards."}));
  game.Shoot(13);
  EXPECT_EQ(game.window.lblHint.Caption, "The computer's turn.");
  told.inFlight.clear();
  while (!game.program.MyTurn) game.Frames(1);
  ASSERT_FALSE(told.inFlight.empty());
  EXPECT_EQ(told.inFlight[0], "The computer's first try.");
}

TEST(HintsTest, TheEndOfAMatchIsTold) {
  Told told;
  std::string atEnd;
  told.game.machine.Player = [&] {
    Window *page = told.game.machine.FindWindow("frmTie");
    if (!page) return;
    atEnd = told.game.window.lblHint.Caption;
    told.game.machine.ClickOn(*page);
  };
  EXPECT_THROW(told.game.window.EndMatch(), ProgramEnd);
  EXPECT_EQ(atEnd, "The match is over. A click on the front page ends the game.");
}

TEST(HintsTest, TheWaitingSideShowsOnlyWhatItReceived) {
  NetworkGame game(true);
  std::vector<std::string> seen;
  const auto look = [&] {
    if (seen.empty() || seen.back() != game.window.lblHint.Caption)
      seen.push_back(game.window.lblHint.Caption);
  };
  game.machine.OnDraw = [&](Canvas &) { look(); };
  game.machine.OnRepaint = look;
  const std::string waits = "The other player's turn. Press ~ to write a message, Enter to send it.";
  EXPECT_EQ(game.window.lblHint.Caption, waits);
  look();
  // A Touchdown, and a kick that misses in the replay but was good on the other computer.
  game.Receive(Shot("Flick", 8, -86.5f));
  game.window.Shots = 1;
  game.ReceiveIn(1000, {"RESULT", std::int32_t{Results::Touchdown}});
  game.ReceiveIn(2000, {"Continue"});
  game.ReceiveIn(5000, Shot("Goal", 80));
  game.ReceiveIn(7300, {"RESULT", std::int32_t{Results::GoodKick}});
  game.ReceiveIn(8300, {"Continue"});
  for (int frame = 0; frame < 20 && !game.program.MyTurn; ++frame) game.Frames(1);
  EXPECT_EQ(seen, (std::vector<std::string>{
                      waits, "The other player's third try.",
                      "The other player has a Touchdown: 6 points, and a kick for 1 more.",
                      "The other player's third try.", "The other player kicks for 1 point.",
                      "The other player kicks. Whether it is good is judged over there.",
                      "The other player's kick is good: 1 point.",
                      "The other player kicks. Whether it is good is judged over there.",
                      "Your turn: 104 yards to the far edge. Hold the left button, let go to shoot."}));
}

TEST(HintsTest, ACardThatComesLateGivesTheLineBack) {
  NetworkGame game(true);
  std::map<std::int16_t, std::string> atCard;
  game.machine.OnRepaint = [&] {
    for (std::int16_t code = Results::First; code <= Results::Last; ++code) {
      if (game.window.Card(code).Visible) atCard[code] = game.window.lblHint.Caption;
    }
  };
  game.window.Reset(); // this side's possession has begun
  const std::string before = game.window.lblHint.Caption;
  for (std::int32_t code = Results::First; code <= Results::Last; ++code) {
    game.window.ResultDue = True; // the result of the last replayed flick hasn't arrived
    game.Receive({"RESULT", code});
    game.ReceiveIn(100, {"Continue"});
    game.Frames(2);
    EXPECT_EQ(game.window.lblHint.Caption, before);
  }
  ASSERT_EQ(atCard.size(), 7U);
  for (const auto &[code, words] : atCard) EXPECT_TRUE(words.starts_with("The other player")) << code;
}

} // namespace

// The launch window: loading, options, and the windows that it opens. Driven by its buttons.

#include "front/run_program.h"
#include "net/frm_new_net.h"
#include "platform/headless/headless_machine.h"
#include "platform/headless/wire.h"
#include "platform/search_dialog.h"
#include "platform/session/session_direct_play.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

/// A program at its launch window, on its own computer.
struct Launch {
  Launch() : machine(SNAPWEDGE_GAME_DIR), program(machine), wire([this] { return machine.Now(); }, 1) {
    machine.MakeDirectPlay = [this] {
      return std::make_shared<session::SessionDirectPlay>(machine, wire.Plug("10.0.0.1"), ShowSearchDialog);
    };
    machine.NextArrival = [this] { return wire.NextArrival("10.0.0.1"); };
  }

  template <class Kind> Kind &At(const char *name) {
    auto *control = dynamic_cast<Kind *>(machine.Find("frmNewNet", name));
    if (!control) throw std::runtime_error(std::string("no control ") + name);
    return *control;
  }

  /// Runs the program. `script` runs when the window is open; the window is closed `closeAfter` ms later.
  void Run(const std::function<void()> &script, std::int32_t closeAfter = 5000) {
    machine.Player = [this, script, closeAfter] {
      if (begun_ || !machine.FindWindow("frmNewNet")) return;
      begun_ = true;
      script();
      machine.After(closeAfter, [this] {
        if (Window *window = machine.FindWindow("frmNewNet")) machine.CloseBox(*window);
      });
    };
    RunProgram(machine, program);
  }

  std::vector<std::string> Titles() const {
    std::vector<std::string> titles;
    for (const MessageBox &box : machine.Boxes) titles.push_back(box.Title);
    return titles;
  }

  HeadlessMachine machine;
  Program program;
  FaultyWire wire;

private:
  bool begun_ = false;
};

const std::string SoundTitle = "Error initializing DirectSound.";
const std::string NetworkTitle = "Error initializing DirectPlay.";

TEST(LaunchWindowTest, LoadingStartsSoundAndListsTheConnectionMethods) {
  Launch launch;
  launch.Run([&] {
    const auto &methods = launch.At<ListBox>("lstConnections");
    EXPECT_EQ(methods.List, (std::vector<std::string>{"This Computer", "Internet TCP/IP Connection"}));
    EXPECT_EQ(methods.ListIndex, 1);
    const std::string name = launch.At<TextBox>("txtName").Text;
    EXPECT_TRUE(name.starts_with("SNWG"));
    EXPECT_GE(name.size(), 5U);
    EXPECT_LE(name.size(), 8U);
    EXPECT_EQ(launch.machine.FindWindow("frmNewNet")->Caption, "Snapwedge V1.0 - the table-top flick game");
    EXPECT_TRUE(launch.At<CommandButton>("cmdConnect").Enabled);
    for (const char *button : {"cmdJoin", "cmdCreate", "Command4", "Command5"}) {
      EXPECT_FALSE(launch.At<CommandButton>(button).Enabled) << button;
    }
  });
  EXPECT_EQ(launch.machine.Sounds,
            (std::vector<std::string>{"loop crowd2.daw", "loop crowd.daw", "play yeah2.daw", "loop theme.daw",
                                      "play guit2.daw"}));
  EXPECT_TRUE(launch.machine.Boxes.empty());
}

TEST(LaunchWindowTest, EveryFailureOfTheLoadHasItsBoxInItsOrder) {
  struct Row {
    const char *name;
    void (*breakIt)(Launch &);
    std::vector<std::string> titles;
    bool silent, opens;
  };
  const Row rows[] = {
      {"no sound device", [](Launch &l) { l.machine.NoSoundDevice = true; }, {SoundTitle}, true, true},
      {"a broken first sound",
       [](Launch &l) { l.machine.BrokenSounds = {"crowd.daw"}; },
       {SoundTitle},
       true,
       true},
      {"a broken last sound",
       [](Launch &l) { l.machine.BrokenSounds = {"wis3.daw"}; },
       {SoundTitle},
       true,
       true},
      {"a sound that can't be played",
       [](Launch &l) { l.machine.BrokenPlays = {"guit2.daw"}; },
       {SoundTitle},
       true,
       true},
      {"a screen of 8 bits", [](Launch &l) { l.machine.Bpp = 8; }, {"Error:"}, false, false},
      {"neither sound nor colours",
       [](Launch &l) {
         l.machine.NoSoundDevice = true;
         l.machine.Bpp = 8;
       },
       {SoundTitle, "Error:"},
       true,
       false},
      {"colours that go while the box of the sound is up",
       [](Launch &l) {
         l.machine.BrokenSounds = {"boo.daw"};
         l.machine.OnBox = [&l] { l.machine.Bpp = 8; };
       },
       {SoundTitle, "Error:"},
       true,
       false},
      {"no network", [](Launch &l) { l.machine.MakeDirectPlay = nullptr; }, {NetworkTitle}, false, true},
      {"neither sound nor network",
       [](Launch &l) {
         l.machine.NoSoundDevice = true;
         l.machine.MakeDirectPlay = nullptr;
       },
       {SoundTitle, NetworkTitle},
       true,
       true},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.name);
    Launch launch;
    row.breakIt(launch);
    bool opened = false;
    launch.Run([&] { opened = true; });
    EXPECT_EQ(launch.Titles(), row.titles);
    EXPECT_EQ(launch.program.SoundOn == False, row.silent);
    EXPECT_EQ(opened, row.opens);
  }
}

TEST(LaunchWindowTest, AnErrorThatEndsTheProgramClosesItsSessionFirst) {
  Launch launch;
  const auto fail = [&] {
    EXPECT_TRUE(launch.program.DP);
    throw std::runtime_error("a model can't be read");
  };
  EXPECT_THROW(launch.Run(fail), std::runtime_error);
  EXPECT_FALSE(launch.program.DP) << "the other player waits until the box is read";
}

TEST(LaunchWindowTest, TheWordsOfTheFailures) {
  Launch launch;
  launch.machine.BrokenSounds = {"boo.daw"};
  launch.machine.MakeDirectPlay = nullptr;
  launch.Run([] {});
  ASSERT_EQ(launch.machine.Boxes.size(), 2U);
  EXPECT_EQ(launch.machine.Boxes[0].Text, "Snapwedge will run without sound.  Please make sure that you have "
                                          "the latest DirectX7 Drivers installed.");
  EXPECT_EQ(launch.machine.Boxes[1].Text, "Error Initializing DirectPlay.  Please make sure that you have "
                                          "the latest DirectX7 Drivers installed.");
  Launch poor;
  poor.machine.Bpp = 8;
  poor.Run([] {});
  ASSERT_EQ(poor.machine.Boxes.size(), 1U);
  EXPECT_EQ(poor.machine.Boxes[0].Text,
            "Snapwedge was designed to run in High Color (16 bit).  Please check your display settings.");
  EXPECT_TRUE(poor.machine.Boxes[0].Critical);
}

TEST(LaunchWindowTest, RoundsAreAWholeNumberFromOneTo99) {
  const std::pair<const char *, int> rows[] = {
      {"", 0},    {"0", 0},     {"1", 1},  {"99", 99}, {"100", 0}, {"-3", 0},  {"5.5", 0},
      {" 7 ", 7}, {"seven", 0}, {"7x", 0}, {"+7", 0},  {"007", 7}, {"1e1", 0}, {"99999999999999999999", 0}};
  for (const auto &[text, rounds] : rows) {
    for (const char *button : {"Command1", "Command2"}) {
      SCOPED_TRACE(std::string(button) + " \"" + text + '"');
      Launch launch;
      launch.Run([&, entry = text, rounds = rounds] {
        launch.At<TextBox>("Text1").Text = entry;
        launch.At<TextBox>("Text1").SelStart = 1;
        launch.machine.Press(launch.At<CommandButton>(button));
        launch.machine.After(1000, [&launch, rounds] {
          EXPECT_EQ(launch.machine.FindWindow("frmNewNet") == nullptr, rounds != 0);
          const auto *box = dynamic_cast<TextBox *>(launch.machine.Find("frmNewNet", "Text1"));
          if (box) {
            EXPECT_EQ(launch.machine.Focus, box);
            EXPECT_EQ(box->SelStart, 0);
            EXPECT_EQ(box->SelLength, static_cast<int>(box->Text.size()));
          }
          launch.machine.PressKey(KeyCodes::Escape);
        });
      });
      if (rounds) {
        EXPECT_EQ(launch.program.Rounds, rounds);
        EXPECT_EQ(launch.program.GameMode, std::string(button) == "Command1" ? "Computer" : "Human");
        EXPECT_TRUE(launch.machine.Boxes.empty());
      } else {
        ASSERT_EQ(launch.machine.Boxes.size(), 1U);
        EXPECT_EQ(launch.machine.Boxes[0].Title, "Rounds to Play:");
        EXPECT_EQ(launch.machine.Boxes[0].Text, "Please enter a whole number from 1 to 99.");
        EXPECT_EQ(launch.program.GameMode, "");
      }
    }
  }
}

TEST(LaunchWindowTest, OptionsReachTheMatch) {
  Launch launch;
  launch.Run([&] {
    launch.machine.Tick(launch.At<CheckBox>("Check1"));
    launch.machine.Tick(launch.At<CheckBox>("Check2"));
    auto &skill = launch.At<ComboBox>("Combo1");
    EXPECT_EQ(skill.List, (std::vector<std::string>{"Easy", "Medium", "Hard"}));
    EXPECT_EQ(skill.ListIndex, 1);
    skill.ListIndex = 2;
    skill.Click();
  });
  EXPECT_EQ(launch.program.StadiumOn, False);
  EXPECT_EQ(launch.program.MessagesOn, False);
  EXPECT_EQ(launch.program.Skill.Name, "Hard");
}

TEST(LaunchWindowTest, TheInformationWindowsOpenOverItAndCloseAgain) {
  struct Row {
    const char *button, *window, *caption;
    int width, height;
  };
  for (const Row &row : {Row{"Command3", "frmControls", "Controls", 497, 399},
                         Row{"Command6", "frmBackground", "Background", 493, 398},
                         Row{"Command7", "frmText", "ReadMe", 570, 413}}) {
    SCOPED_TRACE(row.window);
    Launch launch;
    int seen = 0;
    launch.Run([&] {
      for (int time = 0; time < 2; ++time) {
        launch.machine.After(time * 1000,
                             [&] { launch.machine.Press(launch.At<CommandButton>(row.button)); });
        launch.machine.After(time * 1000 + 300, [&] {
          Window *window = launch.machine.FindWindow(row.window);
          ASSERT_TRUE(window);
          ++seen;
          EXPECT_EQ(window->Caption, row.caption);
          EXPECT_EQ(window->Width, row.width);
          EXPECT_EQ(window->Height, row.height);
          // The launch window is disabled below it.
          launch.machine.Press(launch.At<CommandButton>("Command1"));
          // The second click of a double-click on the button.
          launch.machine.ClickOn(*window);
        });
        launch.machine.After(time * 1000 + 500, [&, time] {
          Window *window = launch.machine.FindWindow(row.window);
          ASSERT_TRUE(window) << "a double-click on the button doesn't close it again";
          if (auto *button = dynamic_cast<CommandButton *>(launch.machine.Find(row.window, "Command1")))
            launch.machine.Press(*button);
          else if (time == 0)
            launch.machine.ClickOn(*window);
          else
            launch.machine.PressKey(KeyCodes::Escape);
        });
        launch.machine.After(time * 1000 + 700, [&] { EXPECT_FALSE(launch.machine.FindWindow(row.window)); });
      }
    });
    EXPECT_EQ(seen, 2);
    EXPECT_EQ(launch.program.GameMode, "");
  }
}

TEST(LaunchWindowTest, TheFocusStartsOnAStartButtonAndRoundsTakeTwoDigits) {
  Launch launch;
  launch.Run([&] {
    EXPECT_EQ(launch.machine.Focus, &launch.At<CommandButton>("Command1"));
    EXPECT_EQ(launch.At<TextBox>("Text1").MaxLength, 2);
  });
}

TEST(LaunchWindowTest, TheEndOfAMatchShowsItsCardAndEndsTheProgram) {
  Launch launch;
  launch.machine.ShowMs = 300; // a slow computer: the click was meant for what the player still saw
  std::string card, score;
  std::int32_t shown = 0, closed = 0;
  // The button is never released, so every shot is overcharged and falls.
  const auto holdTheButton = [&] {
    launch.machine.After(10, [] {}); // wakes the player again soon
    for (const char *name : {"frmHome", "frmAway", "frmTie"}) {
      if (Window *window = launch.machine.FindWindow(name)) {
        if (card.empty()) shown = launch.machine.Now();
        closed = launch.machine.Now();
        card = window->Caption;
        score = dynamic_cast<Label &>(*launch.machine.Find(name, "lblScore")).Caption;
        launch.machine.PressKey(KeyCodes::Escape);
        launch.machine.ClickOn(*window);
        return;
      }
    }
    launch.machine.PressMouse(1);
  };
  launch.Run(
      [&] {
        launch.At<TextBox>("Text1").Text = "1";
        launch.machine.Press(launch.At<CommandButton>("Command2"));
        launch.machine.After(10, [&] { launch.machine.Player = holdTheButton; });
      },
      1000000);
  EXPECT_EQ(card, "It's All Tied Up!");
  EXPECT_EQ(score, "0 - 0");
  EXPECT_NEAR(closed - shown, 400, 20) << "neither an early click nor a key closes it";
  EXPECT_EQ(launch.machine.Sounds.back(), "play yeah.daw");
}

} // namespace

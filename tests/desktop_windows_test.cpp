// The windows on the screen: every label is readable on its background.

#include "match/frm_snapwedge.h"
#include "match/results.h"
#include "net/frm_new_net.h"
#include "tests/desktop_kit.h"

#include <QLabel>
#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace {

/// The lowest contrast of the label's text to any pixel behind it; nothing for a text without pixels.
std::optional<double> LeastContrast(QWidget &window, QLabel &label) {
  const QRect place(label.mapTo(&window, QPoint()), label.size());
  const QImage written = window.grab(place).toImage();
  const QString text = label.text();
  label.setText(QString());
  const QImage blank = window.grab(place).toImage();
  label.setText(text);
  const QColor ink = label.palette().color(QPalette::WindowText);
  std::optional<double> least;
  for (int y = 0; y < blank.height(); ++y) {
    for (int x = 0; x < blank.width(); ++x) {
      if (written.pixel(x, y) == blank.pixel(x, y)) continue;
      const double contrast = Contrast(ink, blank.pixelColor(x, y));
      least = std::min(least.value_or(contrast), contrast);
    }
  }
  return least;
}

/// @return number of labels with text
int ExpectReadableLabels(GameMachine &machine, const Window &window) {
  constexpr double LeastReadable = 4.5;
  machine.Pump();
  int labels = 0;
  QWidget &shown = *ShownWindow(window.Name);
  for (QLabel *label : shown.findChildren<QLabel *>()) {
    if (!label->isVisible() || label->text().isEmpty()) continue;
    ++labels;
    const auto contrast = LeastContrast(shown, *label);
    EXPECT_TRUE(contrast.has_value()) << label->objectName().toStdString() << " shows nothing";
    EXPECT_GE(contrast.value_or(0), LeastReadable) << label->objectName().toStdString();
  }
  return labels;
}

TEST(DesktopWindowsTest, LabelsOfTheLaunchWindowCanBeRead) {
  GameMachine &machine = GameMachine::Get();
  Program program(machine);
  frmNewNet window(machine, program);
  machine.Show(window);
  EXPECT_EQ(ExpectReadableLabels(machine, window), 12);
}

TEST(DesktopWindowsTest, LabelsOfThePlayWindowCanBeRead) {
  GameMachine &machine = GameMachine::Get();
  Program program(machine);
  frmSnapwedge window(machine, program);
  window.Label5.Caption = "OV:SW:1"; // the version of the other program
  window.VersionSlip.Visible = true;
  window.HintResult(Results::Penalty);
  machine.Show(window);
  for (const std::int16_t player : {std::int16_t{1}, std::int16_t{2}}) {
    window.Player = player;
    program.MyTurn = player == 1 ? True : False;
    window.TurnColor();
    EXPECT_EQ(ExpectReadableLabels(machine, window), 7);
  }
  // The widest texts, while both boards flash, the dim one's too.
  window.lblHint.Caption = std::string(100, 'w');
  window.Round = program.Rounds = MostRounds;
  window.HomeScore = window.AwayScore = 888;
  window.PostScore();
  ASSERT_EQ(window.HomeBoard.Line.Picture, "ScoreLineFlash");
  ASSERT_EQ(window.AwayBoard.Line.Picture, "ScoreLineFlash");
  EXPECT_EQ(ExpectReadableLabels(machine, window), 7);
}

/// The widget of a control of the open window with that name.
QWidget *WidgetOf(const Window &window, const char *control) {
  QWidget *shown = ShownWindow(window.Name);
  return shown ? shown->findChild<QWidget *>(control) : nullptr;
}

/// All texts of `lblHint`, with their longest names and numbers.
std::vector<std::string> AllHints(frmSnapwedge &window) {
  std::vector<std::string> all;
  const auto keep = [&] { all.push_back(window.lblHint.Caption); };
  for (const char *mode : {"Human", "Computer", "INET"}) {
    window.program.GameMode = mode;
    for (const Flag turn : {True, False}) {
      window.program.MyTurn = turn;
      for (const Flag kick : {True, False}) {
        window.KickMode = kick;
        for (window.Shots = 0; window.Shots <= AttemptsInPossession; ++window.Shots) {
          for (const float power : {0.0f, 96.0f, 120.0f}) {
            window.ShotPower = power;
            for (int rest = 0; rest < 4; ++rest) {
              window.OverSide = rest & 1 ? True : False;
              window.OnCircle = rest & 2 ? True : False;
              window.HintAim();
              keep();
              window.HintFlight();
              keep();
              for (std::int16_t result = Results::First; result <= Results::Last; ++result) {
                window.HintResult(result);
                keep();
                window.HintOtherResult(result);
                keep();
              }
            }
          }
        }
      }
    }
    window.HintOver();
    keep();
  }
  window.HintNoKick();
  keep();
  window.HintWriting();
  keep();
  window.LineIsBroken = True;
  window.ShowHint();
  keep();
  window.LineIsBroken = False;
  window.HintLeft();
  keep();
  constexpr float JustShort = -68.0f; // of the circle
  window.program.GameMode = "Human";
  window.OverSide = window.OnCircle = window.KickMode = False;
  window.Shots = AttemptsInPossession - 1;
  window.PieceFrame->SetPosition(window.RMCanvas1.SceneFrame, 0, 0, JustShort);
  window.HintAim();
  keep();
  EXPECT_TRUE(all.back().starts_with("No corner is on the circle")) << all.back();
  return all;
}

TEST(DesktopWindowsTest, EveryHintFitsItsLineInItsOwnSize) {
  GameMachine &machine = GameMachine::Get();
  Program program(machine);
  program.SoundOn = False;
  program.GameMode = "Human";
  frmSnapwedge window(machine, program);
  window.SetUp();
  const std::vector<std::string> hints = AllHints(window);
  ASSERT_GT(hints.size(), 100U);
  const auto *label = qobject_cast<QLabel *>(WidgetOf(window, "lblHint"));
  ASSERT_TRUE(label);
  constexpr int FullSize = 12; // pixels, 9 points
  for (const std::string &hint : hints) {
    const QRect needed = label->fontMetrics().boundingRect(QString::fromStdString(hint));
    EXPECT_LE(needed.width(), label->width()) << hint;
    EXPECT_LE(needed.height(), label->height()) << hint;
  }
  EXPECT_EQ(label->font().pixelSize(), FullSize);
  window.lblHint.Caption = std::string(200, 'w');
  machine.Pump();
  EXPECT_LT(label->font().pixelSize(), FullSize) << "a typeface that is wider must not cut it off";
  window.lblHint.Caption = hints.front();
  machine.Pump();
  EXPECT_EQ(label->font().pixelSize(), FullSize);
}

TEST(DesktopWindowsTest, ThePlayWindowComesUpWithItsFirstFrameAndWithoutTheLastCard) {
  GameMachine &machine = GameMachine::Get();
  Program program(machine);
  program.SoundOn = False;
  program.GameMode = "Human";
  frmSnapwedge window(machine, program);
  window.RMCanvas1.Start();
  window.LoadScene();
  machine.Show(window);
  const QImage first = WidgetOf(window, "RMCanvas1")->grab().toImage();
  EXPECT_GT(QColor(first.pixel(first.width() / 2, first.height() / 3)).lightness(), 40) << "no frame yet";
  window.Picture4.Visible = true;
  machine.Repaint(window);
  const QWidget *card = WidgetOf(window, "Picture4");
  EXPECT_TRUE(card->isVisible());
  window.Picture4.Visible = false;
  window.PieceFrame->SetPosition(window.RMCanvas1.SceneFrame, 3, 0, 40);
  window.RMCanvas1.Update();
  EXPECT_FALSE(card->isVisible()) << "it covers the first frame of the next possession";
}

TEST(DesktopWindowsTest, PicturesBehindTheControlsFollowTheGame) {
  GameMachine &machine = GameMachine::Get();
  Program program(machine);
  frmSnapwedge window(machine, program);
  machine.Show(window);
  window.Player = 1;
  program.MyTurn = True;
  window.TurnColor();
  machine.Pump();
  const auto look = [&](const BackPicture &picture) {
    QWidget *shown = WidgetOf(window, "RMCanvas1")->window();
    return shown->grab(QRect(picture.Left, picture.Top, 20, 20)).toImage();
  };
  const QImage lit = look(window.HomeBoard.Tile), unlit = look(window.AwayBoard.Tile);
  const QImage three = look(window.Tries[2]);
  window.Player = 2;
  program.MyTurn = False;
  window.Shots = 2;
  window.TurnColor();
  window.HomeScore = 8;
  window.PostScore();
  window.HomeBoard.FlashSteps = 0;
  window.LightBoards();
  machine.Pump();
  EXPECT_NE(look(window.HomeBoard.Tile), lit);
  EXPECT_NE(look(window.AwayBoard.Tile), unlit);
  EXPECT_NE(look(window.Tries[2]), three);
}

TEST(DesktopWindowsTest, AWindowOpenedAgainFindsItsButtonsInTheToolkitsCache) {
  GameMachine &machine = GameMachine::Get();
  Program program(machine);
  std::set<qint64> palettes; // part of a key in the cache
  for (int time = 0; time < 2; ++time) {
    frmNewNet window(machine, program);
    machine.Show(window);
    machine.Pump();
    for (const char *button : {"Command1", "cmdConnect", "cmdJoin"})
      palettes.insert(WidgetOf(window, button)->palette().cacheKey());
  }
  EXPECT_EQ(palettes.size(), 1u);
}

} // namespace

// The windows of the desktop machine and their controls, on a virtual display.

#include "front/information_windows.h"
#include "platform/network_times.h"
#include "tests/desktop_kit.h"
#include "tests/session_kit.h"

#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QScreen>
#include <QScrollBar>
#include <QTest>
#include <QTextBrowser>
#include <QWindow>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstring>
#include <fstream>
#include <numeric>
#include <set>
#include <thread>

namespace {

/// A window with one control of each interactive kind, and a meter.
struct Form {
  explicit Form(DesktopMachine &on) : machine(on) {
    window.Name = "Form";
    window.Caption = "Form";
    window.Width = 300;
    window.Height = 200;
    label.Name = "label";
    label.Place = {10, 10, 200, 20};
    label.Caption = "before";
    box.Name = "box";
    box.Place = {10, 40, 100, 24};
    button.Name = "button";
    button.Place = {10, 80, 100, 24};
    button.Caption = "Press";
    list.Name = "list";
    list.Place = {10, 120, 100, 60};
    list.List = {"one", "two"};
    check.Name = "check";
    check.Place = {130, 40, 20, 20};
    check.Value = 1;
    combo.Name = "combo";
    combo.Place = {130, 80, 100, 24};
    combo.List = {"low", "middle", "high"};
    combo.ListIndex = 1;
    meter.Name = "meter";
    meter.Place = {250, 10, 20, 184};
    meter.Vertical = true;
    window.Controls = {&label, &box, &button, &list, &check, &combo, &meter};
    machine.Show(window);
    PumpFor(machine, 50);
  }
  ~Form() { machine.Hide(window); }

  DesktopMachine &machine;
  Window window;
  Label label;
  TextBox box;
  CommandButton button;
  ListBox list;
  CheckBox check;
  ComboBox combo;
  ProgressBar meter;
};

/// The bright rows of a column of pixels, counted from the bottom.
std::vector<int> BrightRows(const QImage &image, int column) {
  constexpr int Bright = 180; // least value of the brightest channel
  std::vector<int> rows;
  for (int y = 0; y < image.height(); ++y) {
    const QColor color = image.pixelColor(column, y);
    if (std::max({color.red(), color.green(), color.blue()}) > Bright)
      rows.insert(rows.begin(), image.height() - 1 - y);
  }
  return rows;
}

TEST(DesktopMachineTest, EveryKindOfControlWorks) {
  Form form(GameMachine::Get());
  int pressed = 0;
  std::vector<int> ticked, listed, chosen;
  std::vector<int> keys;
  form.button.Click = [&] { ++pressed; };
  form.check.Click = [&] { ticked.push_back(form.check.Value); };
  form.list.Click = [&] { listed.push_back(form.list.ListIndex); };
  form.combo.Click = [&] { chosen.push_back(form.combo.ListIndex); };
  form.box.KeyPress = [&](std::int16_t key) { keys.push_back(key); };

  QTest::mouseClick(WidgetOf("button"), Qt::LeftButton);
  QTest::keyClick(WidgetOf("button"), Qt::Key_Space);

  auto *check = qobject_cast<QCheckBox *>(WidgetOf("check"));
  EXPECT_TRUE(check->isChecked()) << "as set by the game";
  QTest::mouseClick(check, Qt::LeftButton, {}, QPoint(8, check->height() / 2));
  form.machine.Pump();
  EXPECT_FALSE(check->isChecked());
  QTest::keyClick(check, Qt::Key_Space);

  auto *list = qobject_cast<QListWidget *>(WidgetOf("list"));
  QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(list->item(1)).center());
  form.machine.Pump();
  QTest::keyClick(list, Qt::Key_Up);

  auto *combo = qobject_cast<QComboBox *>(WidgetOf("combo"));
  EXPECT_EQ(combo->currentText(), "middle");
  QTest::keyClick(combo, Qt::Key_Down);
  form.machine.Pump();
  EXPECT_EQ(combo->currentText(), "high");
  QTest::keyClick(combo, Qt::Key_Home);

  QTest::keyClicks(WidgetOf("box"), "words");
  QTest::keyClick(WidgetOf("box"), Qt::Key_Return);
  form.machine.Pump();
  EXPECT_EQ(pressed, 2);
  EXPECT_EQ(ticked, (std::vector{0, 1}));
  EXPECT_EQ(listed, (std::vector{1, 0}));
  EXPECT_EQ(chosen, (std::vector{2, 0}));
  EXPECT_EQ(form.box.Text, "words");
  EXPECT_EQ(keys, std::vector<int>{KeyCodes::Enter});
  EXPECT_EQ(combo->currentText(), "low");

  const std::vector<int> empty = BrightRows(WidgetOf("meter")->grab().toImage(), 10);
  form.meter.Value = 50;
  form.machine.Pump();
  const std::vector<int> half = BrightRows(WidgetOf("meter")->grab().toImage(), 10);
  constexpr int Border = 2, Inside = 180; // pixels
  std::vector<int> lowerHalf(Inside / 2);
  std::iota(lowerHalf.begin(), lowerHalf.end(), Border);
  EXPECT_TRUE(empty.empty());
  EXPECT_EQ(half, lowerHalf);
}

TEST(DesktopMachineTest, TheRowOfAListIsTheOneThatIsSeenSelected) {
  Form form(GameMachine::Get());
  int clicks = 0;
  form.list.Click = [&] { ++clicks; };
  auto *list = qobject_cast<QListWidget *>(WidgetOf("list"));
  const auto expectSelected = [&](int row, const char *after) {
    form.machine.Pump();
    EXPECT_EQ(form.list.ListIndex, row) << after;
    const QModelIndexList seen = list->selectionModel()->selectedIndexes();
    EXPECT_EQ(seen.isEmpty() ? -1 : seen.front().row(), row) << after;
  };
  list->setFocus(Qt::TabFocusReason);
  expectSelected(-1, "Tab");
  EXPECT_EQ(clicks, 0);
  QTest::keyClick(list, Qt::Key_Down);
  expectSelected(0, "Down");
  const QPoint first = list->visualItemRect(list->item(0)).center();
  QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::ControlModifier, first);
  expectSelected(0, "a click with Ctrl on it");
  QTest::keyClick(list, Qt::Key_Space, Qt::ControlModifier);
  expectSelected(0, "Ctrl and the space bar");
  QTest::keyClick(list, Qt::Key_Down, Qt::ControlModifier);
  expectSelected(1, "Ctrl and Down");
  form.list.ListIndex = -1;
  expectSelected(-1, "the game");
  EXPECT_EQ(clicks, 2);
}

TEST(DesktopMachineTest, TheLayoutIsNeverMirrored) {
  GameMachine::Get(); // started with -reverse
  EXPECT_EQ(QGuiApplication::layoutDirection(), Qt::LeftToRight);
}

TEST(DesktopMachineTest, PastedLineBreaksAreBlanksAndNoEnter) {
  Form form(GameMachine::Get());
  std::vector<std::int16_t> keys;
  form.box.KeyPress = [&](std::int16_t key) { keys.push_back(key); };
  for (const char *text : {"192.0.2.7\n", "192.0.2.7\r", "192.0.2.7\u2028"}) {
    form.box.Text.clear();
    form.machine.Pump();
    QGuiApplication::clipboard()->setText(text);
    qobject_cast<QLineEdit *>(WidgetOf("box"))->paste();
    form.machine.Pump();
    EXPECT_EQ(form.box.Text, "192.0.2.7 ");
  }
  EXPECT_TRUE(keys.empty());
}

TEST(DesktopMachineTest, RandomNumbersDiffer) {
  constexpr int Draws = 100;
  std::set<float> numbers;
  for (int draw = 0; draw < Draws; ++draw) {
    GameMachine::Get().Randomize();
    numbers.insert(GameMachine::Get().Rnd());
  }
  EXPECT_GT(numbers.size(), Draws / 2u);
}

TEST(DesktopMachineTest, PropertiesReachTheScreenAtThePump) {
  Form form(GameMachine::Get());
  form.label.Caption = "after & on";
  form.label.Visible = false;
  form.box.Text = "typed by the game";
  form.button.Enabled = false;
  form.list.List.emplace_back("three");
  form.list.ListIndex = 2;
  form.machine.Pump();
  EXPECT_EQ(qobject_cast<QLabel *>(WidgetOf("label"))->text(), "after & on");
  EXPECT_FALSE(WidgetOf("label")->isVisible());
  EXPECT_EQ(qobject_cast<QLineEdit *>(WidgetOf("box"))->text(), "typed by the game");
  EXPECT_FALSE(WidgetOf("button")->isEnabled());
  EXPECT_EQ(qobject_cast<QListWidget *>(WidgetOf("list"))->currentRow(), 2);
}

TEST(DesktopMachineTest, ALabelIsNeverCutOffAndIsReadableOnTheDesktopsOwnGround) {
  struct Row {
    const char *caption;
    bool wraps, shrinks;
  };
  for (const Row &row :
       {Row{"Rounds:", false, false}, Row{"Computer Skill Level:", false, true},
        Row{"two words", true, false}, Row{"as many words as need some more lines than two", true, true}}) {
    for (const bool ground : {false, true}) {
      SCOPED_TRACE(row.caption);
      Window window;
      Label label;
      window.Width = window.Height = 200;
      window.HasBackColor = ground;
      label.Name = "label";
      label.Place = {0, 0, 100, 32};
      label.Caption = row.caption;
      label.WordWrap = row.wraps;
      label.ForeColor = {1, 2, 3};
      window.Controls = {&label};
      GameMachine::Get().Show(window);
      const auto *shown = qobject_cast<QLabel *>(WidgetOf("label"));
      const QRect needed = shown->fontMetrics().boundingRect(shown->rect(), row.wraps ? Qt::TextWordWrap : 0,
                                                             QString::fromUtf8(row.caption));
      EXPECT_LE(needed.width(), 100);
      EXPECT_LE(needed.height(), 32);
      constexpr int FullSize = 11; // 8.25 points
      EXPECT_EQ(shown->font().pixelSize() < FullSize, row.shrinks);
      const QColor ink = shown->palette().color(QPalette::WindowText);
      EXPECT_EQ(ink, ground ? QColor(1, 2, 3) : QApplication::palette().color(QPalette::WindowText));
      GameMachine::Get().Hide(window);
    }
  }
}

TEST(DesktopMachineTest, ALongTextThatCantBeScrolledIsShownInTwoLines) {
  Window window;
  TextBox box;
  window.Width = window.Height = 430;
  box.Name = "received";
  box.Place = {0, 0, 417, 27};
  box.Locked = true;
  window.Controls = {&box};
  GameMachine &machine = GameMachine::Get();
  machine.Show(window);
  const auto look = [&](const std::string &text) {
    box.Text = text;
    machine.Pump();
    return WidgetOf("received")->grab().toImage();
  };
  // Texts that differ near their end only, up to what the smallest font holds.
  const std::string word = "words ";
  for (const int words : {1, 8, 16, 24}) {
    SCOPED_TRACE(words);
    std::string text;
    for (int i = 0; i < words; ++i) text += word;
    EXPECT_NE(look(text + "here"), look(text + "home"));
  }
  const std::string unbroken(100, 'n');
  EXPECT_NE(look(unbroken + "i"), look(unbroken + "o"));
  // Blanks at the end of a line hang over, so a text that is too long may have one line only.
  EXPECT_EQ(look(std::string(200, ' ')), look(""));
  EXPECT_NE(look("i" + std::string(199, ' ')), look(""));
  machine.Hide(window);
}

TEST(DesktopMachineTest, WordsOfButtonsAndDropDownListsAreNeverCutOff) {
  struct Row {
    const char *words;
    bool shrinks;
  };
  for (const Row &row : {Row{"Go", false}, Row{"Refresh more", true}}) {
    SCOPED_TRACE(row.words);
    Window window;
    CommandButton button;
    ComboBox list;
    window.Width = window.Height = 200;
    button.Name = "button";
    button.Place = {0, 0, 70, 24};
    button.Caption = row.words;
    list.Name = "list";
    list.Place = {0, 40, 90, 24};
    list.List = {"a", row.words};
    window.Controls = {&button, &list};
    GameMachine::Get().Show(window);
    const auto wide = [&](const QWidget *widget) {
      return widget->fontMetrics().horizontalAdvance(QString::fromUtf8(row.words));
    };
    constexpr int FullSize = 11, Arrow = 20; // pixels
    EXPECT_LT(wide(WidgetOf("button")), 70);
    EXPECT_LT(wide(WidgetOf("list")), 90 - Arrow);
    for (const char *name : {"button", "list"})
      EXPECT_EQ(WidgetOf(name)->font().pixelSize() < FullSize, row.shrinks) << name;
    GameMachine::Get().Hide(window);
  }
}

TEST(DesktopMachineTest, ADisabledButtonIsReadableWhenTheDesktopTurnsDark) {
  Window window;
  CommandButton button;
  window.Width = window.Height = 200;
  button.Name = "button";
  button.Caption = "Join";
  button.Place = {0, 0, 70, 24};
  button.Enabled = false;
  window.Controls = {&button};
  GameMachine &machine = GameMachine::Get();
  machine.Show(window);
  const QPalette before = QGuiApplication::palette();
  for (const QColor &ground : {QColor(30, 30, 30), QColor(240, 240, 240)}) {
    QGuiApplication::setPalette(QPalette(ground));
    PumpFor(machine, 50);
    const QPalette shown = WidgetOf("button")->palette();
    EXPECT_GT(Contrast(shown.color(QPalette::Disabled, QPalette::ButtonText),
                       shown.color(QPalette::Disabled, QPalette::Button)),
              2.5)
        << ground.name().toStdString();
  }
  QGuiApplication::setPalette(before);
  machine.Hide(window);
}

TEST(DesktopMachineTest, AStretchedWindowHasItsContentInTheMiddleOfBlack) {
  Form form(GameMachine::Get());
  QWidget &window = *WidgetOf("label")->window();
  const auto show = [&](QSize size) {
    window.setFixedSize(size); // as a window manager would
    PumpFor(form.machine, 50);
    return window.grab().toImage();
  };
  const QImage plain = show({300, 200});
  show({500, 270});
  EXPECT_EQ(show({300, 200}), plain) << "and back";
  const QImage wide = show({500, 270});
  EXPECT_EQ(wide.copy(100, 35, 300, 200), plain);
  int lit = 0;
  for (int y = 0; y < wide.height(); ++y)
    for (int x = 0; x < wide.width(); ++x)
      if (!QRect(100, 35, 300, 200).contains(x, y) && wide.pixelColor(x, y) != Qt::black) ++lit;
  EXPECT_EQ(lit, 0);
  int clicks = 0;
  form.button.Click = [&] { ++clicks; };
  QTest::mouseClick(window.childAt(100 + 20, 35 + 90), Qt::LeftButton);
  form.machine.Pump();
  EXPECT_EQ(clicks, 1);
}

TEST(DesktopMachineTest, ATitleBarIsOnTheScreenHoweverSmallThatIs) {
  DesktopMachine &machine = GameMachine::Get();
  const QRect area = QGuiApplication::primaryScreen()->availableGeometry();
  Window window;
  Label label;
  label.Name = "in a large window";
  window.Controls = {&label};
  window.Width = 2 * area.width();
  window.Height = 2 * area.height();
  machine.Show(window);
  EXPECT_EQ(WidgetOf("in a large window")->window()->pos(), area.topLeft());
  machine.Hide(window);
}

TEST(DesktopMachineTest, AWindowIsOnTheScreenWhenShowReturns) {
  auto &machine = GameMachine::Get();
  Window window;
  window.Name = "Purple";
  window.Width = 200;
  window.Height = 100;
  window.HasBackColor = true;
  window.BackColor = {130, 20, 140};
  machine.Show(window);
  const QWidget &shown = *ShownWindow("Purple");
  const QPoint middle = shown.mapToGlobal(shown.rect().center());
  const QColor seen = shown.screen()->grabWindow(0, middle.x(), middle.y(), 1, 1).toImage().pixelColor(0, 0);
  EXPECT_EQ(seen, QColor(130, 20, 140)) << seen.name().toStdString();
  machine.Hide(window);
}

TEST(DesktopMachineTest, HandlersRunInThePumpAndMayThrow) {
  Form form(GameMachine::Get());
  int clicks = 0;
  form.button.Click = [&] {
    ++clicks;
    if (clicks == 2) throw ProgramEnd{};
  };
  QTest::mouseClick(WidgetOf("button"), Qt::LeftButton);
  EXPECT_EQ(clicks, 0) << "Qt's own handler must not call the game";
  form.machine.Pump();
  EXPECT_EQ(clicks, 1);
  QTest::mouseClick(WidgetOf("button"), Qt::LeftButton);
  EXPECT_THROW(form.machine.Pump(), ProgramEnd);
  form.machine.Pump();
  std::int16_t lastKey = 0;
  form.box.KeyPress = [&](std::int16_t key) { lastKey = key; };
  QTest::keyClicks(WidgetOf("box"), "hi");
  QTest::keyClick(WidgetOf("box"), Qt::Key_Return);
  form.machine.Pump();
  EXPECT_EQ(form.box.Text, "hi");
  EXPECT_EQ(lastKey, KeyCodes::Enter);
}

TEST(DesktopMachineTest, ASignalToEndPressesTheCloseBoxesUnderAnyBoxOnceOnly) {
  for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
    SCOPED_TRACE(strsignal(signal));
    Form form(GameMachine::Get());
    int closed = 0;
    form.window.QueryClose = [&] { ++closed; };
    bool raised = false;
    const auto poll = form.machine.OnPump([&] {
      if (QApplication::activeModalWidget() && !std::exchange(raised, true)) std::raise(signal);
    });
    EXPECT_THROW(form.machine.MsgBox({"text", "title"}), ProgramEnd);
    EXPECT_EQ(closed, 1);
    EXPECT_EQ(std::signal(signal, SIG_DFL), SIG_DFL) << "another one ends the process";
  }
}

TEST(DesktopMachineTest, AModalWindowKeepsTheOthersWaiting) {
  Form form(GameMachine::Get());
  int clicks = 0;
  form.button.Click = [&] { ++clicks; };
  Window card;
  card.Name = "Card";
  card.Width = 100;
  card.Height = 80;
  const auto poll = form.machine.OnPump([&, tries = 0]() mutable {
    if (!card.Visible || ++tries < 5) return;
    if (tries == 5) {
      const QWindow *shown = QApplication::activeModalWidget()->windowHandle();
      EXPECT_EQ(shown->transientParent(), WidgetOf("button")->window()->windowHandle()) << "stays above it";
      EXPECT_EQ(shown->type(), Qt::Dialog) << "the window manager is told the owner only of a dialog";
      QTest::mouseClick(WidgetOf("button"), Qt::LeftButton);
    }
    if (tries == 8) form.machine.Hide(card);
  });
  form.machine.ShowModal(card);
  PumpFor(form.machine, 30);
  EXPECT_EQ(clicks, 0);
  EXPECT_FALSE(card.Visible);
}

/// The lines of a text that aren't empty, without blanks at their ends.
std::vector<std::string> Lines(std::istream &stream) {
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) {
    line.erase(line.find_last_not_of(' ') + 1);
    if (!line.empty()) lines.push_back(line);
  }
  return lines;
}

TEST(DesktopMachineTest, TheReadMeStandsInItsWindowToTheLetterAndLeavesTheKeyboardToTheButton) {
  DesktopMachine &machine = GameMachine::Get();
  std::string text, formats;
  bool buttonHasFocus = false;
  std::vector<int> scrolled;
  const auto poll = machine.OnPump([&, looks = 0]() mutable {
    const auto *box = qobject_cast<QTextBrowser *>(WidgetOf("RichTextBox1"));
    if (!box) return;
    ++looks;
    if (looks == 5) {
      text = box->toPlainText().toStdString();
      for (const char *words : {"Welcome", "2. Controls:", "a. Creating A Session:", "Note:", "SNWG is"}) {
        const QTextCharFormat format = box->document()->find(words).charFormat();
        formats += (format.foreground().color().name() + " " + QString::number(format.fontPointSize()) +
                    (format.fontWeight() == QFont::Bold ? " bold\n" : "\n"))
                       .toStdString();
      }
      QTest::mouseClick(box->viewport(), Qt::LeftButton);
    }
    if (looks == 10) {
      buttonHasFocus = WidgetOf("Command1")->hasFocus();
      for (const auto key : {Qt::Key_Down, Qt::Key_PageDown, Qt::Key_End, Qt::Key_Up, Qt::Key_Home}) {
        QTest::keyClick(WidgetOf("Command1"), key);
        scrolled.push_back(box->verticalScrollBar()->value());
      }
    }
    if (looks == 11) QTest::mouseClick(WidgetOf("Command1"), Qt::LeftButton);
  });
  ShowReadMe(machine);
  std::istringstream shown(text);
  std::ifstream expected(SNAPWEDGE_TESTS_DIR "/readme.txt");
  const std::vector<std::string> shownLines = Lines(shown), expectedLines = Lines(expected);
  ASSERT_EQ(shownLines.size(), expectedLines.size());
  for (std::size_t i = 0; i < shownLines.size(); ++i) EXPECT_EQ(shownLines[i], expectedLines[i]);
  EXPECT_EQ(formats, "#008080 20 bold\n#000000 12 bold\n#000000 10 bold\n#000000 12 bold\n#000000 12\n");
  EXPECT_TRUE(buttonHasFocus);
  ASSERT_EQ(scrolled.size(), 5U);
  EXPECT_LT(0, scrolled[0]);
  EXPECT_LT(2 * scrolled[0], scrolled[1]) << "a page is more than a line";
  EXPECT_LT(scrolled[1], scrolled[3]) << "a line above the end";
  EXPECT_LT(scrolled[3], scrolled[2]);
  EXPECT_EQ(scrolled[4], 0);
}

TEST(DesktopMachineTest, AMissingPictureIsNamed) {
  Window window;
  window.Width = window.Height = 50;
  window.Picture = "no-such-picture";
  try {
    GameMachine::Get().Show(window);
    FAIL() << "the error must not be ignored";
  } catch (const std::runtime_error &error) {
    EXPECT_NE(std::string(error.what()).find("no-such-picture"), std::string::npos);
  }
  EXPECT_FALSE(window.Visible);
}

TEST(DesktopMachineTest, AWaitEndsOnTimeAndSleeps) {
  DesktopMachine &machine = GameMachine::Get();
  using Clock = std::chrono::steady_clock;
  const auto start = Clock::now();
  const std::clock_t processor = std::clock();
  PumpFor(machine, 200);
  const double wall = std::chrono::duration<double>(Clock::now() - start).count();
  EXPECT_GE(wall, 0.199);
  EXPECT_LT(static_cast<double>(std::clock() - processor) / CLOCKS_PER_SEC, wall / 2);
}

/// Two ends of a connection.
struct Ends {
  Ends() { EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, at), 0); }
  ~Ends() {
    close(at[0]);
    close(at[1]);
  }
  int at[2] = {-1, -1};
};

TEST(DesktopMachineTest, DataEndsASleep) {
  DesktopMachine &machine = GameMachine::Get();
  const Ends ends;
  const auto watched = machine.Watch(ends.at[0]);
  const std::int32_t end = machine.ClockIn(30000);
  std::thread sender([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(write(ends.at[1], "x", 1), 1);
  });
  machine.WaitUntil(end);
  sender.join();
  EXPECT_FALSE(machine.ClockReached(end));
}

TEST(DesktopMachineTest, UnreadDataWakesAtMostOncePerPoll) {
  DesktopMachine &machine = GameMachine::Get();
  const Ends ends;
  ASSERT_EQ(write(ends.at[1], "x", 1), 1);
  const auto watched = machine.Watch(ends.at[0]);
  const std::int32_t begin = machine.timeGetTime(), end = machine.ClockIn(200);
  int wakes = 0;
  for (; !machine.ClockReached(end); ++wakes) machine.WaitUntil(end);
  EXPECT_LE(wakes, Elapsed(begin, machine.timeGetTime()) / NetworkPollMs + 1);
  EXPECT_GT(wakes, 2) << "the second sleep ended only at the deadline";
}

TEST(DesktopMachineTest, EveryConnectionIsWatchedWhileItLives) {
  GameMachine &machine = GameMachine::Get();
  const auto directX = machine.CreateDirectX();
  auto host = directX->DirectPlayCreate(""), joiner = directX->DirectPlayCreate("");
  for (const auto &program : {host, joiner}) program->InitializeConnection(kit::ThisComputer);
  const std::string name = "woken " + std::to_string(machine.timeGetTime());
  const std::int32_t player = kit::Host(*host, name);
  const auto found = joiner->GetDPEnumSessions(kit::Description(""), 0, DPENUMSESSIONS_AVAILABLE);
  std::int32_t row = 1;
  while (row < found->GetCount() && found->GetItem(row).GetSessionName() != name) ++row;
  kit::Join(*joiner, found->GetItem(row));
  EXPECT_EQ(kit::TakeAll(*host, player), std::vector<std::string>{"joined"});
  const auto alive = [&] {
    return std::ranges::count_if(machine.Watches, [](const auto &each) { return !each.expired(); });
  };
  EXPECT_EQ(alive(), 2) << "one of each side";
  host.reset();
  joiner.reset();
  EXPECT_EQ(alive(), 0);
}

} // namespace

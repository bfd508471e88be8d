// The windows for players without sight or without a mouse: what screen readers find, what is announced, and
// the keyboard focus.

#include "front/information_windows.h"
#include "match/frm_snapwedge.h"
#include "match/results.h"
#include "net/frm_new_net.h"
#include "platform/desktop/accessible.h"
#include "platform/desktop/painted_views.h"
#include "platform/search_dialog.h"
#include "tests/desktop_kit.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QMetaEnum>
#include <QTest>
#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <set>
#include <sstream>

namespace {

constexpr std::int32_t PatienceMs = 10000; ///< for a window to open or to close

QString RoleName(const QAccessibleInterface &element) {
  return QMetaEnum::fromType<QAccessible::Role>().valueToKey(element.role());
}

std::vector<QAccessibleInterface *> ChildrenOf(const QAccessibleInterface &element) {
  // Only windows and lists have children of the game. Other widgets have only parts of the toolkit.
  const bool toolkit = element.role() != QAccessible::Window && element.role() != QAccessible::Dialog &&
                       element.role() != QAccessible::List;
  std::vector<QAccessibleInterface *> children;
  for (int i = 0; i < (toolkit ? 0 : element.childCount()); ++i) children.push_back(element.child(i));
  return children;
}

/// The names of the labels that the element has a relation to.
QString LabelsOf(const QAccessibleInterface &element) {
  QStringList labels;
  for (const auto &[label, relation] : element.relations(QAccessible::Label))
    labels += label->text(QAccessible::Name);
  return labels.join(", ");
}

/// Writes a line for each element: role, name, value, label if it differs from the name, states, and the
/// description after two dashes.
void Write(std::ostream &text, QAccessibleInterface &element, const std::string &indent = "") {
  constexpr qsizetype Longest = 60; // characters of a value or description
  const auto shortened = [](const QString &words) {
    const QString line = words.simplified();
    return (line.size() <= Longest ? line : line.left(Longest) + "...").toStdString();
  };
  const QString name = element.text(QAccessible::Name), label = LabelsOf(element);
  text << indent << RoleName(element).toStdString() << " \""
       << QString(name).replace('\n', " / ").toStdString() << '"';
  auto *value = element.valueInterface();
  const QString content = value ? value->currentValue().toString() + " of " + value->maximumValue().toString()
                                : element.text(QAccessible::Value);
  if (!content.isEmpty() && content != name) text << " = \"" << shortened(content) << '"';
  if (!label.isEmpty() && label != name) text << ", labelled \"" << label.toStdString() << '"';
  const QAccessible::State state = element.state();
  for (const auto &[is, word] : {std::pair<bool, const char *>{state.disabled, "disabled"},
                                 {state.focused, "focused"},
                                 {state.checked, "checked"},
                                 {state.selected, "selected"},
                                 {state.readOnly, "read-only"},
                                 {state.modal, "modal"},
                                 {state.invisible, "hidden"}})
    if (is) text << ", " << word;
  const QString description = element.text(QAccessible::Description);
  if (!description.isEmpty()) text << " -- " << shortened(description);
  text << '\n';
  for (QAccessibleInterface *child : ChildrenOf(element)) Write(text, *child, indent + "  ");
}

/// Collects the elements that a screen reader can't describe.
void FindFaults(std::vector<std::string> &faults, QAccessibleInterface &element, bool window = true) {
  const QAccessible::Role role = element.role();
  const QAccessible::State state = element.state();
  const auto *pictures = qobject_cast<QLabel *>(element.object());
  const std::string what = RoleName(element).toStdString() + ' ' +
                           (element.object() ? element.object()->objectName().toStdString() : "");
  const bool named = !element.text(QAccessible::Name).isEmpty();
  if (window && role != QAccessible::Window && role != QAccessible::Dialog)
    faults.push_back(what + " is a window without the role of one");
  if (!window && (role == QAccessible::Client || role == QAccessible::NoRole))
    faults.push_back(what + " has no role");
  if (!named && (window || state.focusable || role == QAccessible::ProgressBar))
    faults.push_back(what + " has no name");
  const bool picture = role == QAccessible::Graphic || role == QAccessible::Canvas ||
                       dynamic_cast<PictureText *>(element.object()) ||
                       (pictures && !pictures->pixmap(Qt::ReturnByValue).isNull());
  if (!named && picture) faults.push_back(what + " is a picture without a text");
  for (QAccessibleInterface *child : ChildrenOf(element)) FindFaults(faults, *child, false);
}

std::string Content(const std::string &file) {
  std::ifstream stream(file);
  std::ostringstream text;
  text << stream.rdbuf();
  return text.str();
}

/// Compares the accessibility tree of the window with the file of that name. After an intended change, copy
/// the new tree from the failure message into the file.
void ExpectTree(QWidget &window, const std::string &name) {
  SCOPED_TRACE(name);
  QAccessibleInterface *root = QAccessible::queryAccessibleInterface(&window);
  ASSERT_TRUE(root);
  std::ostringstream tree;
  Write(tree, *root);
  EXPECT_EQ(tree.str(), Content(SNAPWEDGE_TESTS_DIR "/accessible_trees/" + name + ".txt"));
  std::vector<std::string> faults;
  FindFaults(faults, *root);
  EXPECT_EQ(faults, std::vector<std::string>());
}

/// Runs `open`, which returns when the window has been closed. As soon as the window is active, runs `act`
/// once, which must close it.
void WhileOpen(GameMachine &machine, const std::string &name, const std::function<void()> &open,
               const std::function<void(QWidget &)> &act) {
  bool acted = false;
  const std::int32_t end = machine.ClockIn(PatienceMs);
  const auto watch = machine.OnPump([&] {
    QWidget *window = ShownWindow(name);
    if (acted || !window || !window->isActiveWindow()) return;
    acted = true;
    act(*window);
  });
  const Machine::CloseModalsWhen patience(machine, [&] { return machine.ClockReached(end); });
  open();
  EXPECT_TRUE(acted) << name << " didn't become active";
  EXPECT_FALSE(machine.ClockReached(end)) << name << " didn't close";
}

/// Pumps until the window of that name is active.
QWidget &Active(GameMachine &machine, const std::string &name) {
  const std::int32_t end = machine.ClockIn(PatienceMs);
  while (!machine.ClockReached(end)) {
    if (QWidget *window = ShownWindow(name); window && window->isActiveWindow()) return *window;
    machine.WaitUntil(machine.ClockIn(10));
  }
  throw std::runtime_error(name + " didn't become active");
}

void Key(QWidget &window, Qt::Key key) {
  QTest::keyClick(window.focusWidget() ? window.focusWidget() : &window, key);
}

TEST(DesktopAccessibleTest, TheLaunchWindowIsAccessible) {
  GameMachine &machine = GameMachine::Get();
  Program program(machine);
  frmNewNet window(machine, program);
  window.lstConnections.List = {"This Computer", "Internet TCP/IP Connection"};
  window.lstConnections.ListIndex = 1;
  machine.Show(window);
  machine.SetFocus(window.Command1);
  ExpectTree(Active(machine, window.Name), window.Name);
}

TEST(DesktopAccessibleTest, AButtonThatWasEnabledJustNowTakesTheFocus) {
  GameMachine &machine = GameMachine::Get();
  Program program(machine);
  frmNewNet window(machine, program);
  machine.Show(window);
  const QWidget &shown = Active(machine, window.Name);
  window.Command5.Enabled = true;
  machine.SetFocus(window.Command5);
  ASSERT_NE(shown.focusWidget(), nullptr);
  EXPECT_EQ(shown.focusWidget()->objectName(), "Command5");
}

TEST(DesktopAccessibleTest, TheInformationWindowsAreAccessibleAndCloseByKey) {
  GameMachine &machine = GameMachine::Get();
  const struct {
    const char *name;
    void (*show)(Machine &);
    Qt::Key close;
  } windows[] = {{"frmControls", ShowControls, Qt::Key_Escape},
                 {"frmBackground", ShowBackground, Qt::Key_Escape},
                 {"frmText", ShowReadMe, Qt::Key_Space}};
  Program program(machine);
  frmNewNet owner(machine, program);
  machine.Show(owner);
  for (const auto &each : windows) {
    WhileOpen(
        machine, each.name, [&] { each.show(machine); },
        [&](QWidget &window) {
          ExpectTree(window, each.name);
          Key(window, each.close);
        });
  }
}

TEST(DesktopAccessibleTest, TheSearchDialogIsAccessibleAndClosesByEsc) {
  GameMachine &machine = GameMachine::Get();
  Program program(machine);
  frmNewNet owner(machine, program);
  machine.Show(owner);
  SearchDialog dialog(machine, "192.0.2.7");
  WhileOpen(
      machine, dialog.Name, [&] { EXPECT_FALSE(dialog.Ask()); },
      [&](QWidget &window) {
        ExpectTree(window, dialog.Name);
        Key(window, Qt::Key_Escape);
      });
}

TEST(DesktopAccessibleTest, AMessageBoxIsAccessibleAndClosesByEsc) {
  GameMachine &machine = GameMachine::Get();
  const auto find = [] { return qobject_cast<QMessageBox *>(QApplication::activeModalWidget()); };
  bool found = false;
  const auto watch = machine.OnPump([&] {
    QMessageBox *box = find();
    if (found || !box || !box->isActiveWindow()) return;
    found = true;
    const QAccessibleInterface *element = QAccessible::queryAccessibleInterface(box);
    EXPECT_EQ(element->role(), QAccessible::AlertMessage);
    EXPECT_EQ(element->text(QAccessible::Name), "Rounds to Play:");
    Key(*box, Qt::Key_Escape);
  });
  machine.MsgBox({"Please enter a whole number from 1 to 99.", "Rounds to Play:"});
  EXPECT_TRUE(found);
}

/// A match at the start of its first possession.
struct Match {
  explicit Match(const std::string &mode) : program(machine), window(machine, program) {
    program.SoundOn = False;
    program.GameMode = mode;
    window.SetUp();
    window.Round = 1;
    window.PostScore();
  }
  GameMachine &machine = GameMachine::Get();
  Program program;
  frmSnapwedge window;
};

TEST(DesktopAccessibleTest, ThePlayWindowAndItsCardsAreAccessible) {
  Match match("Computer");
  QWidget &shown = Active(match.machine, match.window.Name);
  match.machine.Pump();
  match.window.ProgressBar1.Value = 40;
  match.window.Picture3.Visible = true;
  match.machine.Repaint(match.window);
  ExpectTree(shown, match.window.Name);
}

TEST(DesktopAccessibleTest, TheFrontPagesAreAccessibleAndCloseOnlyByMouse) {
  Match match("Human");
  match.window.HomeScore = 13;
  match.window.AwayScore = 7;
  const std::pair<const char *, void (frmSnapwedge::*)()> pages[] = {{"frmHome", &frmSnapwedge::ShowHome},
                                                                     {"frmAway", &frmSnapwedge::ShowAway},
                                                                     {"frmTie", &frmSnapwedge::ShowTie}};
  for (const auto &[name, show] : pages) {
    bool clicked = false;
    std::int32_t clickAt = 0;
    const auto clicks = match.machine.OnPump([&, name = name] {
      QWidget *page = ShownWindow(name);
      if (!page || !clickAt || !match.machine.ClockReached(clickAt)) return;
      clicked = true;
      QTest::mouseClick(page, Qt::LeftButton);
    });
    WhileOpen(
        match.machine, name, [&, show = show] { (match.window.*show)(); },
        [&, name = name](QWidget &page) {
          ExpectTree(page, name);
          for (const Qt::Key key : {Qt::Key_Escape, Qt::Key_Return, Qt::Key_Space}) Key(page, key);
          clickAt = match.machine.ClockIn(500);
        });
    EXPECT_TRUE(clicked) << name << " was closed by a key";
  }
}

/// What a screen reader says at an announcement: the labels of the dialogs that it is in, then its words.
std::string SaidAt(QAccessibleInterface &announcement) {
  EXPECT_EQ(announcement.role(), QAccessible::Notification);
  QString said = announcement.text(QAccessible::Name);
  for (auto *around = announcement.parent(); around; around = around->parent()) {
    for (QAccessibleInterface *child : ChildrenOf(*around)) {
      const bool label = child->role() == QAccessible::StaticText && child->relations().isEmpty();
      if (around->role() == QAccessible::Dialog && label) said = child->text(QAccessible::Name) + '\n' + said;
    }
  }
  return said.toStdString();
}

/// What a screen reader has said at announcements since the last call.
std::string AnnouncedIn(QWidget &window) {
  GameMachine::Get().Pump();
  for (QWidget *child : window.findChildren<QWidget *>()) {
    if (!dynamic_cast<Announcer *>(child)) continue;
    if (child->accessibleName().isEmpty()) return {};
    const std::string said = SaidAt(*QAccessible::queryAccessibleInterface(child));
    child->setAccessibleName({});
    return said;
  }
  return "no announcer";
}

TEST(DesktopAccessibleTest, TurnResultAndScoreAreAnnouncedOnce) {
  Match match("Computer");
  QWidget &shown = Active(match.machine, match.window.Name);
  frmSnapwedge &window = match.window;
  EXPECT_EQ(AnnouncedIn(shown),
            "Home Team Score: 0\nAway Team Score: 0\nYour turn: 104 yards to the far edge. Hold the "
            "left button, let go to shoot.");
  EXPECT_EQ(AnnouncedIn(shown), "");
  window.HintResult(Results::Bonus);
  window.Picture5.Visible = true;
  EXPECT_EQ(AnnouncedIn(shown),
            "A corner on the circle on the first try: 3 points. Two tries are left.\n3 Points!");
  window.Picture5.Visible = false;
  EXPECT_EQ(AnnouncedIn(shown), "");
  window.HomeScore = 3;
  window.PostScore();
  EXPECT_EQ(AnnouncedIn(shown), "Home Team Score: 3");
  window.Reset();
  EXPECT_EQ(AnnouncedIn(shown), "The computer's turn.");
  window.Text1.Text = "Well done!";
  EXPECT_EQ(AnnouncedIn(shown), "The other player's message: Well done!");
  window.Picture5.Visible = true;
  window.Caption = "The line is broken";
  EXPECT_EQ(AnnouncedIn(shown), "The line is broken\n3 Points!")
      << "a card that is shown again is announced again";
}

TEST(DesktopAccessibleTest, TheChosenRowAndTheSearchAreAnnouncedOnce) {
  GameMachine &machine = GameMachine::Get();
  Program program(machine);
  frmNewNet launch(machine, program);
  machine.Show(launch);
  QWidget &shown = Active(machine, launch.Name);
  EXPECT_EQ(AnnouncedIn(shown), "") << "screen readers read the initial texts themselves";
  machine.SetFocus(launch.Combo1);
  Key(shown, Qt::Key_Down);
  machine.Pump();
  EXPECT_EQ(AnnouncedIn(shown), "Hard");
  SearchDialog dialog(machine, "");
  QWidget &search = Active(machine, dialog.Name);
  EXPECT_EQ(AnnouncedIn(search), "");
  std::vector<std::string> announced;
  const std::int32_t end = machine.ClockIn(600);
  while (!machine.ClockReached(end)) {
    EXPECT_TRUE(dialog.ShowSearching("Searching"));
    if (const std::string news = AnnouncedIn(search); !news.empty()) announced.push_back(news);
    machine.WaitUntil(machine.ClockIn(20));
  }
  ASSERT_EQ(announced.size(), 1U) << "every dot is announced";
  EXPECT_EQ(QString::fromStdString(announced.front()).remove('.').toStdString(), "Searching ");
  dialog.ShowNobodyFound(NobodyFound::UnknownName, 1);
  EXPECT_EQ(AnnouncedIn(search), dialog.Label2.Caption);
}

TEST(DesktopAccessibleTest, EveryPartOfALineCanBeRead) {
  GameMachine::Get(); // creates the QApplication
  TwoLineEdit line;
  QAccessibleTextInterface &text = *QAccessible::queryAccessibleInterface(&line)->textInterface();
  constexpr int Cursor = -2;
  struct Row {
    QAccessible::TextBoundaryType type;
    int offset;
    const char *before, *at, *after;
  };
  line.setText("One two. Three");
  line.setCursorPosition(5);
  for (const Row &row :
       {Row{QAccessible::CharBoundary, 4, " ", "t", "w"}, Row{QAccessible::CharBoundary, 13, "e", "e", ""},
        Row{QAccessible::CharBoundary, 14, "e", "", ""},
        Row{QAccessible::WordBoundary, 5, "One ", "two. ", "Three"},
        Row{QAccessible::WordBoundary, Cursor, "One ", "two. ", "Three"},
        Row{QAccessible::WordBoundary, 14, "two. ", "Three", ""},
        Row{QAccessible::SentenceBoundary, 0, "", "One two. ", "Three"},
        Row{QAccessible::LineBoundary, 3, "", "One two. Three", ""}}) {
    SCOPED_TRACE(testing::Message() << row.type << " at " << row.offset);
    int start = 0, end = 0;
    EXPECT_EQ(text.textBeforeOffset(row.offset, row.type, &start, &end), row.before);
    EXPECT_EQ(text.textAtOffset(row.offset, row.type, &start, &end), row.at);
    EXPECT_EQ(line.text().mid(start, end - start), row.at);
    EXPECT_EQ(text.textAfterOffset(row.offset, row.type, &start, &end), row.after);
  }
  // None of these may go on for ever.
  for (const char *content : {"", "5", "a b", "...", "\xF0\x9F\x98\x80", " "}) {
    line.setText(content);
    for (int offset = -3; offset <= line.text().size() + 1; ++offset) {
      for (int type = QAccessible::CharBoundary; type <= QAccessible::NoBoundary; ++type) {
        int start = 0, end = 0;
        const auto boundary = static_cast<QAccessible::TextBoundaryType>(type);
        for (const QString &part : {text.textBeforeOffset(offset, boundary, &start, &end),
                                    text.textAtOffset(offset, boundary, &start, &end),
                                    text.textAfterOffset(offset, boundary, &start, &end)})
          EXPECT_TRUE(line.text().contains(part));
      }
    }
  }
}

TEST(DesktopAccessibleTest, ALineIsWrittenInUnlessItIsReadOnly) {
  GameMachine::Get(); // creates the QApplication
  TwoLineEdit line;
  line.setMaxLength(8);
  QString edited;
  QObject::connect(&line, &QLineEdit::textEdited, [&](const QString &now) { edited = now; });
  QAccessibleInterface &element = *QAccessible::queryAccessibleInterface(&line);
  ASSERT_TRUE(element.editableTextInterface());
  element.editableTextInterface()->insertText(0, "hello");
  element.editableTextInterface()->replaceText(1, 4, "ipp");
  EXPECT_EQ(edited, "hippo");
  element.editableTextInterface()->insertText(5, "drome");
  EXPECT_EQ(edited.size(), 8) << "longer than the box allows";
  element.textInterface()->addSelection(1, 3);
  int start = 0, end = 0;
  element.textInterface()->selection(0, &start, &end);
  EXPECT_EQ(std::pair(start, end), std::pair(1, 3));
  line.setReadOnly(true);
  EXPECT_FALSE(element.editableTextInterface());
  EXPECT_TRUE(element.state().readOnly);
}

TEST(DesktopAccessibleTest, MissingNamesAndRolesAreFound) {
  GameMachine::Get(); // creates the QApplication
  QWidget bare;
  bare.setObjectName("bare");
  QLineEdit box(&bare);
  box.setObjectName("box");
  QLabel picture(&bare);
  picture.setObjectName("picture");
  QPixmap pixmap(8, 8);
  pixmap.fill(Qt::red);
  picture.setPixmap(pixmap);
  QWidget canvas(&bare);
  canvas.setObjectName("canvas");
  SetAccessibleRole(bare, QAccessible::Window);
  std::vector<std::string> faults;
  FindFaults(faults, *QAccessible::queryAccessibleInterface(&bare));
  EXPECT_EQ(faults, (std::vector<std::string>{"Window bare has no name", "EditableText box has no name",
                                              "Graphic picture is a picture without a text",
                                              "Client canvas has no role"}));
  QWidget plain;
  plain.setObjectName("plain");
  plain.setWindowTitle("Plain");
  faults.clear();
  FindFaults(faults, *QAccessible::queryAccessibleInterface(&plain));
  EXPECT_EQ(faults, std::vector<std::string>{"Client plain is a window without the role of one"});
}

/// The names of the enabled interactive controls.
std::set<std::string> Interactive(const QWidget &window) {
  std::set<std::string> names;
  for (const QWidget *child : window.findChildren<QWidget *>(Qt::FindDirectChildrenOnly)) {
    const bool interactive =
        qobject_cast<const QAbstractButton *>(child) || qobject_cast<const QComboBox *>(child) ||
        qobject_cast<const QLineEdit *>(child) || qobject_cast<const QListWidget *>(child);
    if (interactive && child->isEnabled()) names.insert(child->objectName().toStdString());
  }
  return names;
}

/// Checks the focus ring, two pixels wide, around a control. It must have a contrast of at least 3 to 1 with
/// every pixel around it, and must vanish with the focus.
void ExpectRing(QWidget &window, QWidget &control) {
  constexpr int RingWidth = 2;
  constexpr double LeastContrast = 3.0;
  const std::string name = control.objectName().toStdString();
  const auto grown = [&](int by) { return control.geometry().adjusted(-by, -by, by, by); };
  const QRect inner = control.geometry(), ring = grown(RingWidth), around = grown(RingWidth + 1);
  ASSERT_TRUE(window.rect().contains(around)) << name;
  window.setFocus(); // removes it from the control
  const QImage without = window.grab().toImage();
  control.setFocus();
  const QImage with = window.grab().toImage();
  const QColor color = with.pixelColor(ring.topLeft());
  int unchanged = 0;
  for (int y = around.top(); y <= around.bottom(); ++y) {
    for (int x = around.left(); x <= around.right(); ++x) {
      if (inner.contains(x, y)) continue;
      if (ring.contains(x, y)) {
        EXPECT_EQ(with.pixelColor(x, y), color) << name;
        if (without.pixelColor(x, y) == color) ++unchanged;
      } else {
        EXPECT_GE(Contrast(with.pixelColor(x, y), color), LeastContrast) << name;
      }
    }
  }
  EXPECT_EQ(unchanged, 0) << name;
}

/// Checks that Tab and Shift+Tab reach every control, then the focus ring of each.
void ExpectTabReachesAll(QWidget &window) {
  const std::set<std::string> all = Interactive(window);
  for (const Qt::Key key : {Qt::Key_Tab, Qt::Key_Backtab}) {
    std::set<std::string> reached;
    for (std::size_t i = 0; i < 2 * all.size(); ++i) {
      Key(window, key);
      const QWidget *focus = QApplication::focusWidget();
      reached.insert(focus ? focus->objectName().toStdString() : "nothing");
    }
    EXPECT_EQ(reached, all);
  }
  for (const std::string &name : all) ExpectRing(window, *window.findChild<QWidget *>(name.c_str()));
}

TEST(DesktopAccessibleTest, TabReachesEveryControlAndARingShowsTheFocus) {
  GameMachine &machine = GameMachine::Get();
  Program program(machine);
  frmNewNet launch(machine, program);
  for (CommandButton *button : {&launch.cmdJoin, &launch.Command4, &launch.cmdCreate, &launch.Command5})
    button->Enabled = true;
  machine.Show(launch);
  ExpectTabReachesAll(Active(machine, launch.Name));
  {
    SearchDialog dialog(machine, "");
    machine.SetFocus(dialog.Text1);
    ExpectTabReachesAll(Active(machine, dialog.Name));
  }
  WhileOpen(
      machine, "frmText", [&] { ShowReadMe(machine); },
      [](QWidget &window) {
        ExpectTabReachesAll(window);
        Key(window, Qt::Key_Return);
      });
}

} // namespace

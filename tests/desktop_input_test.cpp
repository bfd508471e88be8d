// The pointer, buttons and keys of the desktop machine, on a virtual display.

#include "tests/desktop_kit.h"
#include "tests/hand.h"

#include <QCursor>
#include <QScreen>
#include <QTest>
#include <gtest/gtest.h>
#include <qpa/qwindowsysteminterface.h>

#include <functional>
#include <optional>
#include <vector>

namespace {

TEST(DesktopInputTest, NoMotionOfAHeldPointerIsLost) {
  DesktopMachine &machine = GameMachine::Get();
  Window window;
  Canvas canvas;
  canvas.Name = "canvas";
  canvas.Place = {50, 30, 200, 100};
  int presses = 0;
  canvas.MouseDown = [&](std::int16_t, std::int16_t, float, float) { ++presses; };
  window.Width = 300;
  window.Height = 200;
  window.Controls = {&canvas};
  window.CapturesPointer = true;
  machine.ShowCursor(0);
  machine.Show(window);
  std::int32_t homeX = 0, homeY = 0, x = 0, y = 0;
  machine.mouse_event(-1, 30000, 30000, 1, 1);
  machine.GetCursorPos(homeX, homeY);
  const auto offset = [&] {
    machine.GetCursorPos(x, y);
    return QPoint(x - homeX, y - homeY);
  };
  const auto pumpUntilHeld = [&](bool held) {
    for (int tries = 0; tries < 400 && machine.PointerHeld() != held; ++tries) PumpFor(machine, 5);
    return machine.PointerHeld() == held;
  };
  ASSERT_TRUE(pumpUntilHeld(true));
  MoveHand(0, 0); // creates the virtual mouse
  PumpFor(machine, 300);
  // Small steps, a sweep, and throws that end far outside the window and beyond the screen.
  for (const QPoint motion :
       {QPoint(3, -2), QPoint(-70, 40), QPoint(350, 260), QPoint(-420, 0), QPoint(3000, -2000)}) {
    machine.mouse_event(-1, 30000, 30000, 1, 1);
    MoveHand(motion.x(), motion.y());
    PumpFor(machine, 100);
    EXPECT_EQ(offset(), motion);
  }
  const bool onX =
      QGuiApplication::platformName() == "xcb"; // elsewhere the position of the pointer is unknown
  QTest::mousePress(onX ? QApplication::widgetAt(QCursor::pos()) : WidgetOf("canvas"), Qt::LeftButton);
  machine.Pump();
  EXPECT_EQ(presses, 1) << "the buttons belong to the canvas";
  // A box releases the pointer, and its offsets are 0.
  machine.mouse_event(-1, 30000, 30000, 1, 1);
  const auto poll = machine.OnPump([&, closing = std::optional<std::int32_t>()]() mutable {
    QWidget *box = QApplication::activeModalWidget();
    if (!box || !box->isVisible()) return;
    EXPECT_FALSE(machine.PointerHeld());
    if (!closing) {
      MoveHand(-2000, -2000);
      closing = machine.ClockIn(200);
    }
    if (machine.ClockReached(*closing)) QTest::keyClick(box, Qt::Key_Return);
  });
  machine.MsgBox({"text", "title", false});
  EXPECT_EQ(offset(), QPoint());
  // The focus returns with the pointer in a corner of the screen, and another program moves it.
  WidgetOf("canvas")->activateWindow();
  ASSERT_TRUE(pumpUntilHeld(true));
  PumpFor(machine, 100);
  EXPECT_EQ(offset(), QPoint());
  QCursor::setPos(QPoint(900, 20));
  MoveHand(5, 7);
  PumpFor(machine, 100);
  EXPECT_EQ(offset(), QPoint(5, 7));
  machine.Hide(window);
  machine.ShowCursor(-1);
}

/// A window with only a canvas.
struct CanvasForm {
  CanvasForm() {
    canvas.Name = "canvas";
    canvas.Place = {0, 0, 100, 100};
    window.Width = window.Height = 100;
    window.Controls = {&canvas};
  }
  DesktopMachine &machine = GameMachine::Get();
  Window window;
  Canvas canvas;
};

TEST(DesktopInputTest, AScreenThatChangesItsSizeTurnsNoAim) {
  CanvasForm form;
  form.machine.Show(form.window);
  QScreen *screen = QGuiApplication::primaryScreen();
  const QSize size = screen->size();
  // As the display reports it when the resolution changes. The real screen stays as it is.
  const auto report = [&](QSize now) {
    const QRect area(QPoint(), now * screen->devicePixelRatio());
    QWindowSystemInterface::handleScreenGeometryChange(screen, area, area);
    PumpFor(form.machine, 5);
  };
  const auto home = [&] {
    std::int32_t x = 0, y = 0;
    form.machine.mouse_event(-1, 30000, 30000, 1, 1);
    form.machine.GetCursorPos(x, y);
    return QPoint(x, y);
  };
  const QPoint measured = home();
  report(size / 2);
  EXPECT_EQ(screen->size(), size / 2);
  EXPECT_EQ(home(), measured) << "every frame of a match counts the difference as a motion of the hand";
  report(size);
  form.machine.Hide(form.window);
}

TEST(DesktopInputTest, NoButtonCountsAcrossALossOfTheKeyboard) {
  CanvasForm form;
  int presses = 0, releases = 0, focused = 0;
  form.canvas.GotFocus = [&] { ++focused; };
  form.canvas.MouseDown = [&](std::int16_t, std::int16_t, float, float) { ++presses; };
  form.canvas.MouseUp = [&](std::int16_t, std::int16_t, float, float) { ++releases; };
  form.window.CapturesPointer = true;
  form.machine.ShowCursor(0);
  form.machine.Show(form.window);
  QWidget *widget = WidgetOf("canvas");
  const auto pumpUntil = [&](const std::function<bool()> &done) {
    for (int tries = 0; tries < 400 && !done(); ++tries) PumpFor(form.machine, 5);
    return done();
  };
  const auto held = [&] { return form.machine.PointerHeld(); };
  const auto visitAnother = [&] {
    Window other;
    other.Name = "other";
    other.Width = other.Height = 100;
    form.machine.Show(other);
    const bool released = pumpUntil([&] { return !held(); });
    form.machine.Hide(other);
    return released;
  };
  const auto comeBack = [&] {
    widget->activateWindow();
    return pumpUntil([&] { return widget->isActiveWindow(); });
  };

  ASSERT_TRUE(pumpUntil(held));
  ASSERT_TRUE(visitAnother());
  ASSERT_TRUE(comeBack());
  QTest::mouseClick(widget, Qt::LeftButton);
  form.machine.Pump();
  EXPECT_EQ(presses + releases, 0) << "the click that activates the window must not shoot";
  EXPECT_EQ(focused, 1);

  ASSERT_TRUE(pumpUntil(held));
  QTest::mousePress(widget, Qt::LeftButton);
  form.machine.Pump();
  EXPECT_EQ(presses, 1);
  ASSERT_TRUE(visitAnother());
  ASSERT_TRUE(comeBack());
  ASSERT_TRUE(pumpUntil(held));
  QTest::mouseRelease(widget, Qt::LeftButton);
  form.machine.Pump();
  EXPECT_EQ(releases, 0) << "the press was before the change of focus";

  QTest::mouseClick(widget, Qt::LeftButton);
  form.machine.Pump();
  EXPECT_EQ(presses, 2);
  EXPECT_EQ(releases, 1);
  EXPECT_EQ(focused, 1) << "a press that counts";
  widget->clearFocus();
  widget->setFocus(Qt::TabFocusReason);
  form.machine.Pump();
  EXPECT_EQ(focused, 2);
  form.machine.Hide(form.window);
  form.machine.ShowCursor(-1);
}

TEST(DesktopInputTest, AHeldEnterPressesNoButtonThatGetsTheFocusMeanwhile) {
  GameMachine &machine = GameMachine::Get();
  Window window;
  CommandButton create, cancel;
  create.Name = "create";
  cancel.Name = "cancel";
  create.Place = {0, 0, 70, 24};
  cancel.Place = {0, 40, 70, 24};
  window.Width = window.Height = 200;
  window.Controls = {&create, &cancel};
  int created = 0, cancelled = 0;
  create.Click = [&] {
    ++created;
    machine.SetFocus(cancel);
  };
  cancel.Click = [&] { ++cancelled; };
  machine.Show(window);
  machine.SetFocus(create);
  // A button without an active window has no focus.
  for (int tries = 0; tries < 400 && !WidgetOf("create")->hasFocus(); ++tries) PumpFor(machine, 5);
  ASSERT_TRUE(WidgetOf("create")->hasFocus());
  const auto enter = [&](bool repeated) {
    QKeyEvent event(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, "\r", repeated);
    QApplication::sendEvent(WidgetOf("create")->window()->focusWidget(), &event);
    machine.Pump();
  };
  enter(false);
  for (int repeat = 0; repeat < 3; ++repeat) enter(true);
  EXPECT_EQ(created, 1);
  EXPECT_EQ(cancelled, 0);
  enter(false);
  EXPECT_EQ(cancelled, 1);
  machine.Hide(window);
}

TEST(DesktopInputTest, AKeyOfTheCanvasCountsOnceHoweverLongItIsHeldAndOnEveryLayout) {
  CanvasForm form;
  std::vector<std::int16_t> keys;
  form.canvas.KeyDown = [&](std::int16_t key, std::int16_t) { keys.push_back(key); };
  form.machine.Show(form.window);
  const auto send = [&](QEvent::Type type, int key, quint32 scanCode, quint64 time) {
    QKeyEvent event(type, key, Qt::NoModifier, scanCode, 0, 0);
    event.setTimestamp(time);
    QCoreApplication::sendEvent(WidgetOf("canvas"), &event);
    form.machine.Pump();
  };
  constexpr quint32 PlaceOfS = 39, LeftOfOne = 49;
  send(QEvent::KeyPress, Qt::Key_S, PlaceOfS, 1000);
  // Key repetition as a display sends it. Qt doesn't mark a press as repeated if the pair is split.
  send(QEvent::KeyRelease, Qt::Key_S, PlaceOfS, 1500);
  send(QEvent::KeyPress, Qt::Key_S, PlaceOfS, 1500);
  send(QEvent::KeyRelease, Qt::Key_S, PlaceOfS, 1600);
  EXPECT_EQ(keys, (std::vector{KeyCodes::S}));
  send(QEvent::KeyPress, Qt::Key_S, PlaceOfS, 1700); // pressed again
  send(QEvent::KeyRelease, Qt::Key_S, PlaceOfS, 1800);
  EXPECT_EQ(keys, (std::vector{KeyCodes::S, KeyCodes::S}));

  keys.clear();
  constexpr int CyrillicYeru = 0x42B;
  send(QEvent::KeyPress, CyrillicYeru, PlaceOfS, 2000);
  send(QEvent::KeyPress, Qt::Key_O, PlaceOfS, 2100); // a Latin layout with another letter on that key
  send(QEvent::KeyPress, Qt::Key_AsciiCircum, LeftOfOne, 2200);
  EXPECT_EQ(keys, (std::vector<std::int16_t>{KeyCodes::S, 0, KeyCodes::Tilde}));
  form.machine.Hide(form.window);
}

} // namespace

#include "platform/desktop/canvas_view.h"

#include "platform/desktop/accessible.h"
#include "platform/desktop/desktop_machine.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

namespace {

// Physical key codes under X, independent of the layout.
constexpr quint32 ScanCodeLeftOfOne = 49;
constexpr quint32 ScanCodeOfS = 39;
constexpr std::int16_t LeftButton = 1;
constexpr std::int16_t RightButton = 2;
constexpr std::int16_t MiddleButton = 4;

bool IsLatin(int key) { return key <= Qt::Key_ydiaeresis; }

std::int16_t KeyCodeOf(const QKeyEvent &event) {
  switch (event.key()) {
  case Qt::Key_Escape:
    return KeyCodes::Escape;
  case Qt::Key_Shift:
    return KeyCodes::Shift;
  case Qt::Key_S:
    return KeyCodes::S;
  case Qt::Key_Return:
  case Qt::Key_Enter:
    return KeyCodes::Enter;
  default:
    break;
  }
  // Non-Latin layouts have no "S"; use the key at its physical position.
  if (event.nativeScanCode() == ScanCodeOfS && !IsLatin(event.key())) return KeyCodes::S;
  const bool tilde = event.text() == "~" || event.text() == "`" || event.key() == Qt::Key_AsciiTilde ||
                     event.key() == Qt::Key_QuoteLeft || event.nativeScanCode() == ScanCodeLeftOfOne;
  return tilde ? KeyCodes::Tilde : 0;
}

std::int16_t ButtonOf(Qt::MouseButton button) {
  switch (button) {
  case Qt::LeftButton:
    return LeftButton;
  case Qt::RightButton:
    return RightButton;
  default:
    return MiddleButton;
  }
}

} // namespace

CanvasView::CanvasView(DesktopMachine &machine, Window &window, Canvas &canvas, QWidget &parent)
    : QWidget(&parent), machine_(machine), window_(window), canvas_(canvas) {
  SetAccessibleRole(*this, QAccessible::Canvas);
  setAttribute(Qt::WA_OpaquePaintEvent);
  setFocusPolicy(Qt::StrongFocus);
  setMouseTracking(true);
}

void CanvasView::ShowFrame(const QImage &frame) {
  frame_ = &frame;
  if (isVisible()) repaint();
}

void CanvasView::paintEvent(QPaintEvent *event) {
  QPainter painter(this);
  if (!frame_) {
    painter.fillRect(event->rect(), Qt::black);
  } else {
    // Unscaled: Qt paints a scaled image slowly, even at a factor of 1.
    const double pixel = 1.0 / devicePixelRatioF();
    painter.scale(pixel, pixel);
    painter.drawImage(0, 0, *frame_);
  }
}

bool CanvasView::event(QEvent *event) {
  // Forget presses from before the window lost the keyboard.
  if (event->type() == QEvent::WindowDeactivate) pressed_ = {};
  // The game gets Tab and every shortcut.
  if (event->type() == QEvent::ShortcutOverride) {
    event->accept();
    return true;
  }
  return QWidget::event(event);
}

void CanvasView::keyPressEvent(QKeyEvent *event) {
  const std::int16_t code = KeyCodeOf(*event);
  // A held key repeats as a release and a press with the same time, which Qt doesn't always recognise.
  if (event->isAutoRepeat() || (code == releasedKey_ && event->timestamp() == releasedAt_)) return;
  machine_.Post(window_, [this, code] {
    if (canvas_.KeyDown) canvas_.KeyDown(code, 0);
  });
}

void CanvasView::keyReleaseEvent(QKeyEvent *event) {
  if (event->isAutoRepeat()) return;
  const std::int16_t code = KeyCodeOf(*event);
  releasedKey_ = code;
  releasedAt_ = event->timestamp();
  machine_.Post(window_, [this, code] {
    if (canvas_.KeyUp) canvas_.KeyUp(code, 0);
  });
}

void CanvasView::focusInEvent(QFocusEvent *event) {
  QWidget::focusInEvent(event);
  if (event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason) ReportFocus();
}

void CanvasView::ReportFocus() {
  machine_.Post(window_, [this] {
    if (canvas_.GotFocus) canvas_.GotFocus();
  });
}

void CanvasView::mousePressEvent(QMouseEvent *event) {
  setFocus();
  // The press that activates the window must not shoot.
  if (window_.CapturesPointer && !machine_.PointerHeld()) {
    ReportFocus();
    return;
  }
  pressed_ |= event->button();
  const std::int16_t button = ButtonOf(event->button());
  const QPointF place = event->position();
  machine_.Post(window_, [this, button, place] {
    if (canvas_.MouseDown) {
      canvas_.MouseDown(button, 0, static_cast<float>(place.x()), static_cast<float>(place.y()));
    }
  });
}

void CanvasView::mouseReleaseEvent(QMouseEvent *event) {
  // Ignore the release of a press that wasn't reported.
  const bool reported = pressed_.testFlag(event->button());
  pressed_ &= ~Qt::MouseButtons(event->button());
  if (!reported || (window_.CapturesPointer && !machine_.PointerHeld())) return;
  const std::int16_t button = ButtonOf(event->button());
  const QPointF place = event->position();
  machine_.Post(window_, [this, button, place] {
    if (canvas_.MouseUp)
      canvas_.MouseUp(button, 0, static_cast<float>(place.x()), static_cast<float>(place.y()));
  });
}

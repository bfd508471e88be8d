#include "platform/desktop/pointer.h"

#include <QCursor>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QScreen>

namespace {

constexpr double PointerGrid = 65536.0; ///< steps of the absolute pointer grid on an axis
constexpr int Stray = 60;               ///< logical pixels that the real pointer may go from its anchor

} // namespace

void Pointer::MoveHome(int gridX, int gridY) {
  const QRect screen = QGuiApplication::primaryScreen()->geometry();
  home_ = QPointF(screen.left() + static_cast<int>(gridX * screen.width() / PointerGrid),
                  screen.top() + static_cast<int>(gridY * screen.height() / PointerGrid));
  place_ = home_;
}

void Pointer::Hold(QWidget *widget) {
  if (!hidden_) widget = nullptr;
  if (widget == widget_) return;
  if (widget_) {
    widget_->releaseMouse();
    QGuiApplication::restoreOverrideCursor();
  }
  widget_ = widget;
  place_ = home_;
  if (!widget_) return;
  // Hidden first: a compositor that keeps programs from moving the pointer allows it for a hidden one.
  QGuiApplication::setOverrideCursor(Qt::BlankCursor);
  // A quick motion may leave the window before the pointer is moved back.
  widget_->grabMouse();
  anchor_ = widget_->mapToGlobal(widget_->rect().center());
  real_ = QCursor::pos();
  MoveReal();
}

void Pointer::MoveReal() {
  QCursor::setPos(anchor_);
  returning_ = true;
}

bool Pointer::eventFilter(QObject *, QEvent *event) {
  if (event->type() != QEvent::MouseMove || !widget_ || !event->spontaneous()) return false;
  const QPointF seen = static_cast<QMouseEvent *>(event)->globalPosition();
  if (seen == real_) return false; // the same motion, told to another widget
  const QPointF fromAnchor = seen - anchor_;
  // The game counts what the display counts, whatever the scale of the windows: the hand that moves the
  // pointer so far across the desk turns the aim by the same angle at each.
  const double pixel = widget_->devicePixelRatioF();
  // The motion by which the real pointer was moved back is nobody's; what comes after it counts from the
  // anchor.
  if (returning_ && fromAnchor.manhattanLength() < (seen - real_).manhattanLength()) {
    returning_ = false;
    place_ += fromAnchor * pixel;
  } else {
    place_ += (seen - real_) * pixel;
  }
  real_ = seen;
  if (!returning_ && fromAnchor.manhattanLength() > Stray) MoveReal();
  return false;
}

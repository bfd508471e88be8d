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

void Pointer::Hold(QWidget *window) {
  if (!hidden_) window = nullptr;
  if (window == window_) return;
  if (window_) {
    window_->releaseMouse();
    QGuiApplication::restoreOverrideCursor();
  }
  window_ = window;
  place_ = home_;
  if (!window_) return;
  // Hidden first: a compositor that keeps programs from moving the pointer allows it for a hidden one.
  QGuiApplication::setOverrideCursor(Qt::BlankCursor);
  anchor_ = window_->mapToGlobal(window_->rect().center());
  real_ = QCursor::pos();
  MoveReal();
}

void Pointer::MoveReal() {
  QCursor::setPos(anchor_);
  returning_ = true;
}

bool Pointer::eventFilter(QObject *, QEvent *event) {
  if (event->type() != QEvent::MouseMove || !window_ || !event->spontaneous()) return false;
  const QPointF seen = static_cast<QMouseEvent *>(event)->globalPosition();
  if (seen == real_) return false; // the same motion, told to another widget
  const QPointF fromAnchor = seen - anchor_;
  // The motion by which the real pointer was moved back is nobody's; what comes after it counts from the
  // anchor.
  if (returning_ && fromAnchor.manhattanLength() < (seen - real_).manhattanLength()) {
    returning_ = false;
    place_ += fromAnchor;
  } else {
    place_ += seen - real_;
  }
  real_ = seen;
  if (!returning_ && fromAnchor.manhattanLength() > Stray) MoveReal();
  return false;
}

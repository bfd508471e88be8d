#include "platform/desktop/pointer.h"

#include <QGuiApplication>
#include <QScreen>

namespace {

constexpr double PointerGrid = 65536.0; ///< steps of the absolute pointer grid on an axis

} // namespace

void Pointer::MoveHome(int gridX, int gridY) {
  // The game reads whole pixels. What a slow hand has moved beyond them counts the next time.
  const QPointF fraction = place_ - Place();
  const QRect screen = QGuiApplication::primaryScreen()->geometry();
  home_ = QPointF(screen.left() + static_cast<int>(gridX * screen.width() / PointerGrid),
                  screen.top() + static_cast<int>(gridY * screen.height() / PointerGrid));
  place_ = home_ + fraction;
}

void Pointer::Hold(QWidget *widget) {
  if (!hidden_) widget = nullptr;
  if (widget == widget_ && !(hold_ && hold_->Lost())) return;
  hold_.reset();
  if (widget_) QGuiApplication::restoreOverrideCursor();
  widget_ = widget;
  place_ = home_;
  if (!widget_) return;
  // Hidden first: a compositor that keeps programs from moving the pointer allows it for a hidden one.
  QGuiApplication::setOverrideCursor(Qt::BlankCursor);
  // The game counts what the display counts, whatever the scale of the windows: the hand that moves the
  // pointer so far across the desk turns the aim by the same angle at each.
  hold_ = HoldPointer(*widget_, [this](Dots way) { place_ += QPointF(way.x, way.y); });
}

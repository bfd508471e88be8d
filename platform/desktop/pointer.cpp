#include "platform/desktop/pointer.h"

#include <QGuiApplication>
#include <QScreen>

namespace {

constexpr double PointerGrid = 65536.0; ///< steps of the absolute pointer grid on an axis

} // namespace

void Pointer::MoveHome(int gridX, int gridY) {
  // The game reads whole pixels. The fraction is kept for the next reading.
  const QPointF fraction = place_ - Place();
  if (screen_.isEmpty()) screen_ = QGuiApplication::primaryScreen()->geometry();
  home_ = QPointF(screen_.left() + static_cast<int>(gridX * screen_.width() / PointerGrid),
                  screen_.top() + static_cast<int>(gridY * screen_.height() / PointerGrid));
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
  // Hide it first: some compositors only let programs move a hidden pointer.
  QGuiApplication::setOverrideCursor(Qt::BlankCursor);
  // The motion isn't scaled with the windows, so that the same motion of the hand always turns the aim by the
  // same angle.
  hold_ = HoldPointer(*widget_, [this](Vec2 motion) { place_ += QPointF(motion.x, motion.y); });
}

#include "platform/desktop/pointer_hold.h"

#include <QGuiApplication>
#include <QMouseEvent>

#include <optional>
#include <utility>

namespace {

/// For a display on which programs can neither move nor capture the pointer: uses the differences of its
/// positions over the window.
class PlainHold : public PointerHold, QObject {
public:
  PlainHold(QWidget &over, Moved moved) : moved_(std::move(moved)), pixel_(over.devicePixelRatioF()) {
    qGuiApp->installEventFilter(this);
  }

private:
  bool eventFilter(QObject *, QEvent *event) override {
    if (event->type() == QEvent::Leave) last_.reset();
    if (event->type() != QEvent::MouseMove || !event->spontaneous()) return false;
    const QPointF seen = static_cast<QMouseEvent *>(event)->globalPosition() * pixel_;
    const Vec2 place{seen.x(), seen.y()};
    if (last_ && place != *last_) moved_(place - *last_);
    last_ = place;
    return false;
  }

  Moved moved_;
  double pixel_; ///< device pixels per Qt pixel
  std::optional<Vec2> last_;
};

} // namespace

std::unique_ptr<PointerHold> HoldPointer(QWidget &over, const PointerHold::Moved &moved) {
  if (auto hold = HoldPointerOnWayland(over, moved)) return hold;
  if (auto hold = HoldPointerOnX(over, moved)) return hold;
  return std::make_unique<PlainHold>(over, moved);
}

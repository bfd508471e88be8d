#include "platform/desktop/focus_ring.h"

#include "platform/desktop/canvas_view.h"

#include <QApplication>
#include <QPainter>

namespace {

constexpr int RingWidth = 2; // pixels

} // namespace

FocusRing::FocusRing(QWidget &window, const QColor &color) : QWidget(&window), color_(color) {
  setAttribute(Qt::WA_TransparentForMouseEvents);
  hide();
  connect(qApp, &QApplication::focusChanged, this,
          [this](const QWidget *, const QWidget *focus) { Surround(focus); });
}

void FocusRing::Surround(const QWidget *focus) {
  const bool ours = focus && focus->parentWidget() == parentWidget();
  // A canvas needs no ring: it has the keyboard whenever no box has.
  if (!ours || dynamic_cast<const CanvasView *>(focus)) {
    hide();
    return;
  }
  setGeometry(focus->geometry().adjusted(-RingWidth, -RingWidth, RingWidth, RingWidth));
  raise();
  show();
}

void FocusRing::paintEvent(QPaintEvent *) {
  QPainter painter(this);
  const QRect control = rect().adjusted(RingWidth, RingWidth, -RingWidth, -RingWidth);
  painter.setClipRegion(QRegion(rect()) - QRegion(control));
  painter.fillRect(rect(), color_);
}

#include "platform/desktop/focus_ring.h"

#include "platform/desktop/accessible.h"
#include "platform/desktop/canvas_view.h"

#include <QApplication>
#include <QPainter>

namespace {

// Pixels.
constexpr int RingWidth = 2;
constexpr int EdgeWidth = 1;
constexpr int WholeWidth = RingWidth + EdgeWidth;

} // namespace

FocusRing::FocusRing(QWidget &window, const QColor &color, const QColor &edge)
    : QWidget(&window), color_(color), edge_(edge) {
  SetAccessibleRole(*this, QAccessible::NoRole);
  setAttribute(Qt::WA_TransparentForMouseEvents);
  hide();
  connect(qApp, &QApplication::focusChanged, this,
          [this](const QWidget *, const QWidget *focus) { Surround(focus); });
}

void FocusRing::Surround(const QWidget *focus) {
  const bool ours = focus && focus->parentWidget() == parentWidget();
  // A canvas needs no ring: it has the focus whenever no text box has it.
  if (!ours || dynamic_cast<const CanvasView *>(focus)) {
    hide();
    return;
  }
  setGeometry(focus->geometry().adjusted(-WholeWidth, -WholeWidth, WholeWidth, WholeWidth));
  raise();
  show();
}

void FocusRing::paintEvent(QPaintEvent *) {
  QPainter painter(this);
  const QRect control = rect().adjusted(WholeWidth, WholeWidth, -WholeWidth, -WholeWidth);
  painter.setClipRegion(QRegion(rect()) - QRegion(control));
  painter.fillRect(rect(), edge_);
  painter.fillRect(control.adjusted(-RingWidth, -RingWidth, RingWidth, RingWidth), color_);
}

#include "platform/desktop/painted_views.h"

#include "platform/desktop/accessible.h"

#include <QLinearGradient>
#include <QPaintEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFrame>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace {

/// Percent. The level changes up to 50 times per second; if a screen reader were notified of every change, it
/// would drop announcements.
constexpr int NotifiedSteps = 10;

const QColor TextColor(244, 250, 236);
const QColor GhostColor(255, 225, 77);
const QColor WarningColor(255, 138, 122);
const QColor LitRed(255, 36, 24);

constexpr int TextMargin = 2;   ///< on the left and right of a text box, pixels
constexpr int SmallestText = 9; ///< of a text in two lines, pixels

/// Breaks a text into two lines. Returns whether it fits.
bool BreakInTwo(QTextLayout &layout, int width) {
  layout.beginLayout();
  int lines = 0;
  for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
    line.setLineWidth(width);
    ++lines;
  }
  layout.endLayout();
  return lines <= 2;
}

} // namespace

MeterWidget::MeterWidget(QWidget *parent) : QWidget(parent) {
  SetAccessibleRole(*this, QAccessible::ProgressBar);
}

int MeterWidget::Percent() const { return static_cast<int>(std::lround(face_.Level * 100.0f)); }

void MeterWidget::Show(const Face &face) {
  if (face == face_) return;
  const int before = Percent();
  // If only the level has changed, repaint the bar alone.
  Face standing = face;
  standing.Level = face_.Level;
  const bool levelAlone = standing == face_;
  face_ = face;
  if (Percent() / NotifiedSteps != before / NotifiedSteps) {
    QAccessibleValueChangeEvent event(this, Percent());
    QAccessible::updateAccessibility(&event);
  }
  if (levelAlone) {
    update(0, 0, barWidth_, height());
  } else {
    update();
  }
}

QRect MeterWidget::Inside() const {
  constexpr int Border = 2; // pixels
  return QRect(0, 0, barWidth_, height()).adjusted(Border, Border, -Border, -Border);
}

int MeterWidget::LevelY(float share) const {
  const QRect inside = Inside();
  return inside.bottom() + 1 -
         static_cast<int>(std::lround(std::clamp(share, 0.0f, 1.0f) * static_cast<float>(inside.height())));
}

void MeterWidget::paintEvent(QPaintEvent *event) {
  QPainter painter(this);
  PaintBar(painter);
  if (event->rect().right() >= barWidth_) PaintScale(painter);
}

void MeterWidget::PaintBar(QPainter &painter) const {
  const QRect inside = Inside();
  const auto rows = [&](int from, int to) { return QRect(inside.left(), from, inside.width(), to - from); };
  const int end = inside.bottom() + 1;
  painter.fillRect(QRect(0, 0, barWidth_, height()), QColor(16, 22, 16));
  painter.fillRect(inside, QColor(44, 56, 44));
  QLinearGradient power(inside.bottomLeft(), inside.topLeft());
  power.setColorAt(0.0, QColor(64, 200, 72));
  power.setColorAt(0.55, QColor(244, 220, 64));
  power.setColorAt(1.0, QColor(236, 56, 40));
  painter.fillRect(rows(LevelY(face_.Level), end), power);

  if (face_.CapFrom < 1.0f) {
    const QRect cap = rows(inside.top(), LevelY(face_.CapFrom));
    painter.fillRect(cap, face_.CapLit ? LitRed : QColor(92, 22, 20));
    painter.fillRect(cap,
                     QBrush(face_.CapLit ? QColor(255, 190, 170) : QColor(150, 44, 36), Qt::BDiagPattern));
  }
  for (const ProgressBar::Mark &mark : face_.Scale) {
    const int y = LevelY(mark.Value);
    if (y <= inside.top() || y >= end) continue;
    painter.fillRect(rows(y, y + 1), QColor(0, 0, 0, 120));
    if (mark.Strong) painter.fillRect(rows(y - 1, y + 1), TextColor);
  }
  if (face_.Ghost) {
    const int y = LevelY(*face_.Ghost);
    painter.fillRect(rows(y - 2, y + 2), QColor(16, 22, 16));
    painter.fillRect(rows(y - 1, y + 1), GhostColor);
  }
}

void MeterWidget::PaintScale(QPainter &painter) const {
  // Distances from the bar, pixels.
  constexpr int StrokeFrom = 1, StrokeTo = 6, WordsFrom = 9;
  const int wordsHeight = painter.fontMetrics().height();
  for (const ProgressBar::Mark &mark : face_.Scale) {
    const int y = LevelY(mark.Value);
    const bool atGhost = face_.Ghost && LevelY(*face_.Ghost) == y;
    const bool overTheTop = mark.Value > face_.CapFrom;
    if (atGhost) {
      painter.setRenderHint(QPainter::Antialiasing);
      painter.setPen(Qt::NoPen);
      painter.setBrush(GhostColor);
      const int tip = barWidth_ + StrokeFrom, back = barWidth_ + StrokeTo + 1;
      painter.drawPolygon(QPolygonF({QPointF(tip, y), QPointF(back, y - 5), QPointF(back, y + 5)}));
    } else if (mark.Value > 0.0f && !overTheTop) {
      painter.fillRect(barWidth_ + StrokeFrom, y - (mark.Strong ? 1 : 0), StrokeTo - StrokeFrom,
                       mark.Strong ? 2 : 1, TextColor);
    }
    if (mark.Text.empty()) continue;
    const int left = barWidth_ + (overTheTop ? StrokeFrom + 1 : WordsFrom);
    const int top = std::clamp(y - wordsHeight / 2, 0, height() - wordsHeight);
    const QRect place(left, top, width() - left, wordsHeight);
    const QString words = QString::fromStdString(mark.Text);
    QColor ink = atGhost || mark.Strong ? GhostColor : TextColor;
    if (overTheTop) {
      ink = face_.CapLit ? Qt::white : WarningColor;
      const int wide = painter.fontMetrics().horizontalAdvance(words);
      if (face_.CapLit) painter.fillRect(QRect(left - 1, top, wide + 4, wordsHeight), QColor(176, 16, 10));
    }
    painter.setPen(ink);
    painter.drawText(place, Qt::AlignLeft | Qt::AlignVCenter, words);
  }
}

void TwoLineEdit::paintEvent(QPaintEvent *event) {
  QStyleOptionFrame frame;
  initStyleOption(&frame);
  const QRect place = style()
                          ->subElementRect(QStyle::SE_LineEditContents, &frame, this)
                          .adjusted(TextMargin, 0, -TextMargin, 0);
  if (!isReadOnly() || fontMetrics().horizontalAdvance(text()) <= place.width()) {
    QLineEdit::paintEvent(event);
    return;
  }

  QTextOption wrap(alignment());
  wrap.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  QFont small = font();
  QTextLayout layout(text(), small);
  layout.setTextOption(wrap);
  while (!BreakInTwo(layout, place.width()) && small.pixelSize() > SmallestText) {
    small.setPixelSize(small.pixelSize() - 1);
    layout.setFont(small);
  }
  if (layout.lineCount() < 2) { // only blanks, which hang over the end of a line, are too much
    QLineEdit::paintEvent(event);
    return;
  }
  QPainter painter(this);
  style()->drawPrimitive(QStyle::PE_PanelLineEdit, &frame, &painter, this);
  painter.setPen(palette().color(QPalette::Text));
  const QTextLine first = layout.lineAt(0), second = layout.lineAt(1);
  const QString rest = text().mid(second.textStart());
  painter.setFont(small);
  const int middle = place.center().y() + 1;
  const int pitch = place.height() / 2;
  const QFontMetrics metrics(small);
  const auto write = [&](const QString &words, int lineMiddle) {
    painter.drawText(place.left(), lineMiddle + (metrics.ascent() - metrics.descent()) / 2, words);
  };
  write(text().mid(first.textStart(), first.textLength()), middle - pitch / 2);
  write(metrics.elidedText(rest, Qt::ElideRight, place.width()), middle + (pitch + 1) / 2);
}

LineWidget::LineWidget(QWidget *parent) : QWidget(parent) { SetAccessibleRole(*this, QAccessible::NoRole); }

void LineWidget::paintEvent(QPaintEvent *) {
  QPainter painter(this);
  painter.setPen(palette().color(QPalette::WindowText));
  painter.drawLine(0, 0, width() - 1, height() - 1);
}

ShapeWidget::ShapeWidget(QWidget *parent) : QWidget(parent) {
  SetAccessibleRole(*this, QAccessible::NoRole);
  setAttribute(Qt::WA_TransparentForMouseEvents);
}

void ShapeWidget::paintEvent(QPaintEvent *) {
  QPainter painter(this);
  painter.setPen(palette().color(QPalette::WindowText));
  painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

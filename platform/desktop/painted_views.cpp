#include "platform/desktop/painted_views.h"

#include <QLinearGradient>
#include <QPainter>

#include <algorithm>
#include <cmath>

void MeterWidget::SetLevel(float level) {
  level = std::clamp(level, 0.0f, 1.0f);
  if (level == level_) return;
  level_ = level;
  update();
}

void MeterWidget::paintEvent(QPaintEvent *) {
  constexpr int Marks = 10; // tenths of the full power
  constexpr int Border = 2; // pixels
  QPainter painter(this);
  const QRect inside = rect().adjusted(Border, Border, -Border, -Border);
  painter.fillRect(rect(), QColor(16, 22, 16));
  painter.fillRect(inside, QColor(44, 56, 44));
  QLinearGradient power(inside.bottomLeft(), inside.topLeft());
  power.setColorAt(0.0, QColor(64, 200, 72));
  power.setColorAt(0.55, QColor(244, 220, 64));
  power.setColorAt(1.0, QColor(236, 56, 40));
  const int filled = static_cast<int>(std::lround(level_ * static_cast<float>(inside.height())));
  painter.fillRect(QRect(inside.left(), inside.bottom() + 1 - filled, inside.width(), filled), power);
  painter.setPen(QColor(0, 0, 0, 120));
  for (int mark = 1; mark < Marks; ++mark) {
    const int y = inside.bottom() + 1 - inside.height() * mark / Marks;
    painter.drawLine(inside.left(), y, inside.right(), y);
  }
}

void LineWidget::paintEvent(QPaintEvent *) {
  QPainter painter(this);
  painter.setPen(palette().color(QPalette::WindowText));
  painter.drawLine(0, 0, width() - 1, height() - 1);
}

ShapeWidget::ShapeWidget(QWidget *parent) : QWidget(parent) {
  setAttribute(Qt::WA_TransparentForMouseEvents);
}

void ShapeWidget::paintEvent(QPaintEvent *) {
  QPainter painter(this);
  painter.setPen(palette().color(QPalette::WindowText));
  painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

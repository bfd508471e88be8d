#pragma once

// Widgets that the toolkit doesn't have: the power meter, a line, an empty rectangle.

#include <QWidget>

/// A vertical meter that fills from below, green to yellow to red.
class MeterWidget : public QWidget {
public:
  using QWidget::QWidget;

  /// 0 empty to 1 full.
  void SetLevel(float level);

protected:
  void paintEvent(QPaintEvent *event) override;

private:
  float level_ = 0;
};

class LineWidget : public QWidget {
public:
  using QWidget::QWidget;

protected:
  void paintEvent(QPaintEvent *event) override;
};

class ShapeWidget : public QWidget {
public:
  explicit ShapeWidget(QWidget *parent);

protected:
  void paintEvent(QPaintEvent *event) override;
};

#pragma once

// Shows which control has the keyboard: the toolkit's own mark is hardly seen on the game's backgrounds.

#include <QWidget>

/// A ring around the control of a window that has the keyboard.
class FocusRing : public QWidget {
public:
  /// @param color  one that stands out from the window's ground
  /// @param edge   one that stands out from the ring, for where it crosses letters or another control
  FocusRing(QWidget &window, const QColor &color, const QColor &edge);

protected:
  void paintEvent(QPaintEvent *event) override;

private:
  void Surround(const QWidget *focus);

  QColor color_, edge_;
};

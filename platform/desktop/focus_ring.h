#pragma once

// Shows which control has the keyboard focus, because the toolkit's own mark is hardly visible on the game's
// backgrounds.

#include <QWidget>

/// A ring around the focused control of a window.
class FocusRing : public QWidget {
public:
  /// @param color  one that contrasts with the window's background
  /// @param edge   one that contrasts with the ring, where it crosses text or another control
  FocusRing(QWidget &window, const QColor &color, const QColor &edge);

protected:
  void paintEvent(QPaintEvent *event) override;

private:
  void Surround(const QWidget *focus);

  QColor color_, edge_;
};

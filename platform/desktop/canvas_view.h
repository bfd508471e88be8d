#pragma once

// The widget of a canvas: shows the last drawn frame, and reports keys and buttons.

#include "platform/controls.h"

#include <QImage>
#include <QWidget>

class DesktopMachine;

class CanvasView : public QWidget {
public:
  CanvasView(DesktopMachine &machine, Window &window, Canvas &canvas, QWidget &parent);

  /// Shows a frame at once. The image isn't copied: it must outlive the widget, and after a change of the
  /// image this must be called again.
  void ShowFrame(const QImage &frame);

protected:
  void paintEvent(QPaintEvent *event) override;
  void keyPressEvent(QKeyEvent *event) override;
  void keyReleaseEvent(QKeyEvent *event) override;
  void focusInEvent(QFocusEvent *event) override;
  void mousePressEvent(QMouseEvent *event) override;
  void mouseReleaseEvent(QMouseEvent *event) override;
  bool event(QEvent *event) override;

private:
  void ReportFocus();

  DesktopMachine &machine_;
  Window &window_;
  Canvas &canvas_;
  const QImage *frame_ = nullptr;
  std::int16_t releasedKey_ = 0; ///< the last released key, and its time on the display's clock
  quint64 releasedAt_ = 0;
  Qt::MouseButtons pressed_; ///< buttons whose press was reported to the game
};

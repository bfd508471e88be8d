#pragma once

// The widget of a canvas: shows the picture that was drawn last, and tells of keys and buttons.

#include "platform/controls.h"

#include <QImage>
#include <QWidget>

class DesktopMachine;

class CanvasView : public QWidget {
public:
  CanvasView(DesktopMachine &machine, Window &window, Canvas &canvas, QWidget &parent);

  /// Shows a picture at once. It is kept by reference: nobody may change it before the next call.
  void ShowPicture(const QImage &picture);

protected:
  void paintEvent(QPaintEvent *event) override;
  void keyPressEvent(QKeyEvent *event) override;
  void keyReleaseEvent(QKeyEvent *event) override;
  void mousePressEvent(QMouseEvent *event) override;
  void mouseReleaseEvent(QMouseEvent *event) override;
  bool event(QEvent *event) override;

private:
  DesktopMachine &machine_;
  Window &window_;
  Canvas &canvas_;
  QImage picture_;
  std::int16_t releasedKey_ = 0; ///< the key let go of last, and when by the display's clock
  quint64 releasedAt_ = 0;
  Qt::MouseButtons pressed_; ///< buttons whose press was told to the game
};

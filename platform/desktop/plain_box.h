#pragma once

// A message box for screens on which Qt can open windows but has nothing to paint with: those of 8 bits and
// a palette.

#include "platform/machine.h"

#include <QImage>
#include <QWindow>

#include <functional>

class PlainBox : public QWindow {
public:
  /// Whether the screen is such a one.
  static bool Needed();

  /// @param answered  called once, from inside Qt, when the user has pressed OK or closed the box
  PlainBox(const MessageBox &box, std::function<void()> answered);

protected:
  void exposeEvent(QExposeEvent *event) override;
  void keyPressEvent(QKeyEvent *event) override;
  void mouseReleaseEvent(QMouseEvent *event) override;
  bool event(QEvent *event) override;

private:
  void Answer();

  std::function<void()> answered_;
  QImage picture_; ///< one bit a pixel: 0 the screen's white, 1 its black
  QRect button_;
};

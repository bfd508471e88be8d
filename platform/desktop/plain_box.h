#pragma once

// A message box for 8-bit palette screens, on which Qt can open windows but can't paint.

#include "platform/machine.h"

#include <QImage>
#include <QWindow>

#include <functional>

class PlainBox : public QWindow {
public:
  /// Whether the screen is one of these.
  static bool Needed();

  /// @param answered  called once, from inside Qt, when the user presses OK or closes the box
  PlainBox(const MessageBox &box, std::function<void()> answered);

protected:
  void exposeEvent(QExposeEvent *event) override;
  void keyPressEvent(QKeyEvent *event) override;
  void mouseReleaseEvent(QMouseEvent *event) override;
  bool event(QEvent *event) override;

private:
  void Answer();

  std::function<void()> answered_;
  QImage image_; ///< one bit per pixel: 0 white, 1 black
  QRect button_;
};

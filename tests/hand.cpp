#include "tests/hand.h"

#include <X11/extensions/XTest.h>

void MoveHand(int right, int down) {
  static Display *const display = XOpenDisplay(nullptr);
  XTestFakeRelativeMotionEvent(display, right, down, CurrentTime);
  XSync(display, False);
}

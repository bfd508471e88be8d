#include "tests/hand.h"

#include <X11/extensions/XTest.h>

#include <cstdio>
#include <cstdlib>

void MoveHand(int right, int down) {
  // On Wayland the virtual mouse must be another program; this variable names it.
  if (const char *mouse = std::getenv("SNAPWEDGE_HAND")) {
    static FILE *const commands = popen(mouse, "w");
    std::fprintf(commands, "by %d %d\n", right, down);
    std::fflush(commands);
    return;
  }
  static Display *const display = XOpenDisplay(nullptr);
  XTestFakeRelativeMotionEvent(display, right, down, CurrentTime);
  XSync(display, False);
}

#include "tools/playthrough/launch.h"

#include <X11/keysym.h>

::Window OpenLaunchWindow(Seat &seat) {
  const ::Window launch = seat.WaitFor("Snapwedge V1.0 -");
  Pause(Milliseconds(400));
  return launch;
}

void ClickSpot(Seat &seat, ::Window launch, const Spot &spot) {
  constexpr int TwipsPerPixel = 15;
  seat.Click(launch, spot.X / TwipsPerPixel, spot.Y / TwipsPerPixel);
}

void EnterRounds(Seat &seat, ::Window launch, const std::string &rounds) {
  ClickSpot(seat, launch, Spots::Rounds);
  seat.Press(XK_End);
  seat.Press(XK_BackSpace);
  seat.Press(XK_BackSpace);
  seat.Type(rounds);
}

void CloseLaunchWindow(Seat &seat) {
  seat.Key(XK_Alt_L, true);
  seat.Press(XK_F4);
  seat.Key(XK_Alt_L, false);
}

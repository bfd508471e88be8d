#include "platform/desktop/window_scale.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr QSizeF PlayWindow(639, 478); // client area, design pixels
// The frame is unknown before there is a window. Title bars are 20 to 37 pixels high, scaled by the desktop's
// factor.
constexpr QSizeF Frame(10, 40);
constexpr double ShareOfFreeArea = 0.9;
constexpr double Step = 0.5, SmallStep = 0.25;

/// The largest factor at which the window fits.
double LargestFactor(QSizeF room) {
  return std::min(room.width() / PlayWindow.width(), room.height() / PlayWindow.height());
}

double RoundedDown(double factor, double step) { return std::floor(factor / step) * step; }

} // namespace

double WindowScale(QSizeF freeArea, double ownFactor) {
  const QSizeF frame = Frame * ownFactor;
  const double most = LargestFactor(freeArea - frame);
  const double own = ownFactor <= most ? ownFactor : RoundedDown(most, SmallStep);
  return std::max({1.0, own, RoundedDown(LargestFactor(freeArea * ShareOfFreeArea - frame), Step)});
}

#include "platform/desktop/window_scale.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr QSizeF PlayWindow(639, 478); // client area, design pixels
// The frame is unknown before there is a window. Title bars are 20 to 37 pixels high, scaled by the desktop's
// factor.
constexpr QSizeF Frame(10, 40);
constexpr double ShareOfFreeArea = 0.9;
constexpr double Step = 0.5;

} // namespace

double WindowScale(QSizeF freeArea, double ownFactor) {
  const QSizeF room = freeArea * ShareOfFreeArea - Frame * ownFactor;
  const double fits = std::min(room.width() / PlayWindow.width(), room.height() / PlayWindow.height());
  return std::max(ownFactor, std::floor(fits / Step) * Step);
}

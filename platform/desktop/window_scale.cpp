#include "platform/desktop/window_scale.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr QSizeF PlayWindow(639, 478); // client area, pixels of the design
// No program learns its frame before it has a window. Title bars are 20 to 37 pixels high, and the desktop
// scales them by its own factor.
constexpr QSizeF Frame(10, 40);
constexpr double ShareOfFreeArea = 0.9;
constexpr double Step = 0.5;

} // namespace

double WindowScale(QSizeF freeArea, double ownFactor) {
  const QSizeF room = freeArea * ShareOfFreeArea - Frame * ownFactor;
  const double fits = std::min(room.width() / PlayWindow.width(), room.height() / PlayWindow.height());
  return std::max(ownFactor, std::floor(fits / Step) * Step);
}

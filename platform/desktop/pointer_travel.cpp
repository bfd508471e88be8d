#include "platform/desktop/pointer_travel.h"

#include <cmath>

Vec2 PointerTravel::Reported(int id, Device device, Vec2 values) {
  if (device == Device::Relative) return values;
  reports_[id] = {device, values};
  return {};
}

Vec2 PointerTravel::Moved(int id, Vec2 place) {
  const auto report = reports_.extract(id);
  if (!report) return {}; // by a program, or already reported
  const auto &[device, values] = report.mapped();
  const bool isAbsolute = std::abs(values.x - place.x) < 1 && std::abs(values.y - place.y) < 1;
  if (device == Device::Mixed && !isAbsolute) return values;
  Vec2 &last = places_.try_emplace(id, begin_).first->second;
  const Vec2 motion = place - last;
  last = place;
  return motion;
}

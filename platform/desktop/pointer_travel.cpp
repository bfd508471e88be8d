#include "platform/desktop/pointer_travel.h"

#include <cmath>

Dots PointerTravel::Reported(int id, Device device, Dots values) {
  if (device == Device::Relative) return values;
  reports_[id] = {device, values};
  return {};
}

Dots PointerTravel::Moved(int id, Dots place) {
  const auto report = reports_.extract(id);
  if (!report) return {}; // by a program, or already reported
  const auto &[device, values] = report.mapped();
  const bool isAbsolute = std::abs(values.x - place.x) < 1 && std::abs(values.y - place.y) < 1;
  if (device == Device::Mixed && !isAbsolute) return values;
  Dots &last = places_.try_emplace(id, begin_).first->second;
  const Dots way = place - last;
  last = place;
  return way;
}

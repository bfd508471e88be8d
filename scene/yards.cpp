#include "scene/yards.h"

#include <cmath>

std::string InYards(float distance) {
  constexpr long Whole = 100; ///< tenths of a yard, from which there is no decimal
  const long tenths = std::lround(distance / UnitsPerYard * 10.0f);
  if (tenths >= Whole) return std::to_string(std::lround(distance / UnitsPerYard));
  return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10);
}

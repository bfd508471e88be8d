#pragma once

#include <algorithm>
#include <vector>

/// The middle value; of an even number of values the larger of the two in the middle. Needs at least one.
inline double Median(std::vector<double> values) {
  std::ranges::sort(values);
  return values[values.size() / 2];
}

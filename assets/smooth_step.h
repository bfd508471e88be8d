#pragma once

#include <algorithm>

/// 0 below `from`, 1 above `to`, smooth between.
inline double SmoothStep(double from, double to, double value) {
  const double share = std::clamp((value - from) / (to - from), 0.0, 1.0);
  return share * share * (3.0 - 2.0 * share);
}

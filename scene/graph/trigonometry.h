#pragma once

// Sine and cosine as a fixed sequence of IEEE operations. Library implementations differ in the last bit, so
// two computers that replay a shot would diverge.

#include <cmath>

namespace graph {

struct SineCosine {
  double Sine;
  double Cosine;
};

/// For an angle in radians. The error is about 1e-15 up to a million; beyond that the result is still a
/// direction and the same everywhere.
inline SineCosine SineAndCosine(double angle) {
  constexpr double Reach = 1e6;
  constexpr double FullTurn = 6.28318530717958647693;
  constexpr double QuarterTurns = 0.63661977236758134308; ///< 2 / pi
  // pi / 2 as a sum: the first term has trailing zeros, so that its product with a small integer is exact.
  constexpr double HalfPiHigh = 1.57079632673412561417;
  constexpr double HalfPiLow = 6.07710050650619224932e-11;
  // fmod is exact, so every library gives the same.
  if (std::abs(angle) > Reach) angle = std::fmod(angle, FullTurn);
  const double turns = std::floor(angle * QuarterTurns + 0.5);
  const double x = (angle - turns * HalfPiHigh) - turns * HalfPiLow;
  const double square = x * x;
  // Taylor series up to degree 17 and 16, smallest term first.
  double sine = 0.0;
  for (int n = 17; n >= 3; n -= 2) sine = (1.0 - sine) * square / (n * (n - 1));
  sine = x * (1.0 - sine);
  double cosine = 0.0;
  for (int n = 16; n >= 2; n -= 2) cosine = (1.0 - cosine) * square / (n * (n - 1));
  cosine = 1.0 - cosine;
  switch (static_cast<int>(turns - 4.0 * std::floor(turns / 4.0))) {
  case 0:
    return {sine, cosine};
  case 1:
    return {cosine, -sine};
  case 2:
    return {-sine, -cosine};
  default:
    return {-cosine, sine};
  }
}

} // namespace graph

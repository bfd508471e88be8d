#pragma once

// Arithmetic on the game's 32-bit floats: computed in double, rounded once. Since there is no other rounding,
// two computers agree to the bit.

inline float Sum(double a, double b) { return static_cast<float>(a + b); }
inline float Difference(double a, double b) { return static_cast<float>(a - b); }
inline float Quotient(double a, double b) { return static_cast<float>(a / b); }

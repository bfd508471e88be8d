#pragma once

// Arithmetic of the game's 32-bit floats: formed in double, rounded once. Two computers agree to the bit
// because no other rounding ever happens.

inline float Sum(double a, double b) { return static_cast<float>(a + b); }
inline float Difference(double a, double b) { return static_cast<float>(a - b); }
inline float Quotient(double a, double b) { return static_cast<float>(a / b); }

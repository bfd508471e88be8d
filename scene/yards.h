#pragma once

// Distances in yards of the field. Its painted lines are 10 yards apart.

#include <string>

constexpr float UnitsPerYard = 10.0f / 6.0f; ///< scene units

/// A distance in yards as text: with one decimal below 10 yards, else whole.
/// @param distance  scene units, 0 or more
std::string InYards(float distance);

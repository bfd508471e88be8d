#pragma once

// The field's own measure. Its lines are painted 10 yards apart, and what the window tells in yards can be
// counted on the table.

#include <string>

constexpr float UnitsPerYard = 10.0f / 6.0f; ///< scene units

/// A distance as the window writes it: in whole yards, below ten of them with one decimal.
/// @param distance  scene units, 0 or more
std::string InYards(float distance);

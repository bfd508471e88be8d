#pragma once

// Block letters and digits made of strokes, like those painted on a field.

#include "shapes.h"

#include <string_view>

/// Layout of a line of letters. The baseline runs along `right`.
struct Lettering {
  Point origin; ///< left end of the baseline
  Point right;  ///< unit vector along the line
  Point up;     ///< unit vector, upward on a letter
  double width = 1.0, height = 1.0, gap = 0.3, stroke = 0.2;
};

/// Width from the left edge of the first letter to the right edge of the last.
double LineLength(std::string_view text, const Lettering &lettering);

/// Adds the letters as flat strokes with the given normal.
/// @throws std::invalid_argument  for a letter without a shape
void AddLetters(Mesh &mesh, std::string_view text, const Lettering &lettering, const Point &normal,
                const Paint &paint);

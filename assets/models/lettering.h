#pragma once

// Block letters and digits made of strokes, as they are painted on a field.

#include "shapes.h"

#include <string>
#include <string_view>

/// How a line of letters is laid out. Letters stand on a baseline that runs along `right`.
struct Lettering {
  Point origin; ///< left end of the baseline
  Point right;  ///< unit vector along the line
  Point up;     ///< unit vector from a letter's foot to its head
  double width = 1.0, height = 1.0, gap = 0.3, stroke = 0.2;
};

/// Length of the line from the first letter's left to the last one's right edge.
double LineLength(std::string_view text, const Lettering &lettering);

/// Adds the letters as flat strokes with the given normal.
/// @throws std::invalid_argument  for a letter that there is no shape for
void AddLetters(Mesh &mesh, std::string_view text, const Lettering &lettering, const Point &normal,
                const Paint &paint);

#pragma once

// Words in the game's typeface, as in the title of the launch window.

#include "shapes.h"

#include <string_view>

/// Position and style of a word.
struct Title {
  Point middle; ///< of its baseline
  Point right;  ///< unit vector along the line
  Point up;     ///< unit vector, upward on a letter
  Point normal;
  double cap = 1.0;     ///< height of the capitals
  double stretch = 1.0; ///< widening of the letters
  double pen = 2.4;     ///< width of the strokes, in ninths of `cap`
  Paint head, foot;     ///< at the height of the capitals and on the baseline
  int parts = 2;        ///< straight parts of a rounded corner, and of a stroke's round end
};

/// Width from the left edge of the first letter to the right edge of the last.
double TitleLength(std::string_view word, const Title &title);

/// @throws std::invalid_argument  for a character missing in the typeface
void AddTitle(Mesh &mesh, std::string_view word, const Title &title);

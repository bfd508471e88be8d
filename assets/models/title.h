#pragma once

// Words in the game's own typeface, as on the title of the launch window.

#include "shapes.h"

#include <string_view>

/// Where a word stands and how it is drawn.
struct Title {
  Point middle; ///< of its baseline
  Point right;  ///< unit vector along the line
  Point up;     ///< unit vector from a letter's foot to its head
  Point normal;
  double cap = 1.0;     ///< height of the capitals
  double stretch = 1.0; ///< widening of the letters
  double pen = 2.4;     ///< width of the strokes, in ninths of `cap`
  Paint head, foot;     ///< at the height of the capitals and on the baseline
};

/// Length of the word from the first letter's left to the last one's right edge.
double TitleLength(std::string_view word, const Title &title);

/// @throws std::invalid_argument  for a character that the typeface doesn't have
void AddTitle(Mesh &mesh, std::string_view word, const Title &title);

#pragma once

// The game's typeface as skeletons: the centre lines of its letters, to be drawn with a pen of any width.
// One set serves the titles (fat pen), the texts (thin pen) and the newspapers (wide flat pen).
//
// Letters are on a grid with y up: baseline 0, small letters 6 high, capitals 9 high, descenders to -3.
// Stems are at integers, so that at one pixel per unit they align with pixels.

#include <vector>

constexpr double SmallHeight = 6.0;
constexpr double CapitalHeight = 9.0;
constexpr double DescenderDepth = 3.0;

struct GlyphPoint {
  double x = 0.0, y = 0.0;
  bool round = false; ///< the corner at this point is rounded off
};

struct GlyphLine {
  bool closed = false;
  std::vector<GlyphPoint> points;
};

struct Glyph {
  double advance = 0.0; ///< from this letter's origin to the next one's
  double radius = 2.0;  ///< of rounded corners; shorter where a side is shorter
  std::vector<GlyphLine> lines;
  std::vector<GlyphPoint> dots;
};

/// @throws std::invalid_argument  for a character missing in the typeface
const Glyph &GlyphOf(char character);

#include "glyphs.h"

#include <map>
#include <sstream>
#include <stdexcept>
#include <string>

namespace {

/// The notation of a letter: M starts a line, L continues to a sharp corner, R to a round one, Z closes the
/// line, D is a dot.
struct Drawing {
  char character;
  double advance;
  double radius;
  const char *strokes;
};

constexpr Drawing Drawings[] = {
    {' ', 4, 0, ""},
    {'a', 7, 2, "M0 6 R4 6 L4 0 M4 3 R0 3 R0 0 L4 0"},
    {'b', 7, 2, "M0 9 L0 0 M0 3 R0 6 R4 6 R4 0 R0 0 L0 3"},
    {'c', 6, 2, "M4 4.5 R4 6 R0 6 R0 0 R4 0 L4 1.5"},
    {'d', 7, 2, "M4 9 L4 0 M4 3 R4 6 R0 6 R0 0 R4 0 L4 3"},
    {'e', 7, 2, "M0 3 L4 3 R4 6 R0 6 R0 0 R4 0 L4 1"},
    {'f', 5, 2, "M1 0 L1 7 R1 9 L3.6 9 M-0.4 6 L3.2 6"},
    {'g', 7, 2, "M4 6 L4 -1 R4 -3 L0.3 -3 M4 3 R4 6 R0 6 R0 0 R4 0 L4 3"},
    {'h', 7, 2, "M0 9 L0 0 M0 4 R0 6 R4 6 L4 0"},
    {'i', 3, 2, "M0 6 L0 0 D0 8.8"},
    {'j', 4, 2, "M1 6 L1 -1 R1 -3 L-0.8 -3 D1 8.8"},
    {'k', 6, 2, "M0 9 L0 0 M3.8 6 L0.2 2.4 M1.4 3.6 L4 0"},
    {'l', 3, 2, "M0 9 L0 0"},
    {'m', 11, 2, "M0 6 L0 0 M0 4 R0 6 R4 6 L4 0 M4 4 R4 6 R8 6 L8 0"},
    {'n', 7, 2, "M0 6 L0 0 M0 4 R0 6 R4 6 L4 0"},
    {'o', 7, 2, "R0 0 R0 6 R4 6 R4 0 Z"},
    {'p', 7, 2, "M0 6 L0 -3 M0 3 R0 6 R4 6 R4 0 R0 0 L0 3"},
    {'q', 7, 2, "M4 6 L4 -3 M4 3 R4 6 R0 6 R0 0 R4 0 L4 3"},
    {'r', 5, 2, "M0 6 L0 0 M0 3.6 R0 6 L2.8 6"},
    {'s', 7, 2, "M4 5 R4 6 R0 6 R0 3 R4 3 R4 0 R0 0 L0 1"},
    {'t', 5, 2, "M1 8.4 L1 2 R1 0 L3.2 0 M-0.4 6 L3.2 6"},
    {'u', 7, 2, "M0 6 L0 2 R0 0 R4 0 L4 2 M4 6 L4 0"},
    {'v', 6, 2, "M-0.3 6 L2 0 L4.3 6"},
    {'w', 10, 2, "M-0.2 6 L1.9 0 L4 6 L6.1 0 L8.2 6"},
    {'x', 6, 2, "M0 6 L4 0 M0 0 L4 6"},
    {'y', 6, 2, "M-0.3 6 L2.05 0 M4.3 6 L1.5 -1.6 R1 -3 L-0.6 -3"},
    {'z', 6, 2, "M0.2 6 L4 6 L0 0 L4.2 0"},
    {'A', 8, 2, "M-0.2 0 L2.7 9 L3.3 9 L6.2 0 M1 3 L5 3"},
    {'B', 8, 2.4, "M0 0 L0 9 R4.7 9 R4.7 5 L0 5 M2 5 R5 5 R5 0 L0 0"},
    {'C', 7.5, 2.6, "M5 7 R5 9 R0 9 R0 0 R5 0 L5 2"},
    {'D', 8, 3, "M0 0 L0 9 R5 9 R5 0 Z"},
    {'E', 7, 2, "M4.4 9 L0 9 L0 0 L4.4 0 M0 5 L3.8 5"},
    {'F', 6.5, 2, "M4.4 9 L0 9 L0 0 M0 5 L3.8 5"},
    {'G', 8, 2.6, "M5 7 R5 9 R0 9 R0 0 R5 0 L5 4 L2.8 4"},
    {'H', 8, 2, "M0 0 L0 9 M5 0 L5 9 M0 5 L5 5"},
    {'I', 3, 2, "M0 0 L0 9"},
    {'J', 7, 2.4, "M4 9 L4 2 R4 0 R0 0 L0 2"},
    {'K', 7.5, 2, "M0 0 L0 9 M4.8 9 L0.2 3.6 M1.8 5.4 L5 0"},
    {'L', 6.5, 2, "M0 9 L0 0 L4.2 0"},
    {'M', 10, 2, "M0 0 L0 9 L0.4 9 L3.5 2.5 L6.6 9 L7 9 L7 0"},
    {'N', 8, 2, "M0 0 L0 9 L0.4 9 L4.6 0 L5 0 L5 9"},
    {'O', 8, 2.6, "R0 0 R0 9 R5 9 R5 0 Z"},
    {'P', 7.5, 2.5, "M0 0 L0 9 R5 9 R5 4 L0 4"},
    {'Q', 8, 2.6, "R0 0 R0 9 R5 9 R5 0 Z M3 2.4 L5.6 -0.8"},
    {'R', 8, 2.5, "M0 0 L0 9 R5 9 R5 4 L0 4 M2.6 4 L5.2 0"},
    {'S', 8, 2.4, "M5 7.4 R5 9 R0 9 R0 5 R5 5 R5 0 R0 0 L0 1.6"},
    {'T', 7, 2, "M-0.4 9 L5.4 9 M2.5 9 L2.5 0"},
    {'U', 8, 2.6, "M0 9 L0 3 R0 0 R5 0 L5 9"},
    {'V', 7.5, 2, "M-0.2 9 L2.6 0 L3.2 0 L6 9"},
    {'W', 11, 2, "M-0.2 9 L2 0 L2.5 0 L4.5 8 L6.5 0 L7 0 L9.2 9"},
    {'X', 7.5, 2, "M0 9 L5.2 0 M0 0 L5.2 9"},
    {'Y', 7.5, 2, "M-0.2 9 L2.7 4.2 L5.6 9 M2.7 4.2 L2.7 0"},
    {'Z', 7.5, 2, "M0.2 9 L5 9 L0 0 L5.2 0"},
    {'0', 7, 2, "R0 0 R0 9 R4 9 R4 0 Z"},
    {'1', 7, 2, "M0.4 7.4 L2 9 L2.3 9 L2.3 0"},
    {'2', 7, 2, "M0 7.2 R0 9 R4 9 R4 5 L0 0 L4.2 0"},
    {'3', 7, 2, "M0 7.6 R0 9 R4 9 R4 5 L1.4 5 M1.4 5 R4 5 R4 0 R0 0 L0 1.4"},
    {'4', 7, 2, "M3 0 L3 9 L2.7 9 L-0.4 3 L4.6 3"},
    {'5', 7, 2, "M3.8 9 L0 9 L0 5 R4 5 R4 0 R0 0 L0 1.4"},
    {'6', 7, 2, "M4 7.8 R4 9 R0 9 R0 0 R4 0 R4 5 R0 5 L0 3"},
    {'7', 7, 2, "M0 9 L4 9 L1.4 0"},
    {'8', 7, 2, "R0.2 5 R0.2 9 R3.8 9 R3.8 5 Z R0 0 R0 5 R4 5 R4 0 Z"},
    {'9', 7, 2, "M0 1.2 R0 0 R4 0 R4 9 R0 9 R0 4 R4 4 L4 6"},
    {'.', 3, 2, "D0 0.1"},
    {',', 3, 2, "M0.3 0.4 L-0.5 -1.9"},
    {':', 3, 2, "D0 0.1 D0 5.2"},
    {';', 3, 2, "M0.3 0.4 L-0.5 -1.9 D0 5.2"},
    {'!', 5, 2, "M1 9 L1 2.9 D1 0.1"},
    {'?', 6.5, 2, "M0 7.4 R0 9 R4 9 R4 5 R1.8 5 L1.8 2.9 D1.8 0.1"},
    {'\'', 3, 2, "M0 9 L0 7"},
    {'"', 5, 2, "M0 9 L0 7 M2 9 L2 7"},
    {'-', 5.5, 2, "M0 3.4 L2.8 3.4"},
    {'~', 8, 1.2, "M0 3 R0 5 R2.5 5 R2.5 3 R5 3 L5 5"},
    {'(', 4, 2, "M2 10 R0 7.6 R0 0.4 L2 -2"},
    {')', 5, 2, "M0 10 R2 7.6 R2 0.4 L0 -2"},
    {'/', 6, 2, "M0 -1 L3.6 10"},
    {'&', 8, 1.8, "M5.2 3 R3.4 0 R0 0 R0 4.6 L3.6 6 R3.6 9 R0.5 9 R0.5 6 L5.4 0"},
    {'+', 7, 2, "M0 4 L4 4 M2 6 L2 2"},
    {'%', 8, 1.2, "R0 6 R0 9 R2 9 R2 6 Z R4 0 R4 3 R6 3 R6 0 Z M0.5 0 L5.5 9"},
    {'$', 7, 2, "M4 6.8 R4 8 R0 8 R0 4.6 R4 4.6 R4 1 R0 1 L0 2.2 M2 9.6 L2 -0.6"},
    {'*', 5, 1, "M1.6 9 L1.6 6 M0.2 8.3 L3 6.7 M3 8.3 L0.2 6.7"},
};

Glyph Read(const Drawing &drawing) {
  Glyph glyph;
  glyph.advance = drawing.advance;
  glyph.radius = drawing.radius;
  std::istringstream strokes(drawing.strokes);
  bool closed = true;
  for (char command = 0; strokes >> command;) {
    if (command == 'Z') {
      glyph.lines.back().closed = closed = true;
      continue;
    }
    GlyphPoint point;
    strokes >> point.x >> point.y;
    point.round = command == 'R';
    if (command == 'D') {
      glyph.dots.push_back(point);
      continue;
    }
    if (command == 'M' || closed) glyph.lines.emplace_back();
    closed = false;
    glyph.lines.back().points.push_back(point);
  }
  return glyph;
}

} // namespace

const Glyph &GlyphOf(char character) {
  static const std::map<char, Glyph> glyphs = [] {
    std::map<char, Glyph> all;
    for (const Drawing &drawing : Drawings) all.emplace(drawing.character, Read(drawing));
    return all;
  }();
  const auto found = glyphs.find(character);
  if (found == glyphs.end()) {
    throw std::invalid_argument(std::string("the typeface has no character \"") + character + "\"");
  }
  return found->second;
}

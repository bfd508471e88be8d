#pragma once

// Sets a text into its box: breaks it into lines, aligns them, and writes the letters as SVG paths.

#include "markup.h"

#include <string>

/// The SVG of a `<lettering>` element. Its content is the text; an empty line starts a new paragraph, and
/// words between asterisks take the accent ink. Its attributes:
///
/// - x, y, width, height: the box, pixels; y is the top of the first line's capitals
/// - lines: maximum number of lines, unlimited by default
/// - cap: height of the capitals, pixels
/// - stretch: horizontal scale of the letters, 1 by default
/// - pen: width of vertical strokes in ninths of cap; contrast: their width relative to horizontal strokes
/// - space: added between letters, in the same units
/// - leading: line height, gap: added between paragraphs, both in pixels
/// - align: "left", "center", "right" or "justify"
/// - ends: "round" or "square" ends and corners of strokes
/// - serif: half the length of the slabs at the ends of vertical strokes, none by default
/// - ink, accent: colours
/// - snap: "1" aligns each letter with pixels, for small texts
/// - silent: "1" for letters that are part of the drawing, like those on a key, which screen readers skip
///
/// @throws std::invalid_argument  if the text doesn't fit into the box, or a character has no shape
std::string SetLettering(const Element &element);

/// The element's text without the marks for accents and hyphenation.
std::string PlainWords(const Element &element);

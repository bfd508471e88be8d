#pragma once

// Sets a text into its box: breaks it into lines, aligns them, and writes the letters as SVG paths.

#include "markup.h"

#include <string>

/// The SVG of a `<lettering>` element. Its content is the text; an empty line starts a new paragraph, and
/// words between asterisks take the accent ink. Its attributes:
///
/// - x, y, width, height: the box, pixels; y is the top of the first line's capitals
/// - lines: how many the text may take, any number unless told
/// - cap: height of the capitals, pixels
/// - stretch: widening of the letters, 1 unless told
/// - pen: width of upright strokes in units of a ninth of cap; contrast: how many times wider than level
/// strokes
/// - space: added between letters, in the same units
/// - leading: from line to line, gap: added between paragraphs, both in pixels
/// - align: "left", "center", "right" or "justify"
/// - ends: "round" or "square" ends and corners of strokes
/// - serif: half the length of the slabs at the ends of upright strokes, none unless told
/// - ink, accent: colours
/// - snap: "1" puts each letter on whole pixels, for small texts
/// - silent: "1" for letters that are part of the drawing, like a key's: no screen reader is told of them
///
/// @throws std::invalid_argument  if the text doesn't fit into the box, or a character has no shape
std::string SetLettering(const Element &element);

/// The element's text without the marks for accents and hyphenation.
std::string PlainWords(const Element &element);

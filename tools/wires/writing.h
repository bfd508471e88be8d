#pragma once

// Comparison of texts on the screen by their pixels, to check whether two screens show the same text.

#include "tools/playthrough/seat.h"

/// The letters of a line, cropped, white on black. Empty if there are none.
Image WritingOn(const Image &line);

/// The last word of a line.
Image LastWord(const Image &writing);

/// The beginning of a line, of the width of another one.
Image BeginningOf(const Image &writing, const Image &asWideAs);

/// Whether two lines have the same letters; false if they are empty.
bool SameLetters(const Image &a, const Image &b);

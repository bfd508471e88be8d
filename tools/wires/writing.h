#pragma once

// What is written on a piece of the screen, told by its pixels alone: enough to see whether two screens say
// the same.

#include "tools/playthrough/seat.h"

/// The letters of a line without the rim around them, white on black. Nothing if the line is empty.
Image WritingOn(const Image &line);

/// The last word of a writing.
Image LastWord(const Image &writing);

/// The beginning of a writing that is as wide as another one.
Image BeginningOf(const Image &writing, const Image &asWideAs);

/// Whether two writings are the same letters; not if nothing is written.
bool SameLetters(const Image &a, const Image &b);

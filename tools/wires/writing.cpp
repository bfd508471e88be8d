#include "tools/wires/writing.h"

#include <algorithm>
#include <cstdlib>

namespace {

constexpr Pixel Ink{255, 255, 255};
constexpr Pixel Paper{0, 0, 0};
constexpr int FaintestInk = 60; ///< contrast below which there is no text
constexpr int Blank = 3;        ///< empty columns between words

bool IsInk(const Image &image, int x, int y) { return image.At(x, y).Green != 0; }

bool ColumnHasInk(const Image &image, int x) {
  for (int y = 0; y < image.Height; ++y) {
    if (IsInk(image, x, y)) return true;
  }
  return false;
}

bool RowHasInk(const Image &image, int y) {
  for (int x = 0; x < image.Width; ++x) {
    if (IsInk(image, x, y)) return true;
  }
  return false;
}

Image Part(const Image &image, int left, int top, int right, int bottom) {
  Image part{right - left, bottom - top, {}};
  for (int y = top; y < bottom; ++y) {
    for (int x = left; x < right; ++x) part.Pixels.push_back(image.At(x, y));
  }
  return part;
}

Image Trimmed(const Image &image) {
  int left = 0, top = 0, right = image.Width, bottom = image.Height;
  while (left < right && !ColumnHasInk(image, left)) ++left;
  while (right > left && !ColumnHasInk(image, right - 1)) --right;
  while (top < bottom && !RowHasInk(image, top)) ++top;
  while (bottom > top && !RowHasInk(image, bottom - 1)) --bottom;
  return left == right ? Image() : Part(image, left, top, right, bottom);
}

} // namespace

Image WritingOn(const Image &line) {
  if (line.Pixels.empty()) return {};
  // Most pixels are background, and the letters differ most from it.
  std::vector<int> shades;
  for (const Pixel &pixel : line.Pixels) shades.push_back(pixel.Green);
  std::ranges::sort(shades);
  const int paper = shades[shades.size() / 2];
  const int contrast = std::max(paper - shades.front(), shades.back() - paper);
  if (contrast < FaintestInk) return {};
  Image writing = line;
  for (Pixel &pixel : writing.Pixels) pixel = 2 * std::abs(pixel.Green - paper) > contrast ? Ink : Paper;
  return Trimmed(writing);
}

Image LastWord(const Image &writing) {
  int left = writing.Width;
  for (int empty = 0; left > 0 && empty < Blank; --left)
    empty = ColumnHasInk(writing, left - 1) ? 0 : empty + 1;
  return Trimmed(Part(writing, left, 0, writing.Width, writing.Height));
}

Image BeginningOf(const Image &writing, const Image &asWideAs) {
  return Trimmed(Part(writing, 0, 0, std::min(writing.Width, asWideAs.Width), writing.Height));
}

bool SameLetters(const Image &a, const Image &b) {
  constexpr double OtherPixels = 0.05 * 255; // tolerance for a shaded background
  return a.Width > 0 && a.Width == b.Width && a.Height == b.Height && MeanDifference(a, b) < OtherPixels;
}

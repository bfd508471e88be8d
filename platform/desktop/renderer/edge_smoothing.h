#pragma once

// Smooths the stairs of a frame that has one sample a pixel: where neighbours differ, a pixel is mixed with
// those along the edge that runs through it. The processor does it, as it draws everything else where one
// sample is all that there is time for: most pixels need a comparison only, and what is as in the last frame
// needs nothing.

#include <QImage>

#include <cstdint>
#include <vector>

class EdgeSmoothing {
public:
  explicit EdgeSmoothing(QSize size);

  /// The next frame as drawn, Format_RGB32, to be filled.
  QImage &Drawn() { return drawn_; }

  /// Smooths what has changed since the last call. The outermost pixels, `Reach` from the rim, stay as drawn.
  /// @param smooth  of the same size and format, its rows without gaps; holds the last frame, smoothed
  /// @return whether anything has changed
  bool Update(QImage &smooth);

private:
  /// Pixels of a row: from the first to before the end.
  struct Span {
    int First = 0, End = 0;
    bool Empty() const { return First >= End; }
    void Widen(const Span &other);
  };
  Span Changed(int row);
  void SmoothRow(int row, const Span &span, std::uint32_t *to) const;

  static constexpr int Reach = 3; ///< how far a pixel's colour is carried, pixels

  QImage drawn_, last_;
  std::vector<std::uint8_t> brightness_; ///< of the pixels of `drawn_`
};

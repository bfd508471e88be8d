#pragma once

// Antialiasing of a frame with one sample a pixel: where neighbours differ, a pixel is blended with others
// along the edge. It runs on the processor, which skips pixels without an edge and rows without a change; a
// shader under software OpenGL would do the whole work for every pixel.

#include <QImage>

#include <cstdint>
#include <vector>

class EdgeSmoothing {
public:
  explicit EdgeSmoothing(QSize size);

  /// The buffer for the next frame as drawn, Format_RGB32.
  QImage &Drawn() { return drawn_; }

  /// Smooths the pixels that have changed since the last call. A border of `Reach` pixels isn't smoothed.
  /// @param smooth  of the same size and format, without padding; holds the last frame, smoothed
  /// @return whether anything has changed
  bool Update(QImage &smooth);

private:
  /// A half-open range of columns.
  struct Span {
    int First = 0, End = 0;
    bool Empty() const { return First >= End; }
    void Widen(const Span &other);
  };
  Span Changed(int row);
  void SmoothRow(int row, const Span &span, std::uint32_t *to) const;

  static constexpr int Reach = 3; ///< filter radius, pixels

  QImage drawn_, last_;
  std::vector<std::uint8_t> brightness_; ///< of the pixels of `drawn_`
};

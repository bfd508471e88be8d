#pragma once

// An image to paint a texture on. It wraps around at the edges.

#include <cstdint>
#include <filesystem>
#include <vector>

namespace textures {

/// A colour, channels from 0 to 1.
struct Paint {
  double r = 0, g = 0, b = 0;
};

inline Paint Mix(const Paint &a, const Paint &b, double share) {
  return {a.r + (b.r - a.r) * share, a.g + (b.g - a.g) * share, a.b + (b.b - a.b) * share};
}

/// A hash in [0, 1), the same on every machine.
double Hash(std::uint32_t x, std::uint32_t y, std::uint32_t seed);

/// Smooth noise from 0 to 1 with a period of `cells` cells on both axes; (u, v) from 0 to 1 is the whole
/// image.
double Noise(double u, double v, int cells, std::uint32_t seed);

/// Fractal noise from 0 to 1: several octaves, each of half the amplitude.
double Cloud(double u, double v, int cells, int layers, std::uint32_t seed);

class Canvas {
public:
  explicit Canvas(int size)
      : size_(size), pixels_(static_cast<std::size_t>(size) * static_cast<std::size_t>(size)) {}

  /// A pixel, top row first; coordinates wrap around.
  Paint &At(int x, int y);

  /// A soft-edged ellipse; middle and radii in pixels.
  void Blob(double x, double y, double rx, double ry, const Paint &paint, double strength = 1.0);

  /// Half as wide and high: each pixel is the mean of four.
  Canvas Halved();

  /// Writes an uncompressed bitmap of 24 bits.
  void Write(const std::filesystem::path &file) const;

private:
  int size_;
  std::vector<Paint> pixels_;
};

Canvas Grass();
Canvas Sky();
Canvas Crowd();
Canvas Paper();

} // namespace textures

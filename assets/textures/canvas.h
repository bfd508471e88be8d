#pragma once

// A picture to paint a texture on. Everything on it repeats at its edges.

#include <cstdint>
#include <filesystem>
#include <vector>

namespace textures {

/// A colour, parts from 0 to 1.
struct Paint {
  double r = 0, g = 0, b = 0;
};

inline Paint Mix(const Paint &a, const Paint &b, double share) {
  return {a.r + (b.r - a.r) * share, a.g + (b.g - a.g) * share, a.b + (b.b - a.b) * share};
}

/// Same for the same numbers on every machine, 0 to below 1.
double Hash(std::uint32_t x, std::uint32_t y, std::uint32_t seed);

/// Smooth noise that repeats after `cells` cells on either axis; (u, v) of 0 to 1 is the whole picture. 0
/// to 1.
double Noise(double u, double v, int cells, std::uint32_t seed);

/// Several layers of it, each twice as fine and half as strong. 0 to 1.
double Cloud(double u, double v, int cells, int layers, std::uint32_t seed);

/// 0 below `low`, 1 above `high`, smooth between.
double Step(double low, double high, double value);

class Canvas {
public:
  explicit Canvas(int size)
      : size_(size), pixels_(static_cast<std::size_t>(size) * static_cast<std::size_t>(size)) {}
  int Size() const { return size_; }

  /// A pixel, top row first; places beyond an edge are those at the other.
  Paint &At(int x, int y);

  /// A soft-edged ellipse; middle and radii in pixels.
  void Blob(double x, double y, double rx, double ry, const Paint &paint, double strength = 1.0);

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

#include "assets/textures/canvas.h"

#include "assets/smooth_step.h"

#define STB_IMAGE_WRITE_IMPLEMENTATION
#include <stb/stb_image_write.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <stdexcept>

namespace textures {

double Hash(std::uint32_t x, std::uint32_t y, std::uint32_t seed) {
  std::uint32_t h = x * 374761393U + y * 668265263U + seed * 2246822519U;
  h = (h ^ (h >> 13U)) * 1274126177U;
  h ^= h >> 16U;
  return static_cast<double>(h >> 8U) / 16777216.0;
}

double Noise(double u, double v, int cells, std::uint32_t seed) {
  const double x = u * cells, y = v * cells;
  const double left = std::floor(x), top = std::floor(y);
  const double fx = SmoothStep(0, 1, x - left), fy = SmoothStep(0, 1, y - top);
  const auto corner = [&](int dx, int dy) {
    const auto wrap = [&](double at) {
      return static_cast<std::uint32_t>((static_cast<int>(at) % cells + cells) % cells);
    };
    return Hash(wrap(left + dx), wrap(top + dy), seed);
  };
  const double upper = corner(0, 0) + (corner(1, 0) - corner(0, 0)) * fx;
  const double lower = corner(0, 1) + (corner(1, 1) - corner(0, 1)) * fx;
  return upper + (lower - upper) * fy;
}

double Cloud(double u, double v, int cells, int layers, std::uint32_t seed) {
  double sum = 0, weight = 1, whole = 0;
  for (int layer = 0; layer < layers; ++layer) {
    sum += weight * Noise(u, v, cells << layer, seed + static_cast<std::uint32_t>(layer));
    whole += weight;
    weight *= 0.5;
  }
  return sum / whole;
}

Paint &Canvas::At(int x, int y) {
  const auto wrap = [&](int at) { return static_cast<std::size_t>((at % size_ + size_) % size_); };
  return pixels_[wrap(y) * static_cast<std::size_t>(size_) + wrap(x)];
}

void Canvas::Blob(double x, double y, double rx, double ry, const Paint &paint, double strength) {
  for (int py = static_cast<int>(std::floor(y - ry - 1)); py <= static_cast<int>(std::ceil(y + ry + 1));
       ++py) {
    for (int px = static_cast<int>(std::floor(x - rx - 1)); px <= static_cast<int>(std::ceil(x + rx + 1));
         ++px) {
      const double away = std::hypot((px - x) / rx, (py - y) / ry);
      const double edge = 1.0 / std::min(rx, ry);
      At(px, py) = Mix(At(px, py), paint, strength * (1 - SmoothStep(1 - edge, 1 + edge * 0.3, away)));
    }
  }
}

Canvas Canvas::Halved() {
  Canvas half(size_ / 2);
  for (int y = 0; y < half.size_; ++y) {
    for (int x = 0; x < half.size_; ++x) {
      const Paint above = Mix(At(2 * x, 2 * y), At(2 * x + 1, 2 * y), 0.5);
      const Paint below = Mix(At(2 * x, 2 * y + 1), At(2 * x + 1, 2 * y + 1), 0.5);
      half.At(x, y) = Mix(above, below, 0.5);
    }
  }
  return half;
}

void Canvas::Write(const std::filesystem::path &file) const {
  std::vector<unsigned char> bytes;
  for (const Paint &paint : pixels_) {
    for (const double part : {paint.r, paint.g, paint.b})
      bytes.push_back(static_cast<unsigned char>(std::lround(std::clamp(part, 0.0, 1.0) * 255)));
  }
  // Through a stream, because stbi_write_bmp doesn't notice a full disk.
  std::ofstream stream(file, std::ios::binary);
  const auto write = [](void *to, void *data, int size) {
    static_cast<std::ofstream *>(to)->write(static_cast<const char *>(data), size);
  };
  stbi_write_bmp_to_func(write, &stream, size_, size_, 3, bytes.data());
  if (!stream.flush()) throw std::runtime_error("can't write " + file.string());
}

} // namespace textures

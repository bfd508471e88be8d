// The four textures, as they lie on their meshes.

#include "assets/textures/canvas.h"

#include <algorithm>
#include <cmath>

namespace textures {
namespace {

constexpr double Pi = 3.14159265358979323846;

/// Runs over all pixels with their place, 0 to 1 on either axis.
template <class Painter> Canvas Painted(int size, Painter painter) {
  Canvas canvas(size);
  for (int y = 0; y < size; ++y) {
    for (int x = 0; x < size; ++x) {
      canvas.At(x, y) = painter((x + 0.5) / size, (y + 0.5) / size, x, y);
    }
  }
  return canvas;
}

} // namespace

Canvas Grass() {
  // One repeat is 33 scene units: two mown stripes across the field.
  constexpr Paint Light{0.40, 0.70, 0.29}, Dark{0.28, 0.58, 0.24}, Dry{0.56, 0.68, 0.32};
  return Painted(512, [&](double u, double v, int x, int y) {
    const double stripe = Step(-0.09, 0.09, std::sin(2 * Pi * v));
    Paint paint = Mix(Dark, Light, stripe);
    paint = Mix(paint, Dry, 0.16 * Step(0.55, 0.85, Cloud(u, v, 5, 3, 3)));
    // Blades, leaning the way that the mower went.
    const double blade =
        Hash(static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y) / 3U, stripe > 0.5 ? 1 : 2);
    const double grain = 0.86 + 0.2 * blade + 0.12 * (Cloud(u, v, 24, 3, 9) - 0.5);
    return Paint{paint.r * grain, paint.g * grain, paint.b * grain};
  });
}

Canvas Sky() {
  // One repeat is 333 scene units of the sky over the stadium.
  constexpr Paint Lilac{0.70, 0.60, 0.88}, Rose{0.92, 0.74, 0.86}, Peach{1.0, 0.86, 0.76},
      White{1.0, 0.985, 0.97}, Under{0.80, 0.70, 0.86};
  return Painted(1024, [&](double u, double v, int, int) {
    Paint paint = Mix(Lilac, Rose, Cloud(u, v, 2, 2, 40));
    const double wander = 0.05 * Cloud(u, v, 4, 3, 60);
    const double cumulus = Cloud(u + wander, v + wander, 4, 6, 21);
    const double cover = Step(0.50, 0.66, cumulus);
    // The side of a cloud that looks to the light is peach and white, the other one lilac.
    const double lit = Step(-0.05, 0.06, cumulus - Cloud(u + wander - 0.016, v + wander - 0.02, 4, 6, 21));
    const Paint cloud = Mix(Mix(Under, Peach, lit), White, 0.75 * lit * Step(0.56, 0.74, cumulus));
    return Mix(paint, cloud, 0.92 * cover);
  });
}

Canvas Crowd() {
  // One repeat is 100 scene units of the stands, seen from above: rows of people in mixed colours.
  constexpr int Size = 1024, Rows = 40, Seats = 64;
  constexpr Paint Shirts[] = {{0.86, 0.26, 0.22}, {0.95, 0.78, 0.22}, {0.24, 0.48, 0.84}, {0.96, 0.94, 0.90},
                              {0.50, 0.32, 0.72}, {0.92, 0.50, 0.20}, {0.28, 0.66, 0.40}, {0.80, 0.30, 0.56},
                              {0.20, 0.24, 0.36}, {0.93, 0.86, 0.70}};
  constexpr Paint Skins[] = {{0.98, 0.80, 0.64}, {0.88, 0.66, 0.48}, {0.62, 0.42, 0.28}, {0.42, 0.28, 0.18}};
  constexpr Paint Hairs[] = {
      {0.16, 0.10, 0.08}, {0.40, 0.24, 0.12}, {0.86, 0.72, 0.40}, {0.93, 0.30, 0.24}, {0.96, 0.96, 0.94}};
  Canvas canvas = Painted(Size, [](double u, double v, int, int) {
    const double step = std::abs(v * Rows - std::floor(v * Rows) - 0.5) * 2;
    const double shade = 0.30 + 0.10 * step + 0.05 * Noise(u, v, 64, 4);
    return Paint{shade, shade * 0.92, shade * 1.12};
  });
  constexpr double Pitch = static_cast<double>(Size) / Rows, Place = static_cast<double>(Size) / Seats;
  for (int row = 0; row < Rows; ++row) {
    for (int seat = 0; seat < Seats; ++seat) {
      const auto draw = [&](std::uint32_t what) {
        return Hash(static_cast<std::uint32_t>(seat), static_cast<std::uint32_t>(row), what);
      };
      if (draw(1) < 0.06) continue; // an empty seat
      const double x = (seat + 0.5 + 0.28 * (draw(2) - 0.5) + (row % 2) * 0.5) * Place;
      const double y = (row + 0.5 + 0.24 * (draw(3) - 0.5)) * Pitch;
      // Friends come in the same colour.
      const double taste = 0.55 * Noise((seat + 0.5) / Seats, (row + 0.5) / Rows, 9, 70) + 0.45 * draw(4);
      const Paint &shirt = Shirts[static_cast<std::size_t>(taste * 9.999)];
      const Paint &skin = Skins[static_cast<std::size_t>(draw(5) * draw(5) * 3.999)];
      const Paint &hair = Hairs[static_cast<std::size_t>(draw(6) * 4.999)];
      canvas.Blob(x + 1.2, y + 4.6, 7.2, 8.4, {0.12, 0.10, 0.18}, 0.5);
      canvas.Blob(x, y + 3.0, 6.6, 7.4, shirt);
      if (draw(7) < 0.3) {
        canvas.Blob(x - 6.4, y - 3.5, 2.1, 4.2, skin);
        canvas.Blob(x + 6.4, y - 3.5, 2.1, 4.2, skin);
      }
      canvas.Blob(x, y - 4.2, 4.3, 4.6, skin);
      canvas.Blob(x, y - 6.0, 4.3, 3.2, hair);
    }
  }
  return canvas;
}

Canvas Paper() {
  // One repeat is five scene units of a sheet of ruled paper, laid over the folded piece at a slant.
  constexpr Paint White{0.995, 0.985, 0.955}, Rule{0.42, 0.62, 0.90}, Margin{0.92, 0.36, 0.36},
      Pencil{0.36, 0.36, 0.42};
  constexpr int Rules = 4;
  Canvas canvas = Painted(512, [&](double u, double v, int, int) {
    const double fibre = 0.975 + 0.04 * (Cloud(u, v, 16, 4, 5) - 0.5);
    Paint paint{White.r * fibre, White.g * fibre, White.b * fibre};
    const double line = std::abs(v * Rules - std::floor(v * Rules) - 0.5) / Rules;
    paint = Mix(paint, Rule, 0.9 * (1 - Step(0.010, 0.016, line)));
    paint = Mix(paint, Margin, 0.9 * (1 - Step(0.009, 0.015, std::abs(u - 0.16))));
    return paint;
  });
  // A face that somebody drew during a lesson.
  const auto stroke = [&](double x, double y) { canvas.Blob(x, y, 4.2, 4.2, Pencil, 0.8); };
  for (double turn = 0; turn < 2 * Pi; turn += 0.02)
    stroke(330 + 60 * std::cos(turn), 250 + 60 * std::sin(turn));
  for (double turn = 0.4; turn < Pi - 0.4; turn += 0.02)
    stroke(330 + 36 * std::cos(turn), 254 + 34 * std::sin(turn));
  for (const double eye : {-20.0, 20.0}) {
    for (double y = -6; y < 6; y += 1) stroke(330 + eye, 232 + y);
  }
  return canvas;
}

} // namespace textures

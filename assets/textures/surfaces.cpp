// The four textures, as they lie on their meshes.

#include "assets/textures/canvas.h"

#include <algorithm>
#include <cmath>
#include <vector>

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

/// Round heaps: 1 in the middle of a heap, falling to 0 halfway to the next. Repeats after `cells` heaps.
double Puffs(double u, double v, int cells, std::uint32_t seed) {
  const double x = u * cells, y = v * cells;
  const int left = static_cast<int>(std::floor(x)), top = static_cast<int>(std::floor(y));
  double nearest = 2;
  for (int row = top - 1; row <= top + 1; ++row) {
    for (int column = left - 1; column <= left + 1; ++column) {
      const auto wrap = [&](int at) { return static_cast<std::uint32_t>((at % cells + cells) % cells); };
      const double dx = column + Hash(wrap(column), wrap(row), seed) - x;
      const double dy = row + Hash(wrap(column), wrap(row), seed + 500) - y;
      nearest = std::min(nearest, dx * dx + dy * dy);
    }
  }
  return 1 - std::min(1.0, std::sqrt(nearest));
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
  // One repeat is 333 scene units of the sky over the stadium: heaps of cloud in the light of a low sun.
  constexpr int Size = 1024;
  constexpr Paint Lilac{0.66, 0.58, 0.90}, Rose{0.90, 0.72, 0.86}, Peach{1.0, 0.83, 0.70},
      White{1.0, 0.985, 0.95}, Under{0.78, 0.66, 0.85};
  constexpr double Cover = 0.505; // density from which on there is cloud
  std::vector<double> density;
  density.reserve(static_cast<std::size_t>(Size) * Size);
  for (int y = 0; y < Size; ++y) {
    for (int x = 0; x < Size; ++x) {
      const double u = (x + 0.5) / Size, v = (y + 0.5) / Size;
      const double wu = u + 0.05 * (Noise(u, v, 6, 61) - 0.5), wv = v + 0.05 * (Noise(u, v, 6, 62) - 0.5);
      const double puffs = 0.6 * Puffs(wu, wv, 7, 31) + 0.4 * Puffs(wu, wv, 15, 32);
      density.push_back(0.74 * Cloud(wu, wv, 3, 6, 21) + 0.26 * puffs);
    }
  }
  const auto at = [&](int x, int y) {
    const auto wrap = [](int place) { return static_cast<std::size_t>((place % Size + Size) % Size); };
    return density[wrap(y) * Size + wrap(x)];
  };
  return Painted(Size, [&](double u, double v, int x, int y) {
    const Paint clear = Mix(Lilac, Rose, Step(0.25, 0.75, Cloud(u, v, 3, 3, 40)));
    const double here = at(x, y);
    const double cover = Step(Cover - 0.02, Cover + 0.07, here);
    // The side of a heap that looks to the sun is peach and white, its thick middle lilac.
    const double lit =
        Step(-0.10, 0.14, here - at(x - 20, y - 26)) * (1 - 0.3 * Step(Cover + 0.12, Cover + 0.26, here));
    const Paint cloud = Mix(Mix(Under, Peach, Step(0.05, 0.65, lit)), White, Step(0.45, 0.95, lit));
    return Mix(clear, cloud, 0.95 * cover);
  });
}

Canvas Crowd() {
  // One repeat is 100 scene units of the stands, seen from above: rows of people in mixed colours.
  constexpr int Size = 1024, Rows = 48, Seats = 68;
  constexpr Paint Shirts[] = {{0.86, 0.26, 0.22}, {0.95, 0.78, 0.22}, {0.24, 0.48, 0.84}, {0.96, 0.94, 0.90},
                              {0.50, 0.32, 0.72}, {0.92, 0.50, 0.20}, {0.28, 0.66, 0.40}, {0.80, 0.30, 0.56},
                              {0.20, 0.24, 0.36}, {0.93, 0.86, 0.70}};
  constexpr Paint Skins[] = {{0.98, 0.80, 0.64}, {0.88, 0.66, 0.48}, {0.62, 0.42, 0.28}, {0.42, 0.28, 0.18}};
  constexpr Paint Hairs[] = {
      {0.16, 0.10, 0.08}, {0.40, 0.24, 0.12}, {0.86, 0.72, 0.40}, {0.93, 0.30, 0.24}, {0.96, 0.96, 0.94}};
  Canvas canvas = Painted(Size, [](double u, double v, int, int) {
    const double step = std::abs(v * Rows - std::floor(v * Rows) - 0.5) * 2;
    const double shade = 0.22 + 0.10 * step + 0.05 * Noise(u, v, 64, 4);
    return Paint{shade, shade * 0.92, shade * 1.12};
  });
  constexpr double Pitch = static_cast<double>(Size) / Rows, Place = static_cast<double>(Size) / Seats;
  for (int row = 0; row < Rows; ++row) {
    for (int seat = 0; seat < Seats; ++seat) {
      const auto draw = [&](std::uint32_t what) {
        return Hash(static_cast<std::uint32_t>(seat), static_cast<std::uint32_t>(row), what);
      };
      if (draw(1) < 0.04) continue; // an empty seat
      const double x = (seat + 0.5 + 0.28 * (draw(2) - 0.5) + (row % 2) * 0.5) * Place;
      const double y = (row + 0.5 + 0.24 * (draw(3) - 0.5)) * Pitch;
      // Friends come in the same colour.
      const double taste = 0.55 * Noise((seat + 0.5) / Seats, (row + 0.5) / Rows, 9, 70) + 0.45 * draw(4);
      const Paint &shirt = Shirts[static_cast<std::size_t>(taste * 9.999)];
      const Paint &skin = Skins[static_cast<std::size_t>(draw(5) * draw(5) * 3.999)];
      const Paint &hair = Hairs[static_cast<std::size_t>(draw(6) * 4.999)];
      canvas.Blob(x + 1.2, y + 4.6, 7.6, 8.4, {0.10, 0.08, 0.16}, 0.6);
      canvas.Blob(x, y + 7.0, 5.2, 4.6, {shirt.r * 0.62, shirt.g * 0.62, shirt.b * 0.68});
      canvas.Blob(x, y + 2.6, 6.4, 5.8, shirt);
      if (draw(7) < 0.3) {
        canvas.Blob(x - 6.4, y - 3.5, 2.1, 4.2, skin);
        canvas.Blob(x + 6.4, y - 3.5, 2.1, 4.2, skin);
      }
      canvas.Blob(x, y - 5.2, 3.7, 4.0, skin);
      canvas.Blob(x, y - 7.4, 3.7, 2.2, hair);
    }
  }
  return canvas;
}

Canvas Paper() {
  // The sheet lies over the folded piece at a slant: u runs along p, the direction of the piece's left leg,
  // and v against q, that of its right leg, shortened by the slant. Places below are told in the piece's own
  // x and z.
  constexpr int Size = 512, Rules = 12;
  constexpr double Scale = 0.19, Top = 0.34; // repeats to the unit; height of the piece's top
  const double alongP = Scale, alongQ = -Scale / std::sqrt(3.0), alongY = 2 * Scale / std::sqrt(6.0);
  constexpr double MarginU = 0.86; // falls once on the piece, near its middle
  constexpr Paint White{0.985, 0.975, 0.945}, Rule{0.40, 0.60, 0.92}, Margin{0.93, 0.33, 0.36},
      Pencil{0.26, 0.26, 0.33};
  Canvas canvas = Painted(Size, [&](double u, double v, int, int) {
    const double fibre = 0.97 + 0.05 * (Cloud(u, v, 16, 4, 5) - 0.5);
    Paint paint{White.r * fibre, White.g * fibre, White.b * fibre};
    const double rule = std::abs(v * Rules - std::floor(v * Rules) - 0.5) / Rules;
    paint = Mix(paint, Rule, 0.85 * (1 - Step(0.0050, 0.0095, rule)));
    for (const double margin : {MarginU, MarginU + 0.045})
      paint = Mix(paint, Margin, 0.9 * (1 - Step(0.006, 0.011, std::abs(u - margin))));
    return paint;
  });

  // What somebody drew during a lesson: a face and a star. A pencil's line wavers in place and strength.
  int dots = 0;
  const auto dot = [&](double x, double z) {
    const double p = (x - z) / std::sqrt(2.0), q = (x + z) / std::sqrt(2.0);
    const double u = alongP * p, v = alongQ * q + alongY * Top;
    const double strength = 0.55 + 0.3 * Hash(static_cast<std::uint32_t>(++dots), 0, 77);
    canvas.Blob(u * Size, v * Size, 0.055 * alongP * Size, -0.055 * alongQ * Size, Pencil, strength);
  };
  const auto line = [&](double x0, double z0, double x1, double z1) {
    for (double share = 0; share <= 1; share += 0.02) {
      const double waver = 0.03 * std::sin(share * 9 + x0);
      dot(x0 + (x1 - x0) * share + waver, z0 + (z1 - z0) * share - waver);
    }
  };
  const auto arc = [&](double x, double z, double radius, double from, double to) {
    for (double turn = from; turn < to; turn += 0.03)
      dot(x + radius * std::cos(turn), z + radius * (1 + 0.05 * std::sin(3 * turn)) * std::sin(turn));
  };
  constexpr double FaceX = -1.75, FaceZ = 1.15;
  arc(FaceX, FaceZ, 0.82, 0, 2 * Pi + 0.2);
  arc(FaceX, FaceZ + 0.02, 0.50, 0.35, Pi - 0.35);
  line(FaceX - 0.27, FaceZ - 0.34, FaceX - 0.25, FaceZ - 0.12);
  line(FaceX + 0.27, FaceZ - 0.34, FaceX + 0.25, FaceZ - 0.12);
  constexpr double StarX = 2.35, StarZ = 1.45, StarReach = 0.62;
  for (int i = 0; i < 5; ++i) {
    const double from = Pi * 0.8 * i - Pi / 2, to = Pi * 0.8 * (i + 1) - Pi / 2;
    line(StarX + StarReach * std::cos(from), StarZ + StarReach * std::sin(from),
         StarX + StarReach * std::cos(to), StarZ + StarReach * std::sin(to));
  }
  return canvas;
}

} // namespace textures

// The four textures.

#include "assets/smooth_step.h"
#include "assets/textures/canvas.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace textures {
namespace {

using std::numbers::pi;

/// Visits all pixels with their coordinates, 0 to 1 on both axes.
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
  constexpr int Size = 1024;
  constexpr std::uint32_t Blades = 90000;
  constexpr Paint Light{0.43, 0.73, 0.30}, Dark{0.27, 0.57, 0.24}, Dry{0.56, 0.68, 0.32};
  // Overlapping blades that lean in the direction of mowing. Lower ones are darker.
  std::vector<double> grain(static_cast<std::size_t>(Size) * Size, 0.80);
  for (std::uint32_t blade = 0; blade < Blades; ++blade) {
    double x = Size * Hash(blade, 1, 11), y = Size * Hash(blade, 2, 11);
    const double lean = 0.9 * (Hash(blade, 3, 11) - 0.5), bright = 0.84 + 0.24 * Hash(blade, 4, 11);
    const double length = 9 + 12 * Hash(blade, 5, 11);
    const double way = std::sin(2 * pi * y / Size) > 0 ? 1 : -1;
    for (double step = 0; step < length; step += 1) {
      const double share = step / length; // from base to tip
      const int left = static_cast<int>(std::floor(x));
      for (int px = left - 1; px <= left + 2; ++px) {
        const double cover = 1 - SmoothStep(0.5, 1.5 - 0.5 * share, std::abs(px + 0.5 - x));
        const auto wrap = [](int place) { return static_cast<std::size_t>((place % Size + Size) % Size); };
        double &at = grain[wrap(static_cast<int>(std::floor(y))) * Size + wrap(px)];
        at += (bright * (0.90 + 0.14 * share) - at) * cover;
      }
      x += lean;
      y -= way;
    }
  }
  return Painted(Size, [&](double u, double v, int x, int y) {
    const double stripe = SmoothStep(-0.09, 0.09, std::sin(2 * pi * v));
    Paint paint = Mix(Dark, Light, stripe);
    paint = Mix(paint, Dry, 0.16 * SmoothStep(0.55, 0.85, Cloud(u, v, 5, 3, 3)));
    const double here = grain[static_cast<std::size_t>(y) * Size + static_cast<std::size_t>(x)] +
                        0.10 * (Cloud(u, v, 24, 3, 9) - 0.5);
    return Paint{paint.r * here, paint.g * here, paint.b * here};
  });
}

Canvas Sky() {
  // One repeat is 333 scene units of sky: cumulus clouds in low sunlight. They are a height field lit from
  // the start's corner, so that their near side is bright.
  constexpr int Size = 1024, Clouds = 11;
  constexpr Paint Lilac{0.60, 0.55, 0.88}, Rose{0.74, 0.62, 0.88}, Peach{1.0, 0.86, 0.78},
      White{1.0, 0.985, 0.955}, Under{0.76, 0.66, 0.87};
  std::vector<double> relief(static_cast<std::size_t>(Size) * Size);
  const auto index = [](int x, int y) {
    const auto wrap = [](int place) { return static_cast<std::size_t>((place % Size + Size) % Size); };
    return wrap(y) * Size + wrap(x);
  };
  const auto heap = [&](double x, double y, double radius) {
    const int reach = static_cast<int>(radius) + 1;
    for (int dy = -reach; dy <= reach; ++dy) {
      for (int dx = -reach; dx <= reach; ++dx) {
        const double rest = 1 - (dx * dx + dy * dy) / (radius * radius);
        if (rest <= 0) continue;
        double &height = relief[index(static_cast<int>(x) + dx, static_cast<int>(y) + dy)];
        height = std::max(height, radius * std::sqrt(rest));
      }
    }
  };
  for (std::uint32_t cloud = 0; cloud < Clouds; ++cloud) {
    // Distributed by a low-discrepancy sequence, then in random clusters, large in the middle.
    const double x = Size * (cloud * 0.754878 + 0.05 * Hash(cloud, 1, 7)), y = Size * cloud * 0.569840;
    const double wide = 70 + 80 * Hash(cloud, 2, 7), tall = 0.45 * wide;
    for (std::uint32_t puff = 0; puff < 34; ++puff) {
      const double turn = 2 * pi * Hash(puff, cloud, 8), away = std::sqrt(Hash(puff, cloud, 9));
      const double radius = wide * (0.16 + 0.26 * (1 - away) + 0.10 * Hash(puff, cloud, 10));
      heap(x + wide * away * std::cos(turn), y + tall * away * std::sin(turn), radius);
    }
  }
  // Adds noise to the height field, and blurs edges that are too sharp.
  const auto blur = [&](int reach) {
    for (const bool across : {true, false}) {
      const std::vector<double> from = relief;
      for (int y = 0; y < Size; ++y) {
        for (int x = 0; x < Size; ++x) {
          double sum = 0;
          for (int i = -reach; i <= reach; ++i) sum += across ? from[index(x + i, y)] : from[index(x, y + i)];
          relief[index(x, y)] = sum / (2 * reach + 1);
        }
      }
    }
  };
  for (int y = 0; y < Size; ++y) {
    for (int x = 0; x < Size; ++x) {
      relief[index(x, y)] *= 0.62 + 0.76 * Cloud((x + 0.5) / Size, (y + 0.5) / Size, 10, 4, 21);
    }
  }
  blur(4);
  blur(4);
  Canvas canvas = Painted(Size, [&](double u, double v, int x, int y) {
    const Paint clear = Mix(Lilac, Rose, SmoothStep(0.3, 0.7, Cloud(u, v, 2, 3, 40)));
    const double here = relief[index(x, y)];
    const double slopeX = (relief[index(x + 3, y)] - relief[index(x - 3, y)]) / 6;
    const double slopeY = (relief[index(x, y + 3)] - relief[index(x, y - 3)]) / 6;
    const double lit = 0.5 - 0.33 * slopeX - 0.42 * slopeY;
    const Paint cloud =
        Mix(Mix(Under, Peach, SmoothStep(0.15, 0.60, lit)), White, SmoothStep(0.50, 0.95, lit));
    return Mix(clear, cloud, 0.96 * SmoothStep(1.5, 20.0, here));
  });
  return canvas.Halved(); // clouds are soft: a sharper image would only take memory
}

Canvas Crowd() {
  // One repeat is 100 scene units of the stands, seen from above: rows of people in mixed colours.
  constexpr int Size = 1024, Rows = 50, Seats = 56;
  constexpr Paint Shirts[] = {{0.86, 0.26, 0.22}, {0.95, 0.78, 0.22}, {0.24, 0.48, 0.84}, {0.96, 0.94, 0.90},
                              {0.50, 0.32, 0.72}, {0.92, 0.50, 0.20}, {0.28, 0.66, 0.40}, {0.80, 0.30, 0.56},
                              {0.20, 0.24, 0.36}, {0.93, 0.86, 0.70}};
  constexpr Paint Skins[] = {{1.0, 0.83, 0.68}, {0.92, 0.70, 0.52}, {0.68, 0.46, 0.31}, {0.46, 0.30, 0.20}};
  constexpr Paint Hairs[] = {
      {0.16, 0.10, 0.08}, {0.36, 0.21, 0.11}, {0.88, 0.72, 0.38}, {0.93, 0.26, 0.20}, {0.96, 0.96, 0.94}};
  constexpr Paint Gloom{0.09, 0.07, 0.14}, Seat{0.40, 0.34, 0.52};
  Canvas canvas = Painted(Size, [](double u, double v, int, int) {
    const double step = std::abs(v * Rows - std::floor(v * Rows) - 0.5) * 2;
    const double shade = 0.19 + 0.10 * step + 0.05 * Noise(u, v, 64, 4);
    return Paint{shade, shade * 0.92, shade * 1.12};
  });
  constexpr double Pitch = static_cast<double>(Size) / Rows, Place = static_cast<double>(Size) / Seats;
  const auto limb = [&](double x, double y, double toX, double toY, double width, const Paint &paint) {
    for (int i = 0; i <= 4; ++i)
      canvas.Blob(x + (toX - x) * i / 4, y + (toY - y) * i / 4, width, width, paint);
  };
  for (int row = 0; row < Rows; ++row) {
    for (int seat = 0; seat < Seats; ++seat) {
      const auto draw = [&](std::uint32_t what) {
        return Hash(static_cast<std::uint32_t>(seat), static_cast<std::uint32_t>(row), what);
      };
      const double acrossX = (seat + 0.5) / Seats, acrossY = (row + 0.5) / Rows;
      const double seatX = (seat + 0.5 + (row % 2) * 0.5) * Place, seatY = (row + 0.5) * Pitch;
      if (draw(1) < 0.03 + 0.5 * SmoothStep(0.74, 0.84, Noise(acrossX, acrossY, 11, 55))) { // an empty seat
        canvas.Blob(seatX, seatY + 3.5, 6.4, 3.6, Gloom, 0.8);
        canvas.Blob(seatX, seatY - 0.5, 6.0, 4.6, Seat);
        continue;
      }
      const double x = seatX + 0.26 * (draw(2) - 0.5) * Place, y = seatY + 0.22 * (draw(3) - 0.5) * Pitch;
      // Neighbours often have the same colour.
      const double taste = 0.55 * Noise(acrossX, acrossY, 9, 70) + 0.45 * draw(4);
      const Paint &shirt = Shirts[static_cast<std::size_t>(taste * 9.999)];
      const Paint &skin = Skins[static_cast<std::size_t>(draw(5) * draw(5) * 3.999)];
      const Paint &hair = Hairs[static_cast<std::size_t>(draw(6) * 4.999)];
      const Paint sleeve = Mix(shirt, Gloom, 0.30);
      canvas.Blob(x + 0.8, y + 3.6, 9.0, 8.4, Gloom, 0.75);
      canvas.Blob(x, y + 6.0, 7.6, 5.4, Mix(shirt, Gloom, 0.45));
      canvas.Blob(x, y + 3.2, 8.0, 5.0, sleeve);
      canvas.Blob(x, y + 2.4, 6.0, 4.6, shirt);
      if (draw(7) < 0.20) { // both arms raised
        limb(x - 7.2, y + 1.5, x - 8.2, y - 9.5, 2.0, skin);
        limb(x + 7.2, y + 1.5, x + 8.2, y - 9.5, 2.0, skin);
      } else if (draw(7) < 0.32) { // one arm waves
        const double side = draw(8) < 0.5 ? -1.0 : 1.0;
        limb(x + side * 7.0, y + 1.5, x + side * 9.5, y - 8.0, 2.0, skin);
      }
      canvas.Blob(x, y - 4.6, 5.9, 6.2, Gloom, 0.70);
      canvas.Blob(x, y - 4.4, 4.7, 5.0, skin);
      canvas.Blob(x, y - 7.2, 4.7, 2.9, hair);
      if (draw(9) < 0.22) // a scarf
        canvas.Blob(x, y + 0.6, 5.2, 1.5,
                    Mix(Shirts[static_cast<std::size_t>(draw(10) * 9.999)], {1, 1, 1}, 0.25));
      if (draw(11) < 0.022) { // a flag on a stick
        const Paint &flag = Shirts[static_cast<std::size_t>(draw(12) * 6.999)];
        limb(x + 8.5, y + 1.0, x + 8.5, y - 21.0, 1.1, {0.9, 0.88, 0.84});
        for (int i = 0; i < 9; ++i)
          canvas.Blob(x + 10.5 + i * 1.8, y - 16.5 + 1.6 * std::sin(i * 0.8), 1.9, 5.2,
                      i % 3 == 1 ? Paint{1, 1, 1} : flag);
      }
    }
  }
  return canvas;
}

Canvas Paper() {
  // The sheet is oblique on the folded piece: u runs along p, the direction of the piece's left leg, and v
  // against q, that of its right leg, shortened by the slant. Coordinates below are the piece's x and z.
  constexpr int Size = 512, Rules = 10;
  constexpr double Scale = 0.19, Top = 0.34; // repeats per unit; height of the piece's top
  const double alongP = Scale, alongQ = -Scale / std::sqrt(3.0), alongY = 2 * Scale / std::sqrt(6.0);
  constexpr double MarginU = 0.86; // occurs once on the piece, near its middle
  static constexpr Paint White{0.985, 0.975, 0.945}, Rule{0.24, 0.47, 0.90}, Margin{0.92, 0.22, 0.28},
      Pencil{0.26, 0.26, 0.33};
  Canvas canvas = Painted(Size, [&](double u, double v, int, int) {
    const double fibre = 0.97 + 0.05 * (Cloud(u, v, 16, 4, 5) - 0.5);
    Paint paint{White.r * fibre, White.g * fibre, White.b * fibre};
    const double rule = std::abs(v * Rules - std::floor(v * Rules) - 0.5) / Rules;
    paint = Mix(paint, Rule, 0.9 * (1 - SmoothStep(0.0058, 0.0105, rule)));
    for (const double margin : {MarginU, MarginU + 0.045})
      paint = Mix(paint, Margin, 0.9 * (1 - SmoothStep(0.006, 0.011, std::abs(u - margin))));
    return paint;
  });

  // Doodles: a face and a star. The pencil line varies in position and strength.
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
  arc(FaceX, FaceZ, 0.82, 0, 2 * pi + 0.2);
  arc(FaceX, FaceZ + 0.02, 0.50, 0.35, pi - 0.35);
  line(FaceX - 0.27, FaceZ - 0.34, FaceX - 0.25, FaceZ - 0.12);
  line(FaceX + 0.27, FaceZ - 0.34, FaceX + 0.25, FaceZ - 0.12);
  constexpr double StarX = 2.35, StarZ = 1.45, StarReach = 0.62;
  for (int i = 0; i < 5; ++i) {
    const double from = pi * 0.8 * i - pi / 2, to = pi * 0.8 * (i + 1) - pi / 2;
    line(StarX + StarReach * std::cos(from), StarZ + StarReach * std::sin(from),
         StarX + StarReach * std::cos(to), StarZ + StarReach * std::sin(to));
  }
  return canvas;
}

} // namespace textures

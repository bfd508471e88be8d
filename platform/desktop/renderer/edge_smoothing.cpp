#include "platform/desktop/renderer/edge_smoothing.h"

#include <QtConcurrentMap>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace {

// Brightness is 0 to 255. Contrast is the range of brightness around a pixel.
constexpr int LeastContrast = 21;    ///< of an edge
constexpr int RelativeContrast = 3;  ///< of an edge: at least the greatest brightness divided by this
constexpr float FilterLength = 4.0f; ///< pixels along the edge from the first sample to the last
constexpr int Whole = 256;           ///< fixed-point 1 of a blend factor
constexpr int Strength = 179;        ///< blend factor of an edge: more would blur small lettering

std::uint8_t Brightness(std::uint32_t color) {
  return static_cast<std::uint8_t>(
      (77 * (color >> 16 & 0xff) + 151 * (color >> 8 & 0xff) + 28 * (color & 0xff)) >> 8);
}

/// The four channels of a colour, each in 16 bits, so that one multiplication weights them all.
using Channels = std::uint64_t;
constexpr Channels EachChannel = 0x00ff00ff00ff00ff;

Channels ChannelsOf(std::uint32_t color) {
  const Channels both = color | static_cast<Channels>(color) << 24; // green and alpha move up by 24 bits
  return both & EachChannel;
}

std::uint32_t ColorOf(Channels channels) { return static_cast<std::uint32_t>(channels | channels >> 24); }

/// Blends two colours. @param share  of the second, in units of 1 / `Whole`
Channels Mixed(Channels a, Channels b, int share) {
  const auto of = static_cast<Channels>(share);
  return (a * (Whole - of) + b * of) >> 8 & EachChannel;
}

/// Brightness of a pixel's diagonal neighbours, and the range of the pixel and these.
struct Neighbours {
  int TopLeft, TopRight, BottomLeft, BottomRight;
  int Least, Most;
};

/// The colour of a pixel on an edge, blended from four samples along the edge. The outer two count only if
/// the result stays within the neighbours' range.
std::uint32_t Smoothed(const std::uint32_t *pixel, qsizetype stride, const Neighbours &near) {
  const auto difference = [](int a, int b) { return static_cast<float>(a - b); };
  float alongX = difference(near.BottomLeft + near.BottomRight, near.TopLeft + near.TopRight);
  float alongY = difference(near.TopLeft + near.BottomLeft, near.TopRight + near.BottomRight);
  const int sum = near.TopLeft + near.TopRight + near.BottomLeft + near.BottomRight;
  const float faint = std::max(static_cast<float>(sum) * 0.03f, 2.0f); // shortens the reach of faint edges
  const float shorter = std::min(std::abs(alongX), std::abs(alongY)) + faint;
  const float scale = static_cast<float>(Whole) / shorter;
  constexpr float Longest = FilterLength * static_cast<float>(Whole);
  alongX = std::clamp(alongX * scale, -Longest, Longest);
  alongY = std::clamp(alongY * scale, -Longest, Longest);

  // Samples lie between pixels. They are interpolated along the shorter coordinate only: along an edge the
  // nearest pixel will do.
  const bool steep = std::abs(alongY) > std::abs(alongX);
  const float longer = steep ? alongY : alongX, other = steep ? alongX : alongY;
  const qsizetype ahead = steep ? stride : 1, aside = steep ? 1 : stride;
  const auto at = [&](float share) {
    const int far = static_cast<int>(longer * share) + Whole / 2, close = static_cast<int>(other * share);
    const std::uint32_t *first = pixel + (far >> 8) * ahead + (close >> 8) * aside;
    return Mixed(ChannelsOf(first[0]), ChannelsOf(first[aside]), close & 0xff);
  };
  const Channels close = Mixed(at(-1.0f / 6.0f), at(1.0f / 6.0f), Whole / 2);
  const Channels wide = Mixed(close, Mixed(at(-0.5f), at(0.5f), Whole / 2), Whole / 2);
  const int between = Brightness(ColorOf(wide));
  const bool outside = between < near.Least || between > near.Most;
  return ColorOf(Mixed(ChannelsOf(*pixel), outside ? close : wide, Strength));
}

} // namespace

EdgeSmoothing::EdgeSmoothing(QSize size)
    : drawn_(size, QImage::Format_RGB32), last_(size, QImage::Format_RGB32),
      brightness_(static_cast<std::size_t>(size.width()) * static_cast<std::size_t>(size.height())) {
  // Differs from every drawn pixel, since those are opaque.
  std::fill_n(last_.bits(), last_.sizeInBytes(), uchar{0});
}

void EdgeSmoothing::Span::Widen(const Span &other) {
  if (other.Empty()) return;
  *this = Empty() ? other : Span{std::min(First, other.First), std::max(End, other.End)};
}

bool EdgeSmoothing::Update(QImage &smooth) {
  const int height = drawn_.height();
  std::vector<Span> reached(static_cast<std::size_t>(height));
  bool changed = false;
  for (int row = 0; row < height; ++row) {
    const Span span = Changed(row);
    changed = changed || !span.Empty();
    for (int near = std::max(row - Reach, 0); near <= std::min(row + Reach, height - 1); ++near) {
      reached[static_cast<std::size_t>(near)].Widen(span);
    }
  }
  auto *to = reinterpret_cast<std::uint32_t *>(smooth.bits());
  QtConcurrent::blockingMap(reached, [&](const Span &span) {
    const auto row = static_cast<int>(&span - reached.data());
    if (!span.Empty()) SmoothRow(row, span, to + static_cast<std::ptrdiff_t>(row) * drawn_.width());
  });
  std::swap(drawn_, last_);
  return changed;
}

/// The range in which a row differs from the last frame. Updates the brightness there.
EdgeSmoothing::Span EdgeSmoothing::Changed(int row) {
  const auto *now = reinterpret_cast<const std::uint32_t *>(drawn_.constScanLine(row));
  const auto *last = reinterpret_cast<const std::uint32_t *>(last_.constScanLine(row));
  const int width = drawn_.width();
  if (std::equal(now, now + width, last)) return {};
  int first = 0, end = width;
  while (now[first] == last[first]) ++first;
  while (now[end - 1] == last[end - 1]) --end;
  std::transform(now + first, now + end, brightness_.begin() + row * width + first, Brightness);
  return {first, end};
}

void EdgeSmoothing::SmoothRow(int row, const Span &span, std::uint32_t *to) const {
  const int width = drawn_.width();
  const auto *from = reinterpret_cast<const std::uint32_t *>(drawn_.constScanLine(row));
  const int copied = std::max(span.First - Reach, 0);
  std::copy(from + copied, from + std::min(span.End + Reach, width), to + copied);
  if (row < Reach || row >= drawn_.height() - Reach) return;

  const std::uint8_t *here = brightness_.data() + row * width, *above = here - width, *below = here + width;
  const int first = std::max(span.First - Reach, Reach), end = std::min(span.End + Reach, width - Reach);
  // A loop of its own, which compilers vectorise.
  std::vector<std::uint8_t> contrasts(static_cast<std::size_t>(width)), brightest(contrasts.size());
  for (int x = first; x < end; ++x) {
    const auto [least, most] = std::minmax({above[x - 1], above[x + 1], here[x], below[x - 1], below[x + 1]});
    contrasts[static_cast<std::size_t>(x)] = static_cast<std::uint8_t>(most - least);
    brightest[static_cast<std::size_t>(x)] = most;
  }
  const auto stride = static_cast<qsizetype>(drawn_.bytesPerLine() / 4);
  for (int x = first; x < end; ++x) {
    const int contrast = contrasts[static_cast<std::size_t>(x)],
              most = brightest[static_cast<std::size_t>(x)];
    if (contrast < LeastContrast || RelativeContrast * contrast < most) continue;
    to[x] = Smoothed(from + x, stride,
                     {above[x - 1], above[x + 1], below[x - 1], below[x + 1], most - contrast, most});
  }
}

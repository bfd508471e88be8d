// Bitmaps. The header is checked before decoding, since the decoder accepts truncated files and images
// without pixels.

#include "scene/graph/parsing.h"
#include "scene/graph/scene_error.h"

#define STB_IMAGE_IMPLEMENTATION
#define STBI_ONLY_BMP
#define STBI_NO_STDIO
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wsign-conversion"
#pragma GCC diagnostic ignored "-Wshadow"
#pragma GCC diagnostic ignored "-Wunused-function"
#pragma GCC diagnostic ignored "-Wpedantic"
#include <stb/stb_image.h>
#pragma GCC diagnostic pop

#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

constexpr std::int32_t LargestSide = 4096; ///< pixels
constexpr std::size_t HeaderBytes = 54;
// Offsets in the header, bytes.
constexpr std::size_t PixelsAt = 10, HeaderSizeAt = 14, WidthAt = 18, HeightAt = 22, PlanesAt = 26,
                      DepthAt = 28, CompressionAt = 30;

[[noreturn]] void Fail(const std::string &why) { throw SceneError("not a bitmap: " + why); }

std::uint32_t Number(std::span<const char> bytes, std::size_t at, std::size_t count) {
  std::uint32_t value = 0;
  for (std::size_t i = count; i > 0; --i) value = value << 8 | static_cast<unsigned char>(bytes[at + i - 1]);
  return value;
}

} // namespace

BitmapSize CheckBitmap(std::span<const char> bytes) {
  constexpr std::uint32_t CommonHeader = 40, LargestHeader = 124, Plain = 0;
  if (bytes.size() < HeaderBytes) Fail("the header is incomplete");
  if (bytes[0] != 'B' || bytes[1] != 'M') Fail("wrong signature");
  const std::uint32_t header = Number(bytes, HeaderSizeAt, 4);
  if (header < CommonHeader || header > LargestHeader) Fail("unknown type of header");
  const auto width = static_cast<std::int32_t>(Number(bytes, WidthAt, 4));
  // Negative if the top row comes first.
  const auto height = static_cast<std::int32_t>(Number(bytes, HeightAt, 4));
  if (width < 1 || width > LargestSide || height == 0 || height > LargestSide || height < -LargestSide) {
    Fail("unsupported size, " + std::to_string(width) + " by " + std::to_string(height) + " pixels");
  }
  const std::uint32_t depth = Number(bytes, DepthAt, 2);
  if (depth != 24 && depth != 32)
    Fail(std::to_string(depth) + " bits per pixel, only 24 and 32 are supported");
  if (Number(bytes, CompressionAt, 4) != Plain) Fail("compression isn't supported");
  if (Number(bytes, PlanesAt, 2) != 1) Fail("it has more than one plane");
  const std::uint64_t pixelsAt = Number(bytes, PixelsAt, 4);
  if (pixelsAt < PixelsAt + 4 + header) Fail("the pixels overlap the header");
  // Rows are padded to 32 bits.
  const std::uint64_t row = (static_cast<std::uint64_t>(width) * depth + 31) / 32 * 4;
  if (bytes.size() < pixelsAt + row * static_cast<std::uint64_t>(std::abs(height)))
    Fail("the file is truncated");
  return {width, std::abs(height)};
}

ImageData ParseImage(std::span<const char> bytes) {
  const BitmapSize size = CheckBitmap(bytes);
  ImageData image;
  int channels = 0;
  const std::unique_ptr<stbi_uc, decltype(&stbi_image_free)> pixels(
      stbi_load_from_memory(reinterpret_cast<const stbi_uc *>(bytes.data()), static_cast<int>(bytes.size()),
                            &image.Width, &image.Height, &channels, STBI_rgb_alpha),
      stbi_image_free);
  if (!pixels) Fail(stbi_failure_reason());
  if (image.Width != size.Width || image.Height != size.Height) Fail("the header is inconsistent");
  const auto count = static_cast<std::size_t>(image.Width) * static_cast<std::size_t>(image.Height) * 4;
  image.Pixels.assign(pixels.get(), pixels.get() + count);
  return image;
}

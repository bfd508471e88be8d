// The built images: complete and of the right size.

#define STB_IMAGE_IMPLEMENTATION
#define STB_IMAGE_STATIC
#include <stb/stb_image.h>

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <utility>

namespace {

/// Width and height of an image file, pixels; 0 if it can't be read.
std::pair<int, int> SizeOf(const std::string &name) {
  std::pair<int, int> size;
  stbi_info((SNAPWEDGE_GAME_DIR "/pictures/" + name).c_str(), &size.first, &size.second, nullptr);
  return size;
}

} // namespace

TEST(PicturesTest, EveryPictureHasItsSize) {
  const struct {
    const char *name;
    int width, height;
  } rows[] = {
      {"frmSnapwedge", 640, 480},  {"frmNewNet", 640, 480},
      {"frmControls", 500, 400},   {"frmBackground", 500, 400},
      {"frmHome", 300, 300},       {"frmAway", 300, 300},
      {"frmTie", 300, 300},        {"Picture1", 200, 173},
      {"Picture2", 200, 173},      {"Picture3", 200, 173},
      {"Picture4", 200, 173},      {"Picture5", 200, 173},
      {"Picture6", 200, 173},      {"Picture7", 200, 173},
      {"VersionSlip", 102, 22},    {"ScoreLine", 174, 26},
      {"ScoreTile", 92, 46},       {"Digits", 140, 26},
      {"ScoreLineFlash", 174, 26}, {"ScoreTileFlash", 92, 46},
      {"DigitsLit", 140, 26},      {"Try", 28, 23},
      {"MessageKey", 70, 12},      {"MouseKeys", 304, 16},
  };
  for (const auto &row : rows) {
    SCOPED_TRACE(row.name);
    for (const auto &[density, ending] :
         {std::pair{1.0, ".png"}, {1.5, "@1.5x.png"}, {2.0, "@2x.png"}, {3.5, "@3.5x.png"}}) {
      const auto [width, height] = SizeOf(std::string(row.name) + ending);
      EXPECT_EQ(width, std::lround(density * row.width)) << ending;
      EXPECT_EQ(height, std::lround(density * row.height)) << ending;
    }
  }
  EXPECT_EQ(SizeOf("icon.png").first, 256);
  EXPECT_EQ(SizeOf("icon-48.png").first, 48);
}

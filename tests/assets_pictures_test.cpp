// The built images: complete, of the right size, and with enough contrast behind every label.

#include "match/frm_snapwedge.h"
#include "net/frm_new_net.h"
#include "platform/headless/headless_machine.h"

#define STB_IMAGE_IMPLEMENTATION
#define STB_IMAGE_STATIC
#include <stb/stb_image.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>
#include <utility>

namespace {

class Image {
public:
  explicit Image(const std::string &file)
      : pixels_(stbi_load((SNAPWEDGE_GAME_DIR "/pictures/" + file).c_str(), &width, &height, nullptr, 3),
                stbi_image_free) {}
  bool Empty() const { return !pixels_; }

  /// Draws a background picture on it.
  void Lay(const BackPicture &picture) {
    int wide = 0, high = 0;
    const std::unique_ptr<stbi_uc, void (*)(void *)> over(
        stbi_load((SNAPWEDGE_GAME_DIR "/pictures/" + picture.Picture + ".png").c_str(), &wide, &high, nullptr,
                  4),
        stbi_image_free);
    ASSERT_TRUE(over) << picture.Picture;
    const int column = wide / picture.Columns;
    for (int y = 0; y < high; ++y) {
      for (int x = 0; x < column; ++x) {
        const stbi_uc *from = over.get() + 4 * (y * wide + picture.Column * column + x);
        stbi_uc *to = pixels_.get() + 3 * ((picture.Top + y) * width + picture.Left + x);
        for (int channel = 0; channel < 3; ++channel)
          to[channel] = static_cast<stbi_uc>((from[channel] * from[3] + to[channel] * (255 - from[3])) / 255);
      }
    }
  }
  Color At(int x, int y) const {
    const stbi_uc *pixel = pixels_.get() + 3 * (y * width + x);
    return {pixel[0], pixel[1], pixel[2]};
  }

  int width = 0, height = 0;

private:
  std::unique_ptr<stbi_uc, void (*)(void *)> pixels_;
};

/// Relative luminance as defined by WCAG, 0 to 1.
double Luminance(const Color &color) {
  const auto linear = [](std::uint8_t channel) {
    const double value = channel / 255.0;
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(color.Red) + 0.7152 * linear(color.Green) + 0.0722 * linear(color.Blue);
}

/// The lowest contrast of the label's text to any pixel behind it.
double LeastContrast(const Label &label, const Image &background) {
  const double text = Luminance(label.ForeColor);
  double least = 21.0;
  const int right = std::min(label.Place.Left + label.Place.Width, background.width);
  const int bottom = std::min(label.Place.Top + label.Place.Height, background.height);
  for (int y = label.Place.Top; y < bottom; ++y) {
    for (int x = label.Place.Left; x < right; ++x) {
      const double behind = Luminance(background.At(x, y));
      least = std::min(least, (std::max(text, behind) + 0.05) / (std::min(text, behind) + 0.05));
    }
  }
  return least;
}

/// @return number of labels directly on the background
int ExpectReadableLabels(const Window &window) {
  constexpr double LeastReadable = 4.5;
  Image background(window.Picture + ".png");
  EXPECT_FALSE(background.Empty()) << window.Picture;
  if (background.Empty()) return 0;
  for (const BackPicture *picture : window.BackPictures) {
    if (picture->Visible) background.Lay(*picture);
  }
  int labels = 0;
  for (const Control *control : window.Controls) {
    const auto *label = dynamic_cast<const Label *>(control);
    // A label with a border has its own background.
    if (!label || label->HasBackColor || label->Border) continue;
    ++labels;
    EXPECT_GE(LeastContrast(*label, background), LeastReadable) << window.Name << ", " << label->Name;
  }
  return labels;
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
  };
  for (const auto &row : rows) {
    SCOPED_TRACE(row.name);
    for (const auto &[density, ending] :
         {std::pair{1.0, ".png"}, {1.5, "@1.5x.png"}, {2.0, "@2x.png"}, {3.5, "@3.5x.png"}}) {
      int width = 0, height = 0;
      stbi_info((SNAPWEDGE_GAME_DIR "/pictures/" + std::string(row.name) + ending).c_str(), &width, &height,
                nullptr);
      EXPECT_EQ(width, std::lround(density * row.width)) << ending;
      EXPECT_EQ(height, std::lround(density * row.height)) << ending;
    }
  }
  EXPECT_EQ(Image("icon.png").width, 256);
  EXPECT_EQ(Image("icon-48.png").width, 48);
}

TEST(PicturesTest, LabelsOfThePlayWindowAreReadable) {
  HeadlessMachine machine(SNAPWEDGE_GAME_DIR);
  Program program(machine);
  frmSnapwedge window(machine, program);
  window.VersionSlip.Visible = true;
  for (const std::int16_t player : {std::int16_t{1}, std::int16_t{2}}) {
    window.Player = player;
    window.TurnColor();
    EXPECT_EQ(ExpectReadableLabels(window), 8);
  }
  // Both boards flash, the dim one's too.
  window.HomeScore = window.AwayScore = 3;
  window.PostScore();
  ASSERT_EQ(window.HomeBoard.Line.Picture, "ScoreLineFlash");
  ASSERT_EQ(window.AwayBoard.Line.Picture, "ScoreLineFlash");
  EXPECT_EQ(ExpectReadableLabels(window), 8);
}

TEST(PicturesTest, LabelsOfTheLaunchWindowAreReadable) {
  HeadlessMachine machine(SNAPWEDGE_GAME_DIR);
  Program program(machine);
  const frmNewNet window(machine, program);
  EXPECT_EQ(ExpectReadableLabels(window), 11);
}

// The built wave files: lengths, levels, ends and loop seams.

#include "match/program.h"

#include <gtest/gtest.h>
#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <memory>
#include <numeric>
#include <string>
#include <vector>

namespace {

struct Row {
  const char *file;
  double shortest, longest; ///< seconds
  double level;             ///< RMS of the whole file, dBFS
  bool loop = false;
};

// Events are about equally loud, except the whistles, which must be heard through everything. The theme and
// the loops are softer.
const Row Rows[] = {
    {"crowd.daw", 8, 15, -26, true}, {"crowd2.daw", 8, 15, -26, true}, {"theme.daw", 20, 40, -24, true},
    {"yeah.daw", 2, 3.2, -21},       {"yeah2.daw", 2, 3.2, -21},       {"boo.daw", 1.6, 2.6, -21},
    {"guit2.daw", 1.2, 2, -21},      {"swoosh.daw", 0.3, 0.6, -21},    {"wis1.daw", 0.3, 1, -24},
    {"wis2.daw", 0.9, 2, -24},       {"wis3.daw", 1.5, 3, -24},
};

std::vector<double> Read(const std::string &name) {
  SF_INFO info{};
  const auto path = std::filesystem::path(SNAPWEDGE_GAME_DIR) / name;
  const std::unique_ptr<SNDFILE, int (*)(SNDFILE *)> file(sf_open(path.c_str(), SFM_READ, &info), sf_close);
  EXPECT_TRUE(file) << path;
  if (!file) return {};
  EXPECT_EQ(info.samplerate, 44100);
  EXPECT_EQ(info.format & SF_FORMAT_SUBMASK, SF_FORMAT_PCM_16);
  EXPECT_EQ(info.channels, 1);
  std::vector<double> samples(static_cast<std::size_t>(info.frames));
  EXPECT_EQ(sf_readf_double(file.get(), samples.data(), info.frames), info.frames);
  return samples;
}

double Decibels(double value) { return 20 * std::log10(value); }

double RootMeanSquare(const double *first, std::size_t count) {
  return std::sqrt(std::inner_product(first, first + count, first, 0.0) / static_cast<double>(count));
}

TEST(SoundsTest, EverySoundHasItsLengthAndItsLevel) {
  for (const SoundFile &sound : SoundFiles) {
    SCOPED_TRACE(sound.Name);
    const auto *const found = std::ranges::find(Rows, std::string(sound.Name), &Row::file);
    ASSERT_NE(found, std::end(Rows)) << "it has no row with its length and level";
    const Row &row = *found;
    const std::vector<double> samples = Read(row.file);
    ASSERT_FALSE(samples.empty());
    const double seconds = static_cast<double>(samples.size()) / 44100;
    EXPECT_GE(seconds, row.shortest);
    EXPECT_LE(seconds, row.longest);
    double peak = 0;
    for (const double sample : samples) peak = std::max(peak, std::abs(sample));
    EXPECT_LE(Decibels(peak), -1.0) << "it clips";
    const double level = Decibels(RootMeanSquare(samples.data(), samples.size()));
    EXPECT_NEAR(level, row.level, 2);
    const double mean =
        std::accumulate(samples.begin(), samples.end(), 0.0) / static_cast<double>(samples.size());
    EXPECT_LT(std::abs(mean), 0.002);
    EXPECT_LT(std::abs(samples.front()), 0.004) << "it begins with a click";
    if (row.loop) continue;
    EXPECT_LT(std::abs(samples.back()), 0.004) << "it ends with a click";
  }
}

TEST(SoundsTest, ALoopsSeamIsNoLouderThanWhatItJoins) {
  for (const Row &row : Rows) {
    if (!row.loop) continue;
    SCOPED_TRACE(row.file);
    const std::vector<double> samples = Read(row.file);
    ASSERT_GT(samples.size(), 44100U);
    std::vector<double> jumps;
    for (std::size_t i = 1; i < samples.size(); ++i) jumps.push_back(std::abs(samples[i] - samples[i - 1]));
    const double seam = std::abs(samples.front() - samples.back());
    std::ranges::sort(jumps);
    EXPECT_LE(seam, jumps[jumps.size() * 999 / 1000]);
    constexpr std::size_t Tenth = 4410;
    const double before = Decibels(RootMeanSquare(samples.data() + samples.size() - Tenth, Tenth));
    const double after = Decibels(RootMeanSquare(samples.data(), Tenth));
    if (std::string(row.file) == "theme.daw") continue; // a bar may begin louder than the previous one ends
    EXPECT_NEAR(before, after, 6) << "the loop jumps in loudness";
  }
}

/// Loudness of each half second, dB, the softest first.
std::vector<double> Course(const std::vector<double> &samples) {
  constexpr std::size_t Half = 22050;
  std::vector<double> levels;
  for (std::size_t at = 0; at + Half <= samples.size(); at += Half / 2)
    levels.push_back(Decibels(RootMeanSquare(samples.data() + at, Half)));
  std::ranges::sort(levels);
  return levels;
}

TEST(SoundsTest, ABedSwells) {
  for (const char *file : {"crowd.daw", "crowd2.daw"}) {
    SCOPED_TRACE(file);
    const std::vector<double> levels = Course(Read(file));
    ASSERT_GT(levels.size(), 20U);
    const double softest = levels[levels.size() / 10], loudest = levels[levels.size() * 9 / 10];
    EXPECT_GE(loudest - softest, 4) << "it is uniform noise";
    EXPECT_LE(loudest - softest, 9) << "its loudness varies too much";
  }
}

TEST(SoundsTest, WhatSoundsTogetherDoesNotClip) {
  struct Moment {
    std::vector<const char *> events;
    bool theme = false;
  };
  const Moment moments[] = {
      {{"yeah2.daw", "guit2.daw"}, true},             // the launch window
      {{"wis2.daw", "guit2.daw", "swoosh.daw"}},      // a quick first flick
      {{"yeah2.daw", "wis2.daw", "wis1.daw"}},        // a Touchdown and a chat line
      {{"boo.daw", "wis2.daw", "wis1.daw"}},          // a Touchdown of the other side
      {{"yeah.daw", "wis1.daw"}},                     // a penalty
      {{"yeah2.daw", "wis3.daw", "guit2.daw"}, true}, // the end, by score
      {{"boo.daw", "wis3.daw", "guit2.daw"}, true},
      {{"yeah.daw", "wis3.daw", "guit2.daw"}, true},
  };
  // The loops have different lengths, so in time every part of one coincides with every part of the other.
  // The theme may be at any position.
  constexpr std::size_t Second = 44100, Length = 180 * Second;
  const std::vector<double> crowd = Read("crowd.daw"), crowd2 = Read("crowd2.daw"), theme = Read("theme.daw");
  ASSERT_FALSE(crowd.empty() || crowd2.empty() || theme.empty());
  std::vector<double> beds(Length + 3 * Second), bedsAndTheme(beds.size());
  for (std::size_t i = 0; i < beds.size(); ++i) {
    beds[i] = crowd[i % crowd.size()] + crowd2[i % crowd2.size()];
    bedsAndTheme[i] = beds[i] + theme[i % theme.size()];
  }
  for (const Moment &moment : moments) {
    const std::vector<double> &loops = moment.theme ? bedsAndTheme : beds;
    std::vector<double> events(3 * Second, 0.0);
    std::string all;
    for (const char *name : moment.events) {
      const std::vector<double> samples = Read(name);
      for (std::size_t i = 0; i < std::min(samples.size(), events.size()); ++i) events[i] += samples[i];
      all += std::string(name) + " ";
    }
    SCOPED_TRACE(all);
    double peak = 0;
    for (std::size_t start = 0; start < Length; start += Second) {
      for (std::size_t i = 0; i < events.size(); ++i)
        peak = std::max(peak, std::abs(events[i] + loops[start + i]));
    }
    EXPECT_LT(peak, 1.0);
  }
}

} // namespace

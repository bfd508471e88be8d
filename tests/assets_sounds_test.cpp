// The built wave files: lengths, levels, ends and loop seams.

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
  bool loop;
};

const Row Rows[] = {
    {"crowd.daw", 8, 15, true},   {"crowd2.daw", 8, 15, true},     {"theme.daw", 20, 40, true},
    {"yeah.daw", 2, 3.2, false},  {"yeah2.daw", 2, 3.2, false},    {"boo.daw", 1.6, 2.6, false},
    {"guit2.daw", 1.2, 2, false}, {"swoosh.daw", 0.3, 0.6, false}, {"wis1.daw", 0.3, 1, false},
    {"wis2.daw", 0.9, 2, false},  {"wis3.daw", 1.5, 3, false},
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
  for (const Row &row : Rows) {
    SCOPED_TRACE(row.file);
    const std::vector<double> samples = Read(row.file);
    ASSERT_FALSE(samples.empty());
    const double seconds = static_cast<double>(samples.size()) / 44100;
    EXPECT_GE(seconds, row.shortest);
    EXPECT_LE(seconds, row.longest);
    double peak = 0;
    for (const double sample : samples) peak = std::max(peak, std::abs(sample));
    EXPECT_LE(Decibels(peak), -1.0) << "it clips";
    const double level = Decibels(RootMeanSquare(samples.data(), samples.size()));
    EXPECT_NEAR(level, row.loop ? -32 : -20, 2) << "events about equally loud, loops about 12 dB below them";
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
    if (std::string(row.file) == "theme.daw") continue; // a bar may begin louder than the last one ended
    EXPECT_NEAR(before, after, 6) << "a bed that jumps in loudness";
  }
}

TEST(SoundsTest, WhatSoundsTogetherDoesNotClip) {
  const std::vector<const char *> together[] = {
      {"theme.daw", "yeah2.daw", "guit2.daw"},             // the launch window
      {"wis2.daw", "guit2.daw", "swoosh.daw"},             // a quick first flick
      {"yeah2.daw", "wis2.daw"},                           // a Touchdown
      {"boo.daw", "wis2.daw"},                             // the other side's
      {"yeah.daw", "wis1.daw"},                            // a penalty
      {"theme.daw", "yeah2.daw", "wis3.daw", "guit2.daw"}, // the end, by score
      {"theme.daw", "boo.daw", "wis3.daw", "guit2.daw"},
      {"theme.daw", "yeah.daw", "wis3.daw", "guit2.daw"},
  };
  const std::vector<double> crowd = Read("crowd.daw"), crowd2 = Read("crowd2.daw");
  ASSERT_FALSE(crowd.empty() || crowd2.empty());
  for (const auto &names : together) {
    std::vector<double> events(3 * 44100, 0.0);
    std::string all;
    for (const char *name : names) {
      const std::vector<double> samples = Read(name);
      for (std::size_t i = 0; i < std::min(samples.size(), events.size()); ++i) events[i] += samples[i];
      all += std::string(name) + " ";
    }
    SCOPED_TRACE(all);
    double peak = 0;
    for (std::size_t start = 0; start < crowd2.size(); start += 44100) { // the beds may stand anywhere
      for (std::size_t i = 0; i < events.size(); ++i) {
        peak = std::max(peak, std::abs(events[i] + crowd[(start + i) % crowd.size()] +
                                       crowd2[(start + i) % crowd2.size()]));
      }
    }
    EXPECT_LT(peak, 1.0);
  }
}

} // namespace

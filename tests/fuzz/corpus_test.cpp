// The corpus of the fuzzers, also truncated at every byte, as a test for every compiler.

#include "tests/fuzz/hostile_bytes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace {

struct Sample {
  std::string name;
  session::Bytes bytes;
};

std::vector<Sample> Samples(const std::string &folder) {
  std::vector<Sample> samples;
  for (const auto &entry : std::filesystem::directory_iterator(SNAPWEDGE_CORPUS_DIR + ("/" + folder))) {
    std::ifstream file(entry.path(), std::ios::binary);
    samples.push_back({entry.path().filename(), {std::istreambuf_iterator<char>(file), {}}});
  }
  std::ranges::sort(samples, {}, &Sample::name);
  return samples;
}

TEST(CorpusTest, NoBytesOfTheCorpusAreMoreThanAFrameOrRefused) {
  const auto samples = Samples("frames");
  EXPECT_GE(samples.size(), 20U);
  for (const auto &[name, bytes] : samples) {
    SCOPED_TRACE(name);
    for (std::size_t length = 0; length <= bytes.size(); ++length) {
      EXPECT_NO_THROW(fuzz::ReadFrames(session::ByteView(bytes).first(length)));
    }
  }
}

TEST(CorpusTest, NoPlayerOfTheCorpusBreaksARule) {
  const auto samples = Samples("play");
  EXPECT_GE(samples.size(), 10U);
  for (const auto &[name, bytes] : samples) {
    SCOPED_TRACE(name);
    EXPECT_NO_THROW(fuzz::PlayAgainst(bytes));
  }
}

/// Reads every sample whole, truncated at every byte, and with each byte changed in turn.
/// @return the names of the samples that are accepted unchanged
std::vector<std::string> ReadDamaged(const std::string &folder, bool (*read)(session::ByteView)) {
  std::vector<std::string> taken;
  for (const auto &[name, bytes] : Samples(folder)) {
    SCOPED_TRACE(name);
    bool whole = false;
    EXPECT_NO_THROW(whole = read(bytes));
    if (whole) taken.push_back(name);
    for (std::size_t at = 0; at < bytes.size(); ++at) {
      SCOPED_TRACE(at);
      EXPECT_NO_THROW(read(session::ByteView(bytes).first(at)));
      session::Bytes changed = bytes;
      for (const std::uint8_t byte :
           {std::uint8_t{'9'}, std::uint8_t{';'}, std::uint8_t{0}, std::uint8_t{255}}) {
        changed[at] = byte;
        EXPECT_NO_THROW(read(changed));
      }
    }
  }
  return taken;
}

TEST(CorpusTest, ADamagedModelIsRefusedOrTrueToItself) {
  EXPECT_EQ(ReadDamaged("models", fuzz::ReadModel),
            (std::vector<std::string>{"frames", "painted", "shared_material", "triangle"}));
}

TEST(CorpusTest, ADamagedBitmapIsRefusedOrTrueToItself) {
  EXPECT_EQ(ReadDamaged("bitmaps", fuzz::ReadBitmap),
            (std::vector<std::string>{"colours_24", "colours_32", "from_the_top", "long_header"}));
}

} // namespace

// The corpus of the fuzzers, whole and cut short everywhere, as far as every compiler can run it.

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

} // namespace

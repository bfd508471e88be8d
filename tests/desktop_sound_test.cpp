// Sound through OpenAL, as recorded by its driver that writes a wave file.

#include "platform/desktop/open_al_sound.h"

#include <gtest/gtest.h>
#include <sndfile.hh>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr int Rate = 44100;
constexpr int Length =
    Rate * 6 / 5; ///< samples of the test's sound: not a multiple of the length read at once

// Each sample of the sound encodes its position.
constexpr int FirstLevel = 1000, PlacesPerLevel = 2;
constexpr int LastLevel = FirstLevel + (Length - 1) / PlacesPerLevel;
constexpr int Inexact = 16; ///< places, by the recording's dither

void WriteSound(const fs::path &path) {
  std::vector<short> samples;
  for (int place = 0; place < Length; ++place)
    samples.push_back(static_cast<short>(FirstLevel + place / PlacesPerLevel));
  SndfileHandle file(path.c_str(), SFM_WRITE, SF_FORMAT_WAV | SF_FORMAT_PCM_16, 1, Rate);
  EXPECT_EQ(file.write(samples.data(), Length), Length);
}

/// A sound device whose output goes to a file, and one sound on it.
class DesktopSoundTest : public ::testing::Test {
protected:
  DesktopSoundTest() {
    fs::create_directory(directory_);
    WriteSound(file_);
    std::ofstream(directory_ / "settings") << "[general]\ndrivers=wave\nsample-type=int16\nfrequency=44100\n"
                                           << "[wave]\nfile=" << Recorded().string() << '\n';
    setenv("ALSOFT_CONF", (directory_ / "settings").c_str(), 1);
    unsetenv("ALSOFT_DRIVERS");
    device_ = OpenDefaultSound();
    sound_ = device_->CreateSoundBufferFromFile(file_, {}, {});
  }
  ~DesktopSoundTest() override { fs::remove_all(directory_); }

  /// Waits until the device has played for another time.
  void Listen(double seconds) const {
    const auto end = fs::file_size(Recorded()) + static_cast<std::uintmax_t>(seconds * Rate) * 4;
    for (int tries = 0; tries < 2000 && fs::file_size(Recorded()) < end; ++tries)
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }

  /// Closes the device. Returns the places in the sound that were heard one after the other, -1 for silence.
  std::vector<int> Heard() {
    sound_.reset();
    device_.reset();
    SndfileHandle file(Recorded().c_str());
    std::vector<short> both(static_cast<std::size_t>(2 * file.frames()));
    file.readf(both.data(), file.frames());
    std::vector<int> left;
    for (std::size_t i = 0; i < both.size(); i += 2) left.push_back(both[i]);
    const double gain = left.empty() ? 0.0 : static_cast<double>(std::ranges::max(left)) / LastLevel;
    for (int &level : left) {
      constexpr int Silence = FirstLevel / 4;
      const double place = (level / gain - FirstLevel) * PlacesPerLevel;
      level = level < Silence ? -1 : std::clamp(static_cast<int>(place), 0, Length - 1);
    }
    return left;
  }

  fs::path Recorded() const { return directory_ / "recorded.wav"; }

  const fs::path directory_ = fs::temp_directory_path() / ("snapwedge-sound-" + std::to_string(getpid()));
  const fs::path file_ = directory_ / "sound.daw";
  std::shared_ptr<DirectSound> device_;
  std::shared_ptr<DirectSoundBuffer> sound_;
};

/// Fails unless the sound is heard from its start on, without a sample lost or repeated, round after round.
void ExpectUnbroken(std::vector<int> heard) {
  std::erase(heard, -1);
  for (std::size_t i = 0; i < heard.size(); ++i) {
    const int place = static_cast<int>(i) % Length;
    const int error = std::abs(heard[i] - place);
    ASSERT_LE(std::min(error, Length - error), Inexact) << "sample " << i;
  }
}

TEST_F(DesktopSoundTest, ALoopRepeatsWithoutASeam) {
  sound_->Play(DSBPLAY_LOOPING);
  Listen(3.0);
  sound_->Stop();
  const auto heard = Heard();
  ExpectUnbroken(heard);
  EXPECT_GT(std::ranges::count_if(heard, [](int place) { return place >= 0; }), 5 * Length / 2);
}

TEST_F(DesktopSoundTest, StopKeepsThePositionAndPlayDoesNotRestart) {
  sound_->Play(DSBPLAY_LOOPING);
  Listen(0.4);
  sound_->Play(DSBPLAY_LOOPING);
  Listen(0.4);
  sound_->Stop();
  Listen(0.3);
  sound_->Play(DSBPLAY_LOOPING);
  Listen(1.0);
  sound_->Stop();
  const auto heard = Heard();
  ExpectUnbroken(heard);
  const auto sounds = [](int place) { return place >= 0; };
  const auto stopped = std::find(std::ranges::find_if(heard, sounds), heard.end(), -1);
  EXPECT_GT(std::find_if(stopped, heard.end(), sounds) - stopped, Rate / 10)
      << "it must be silent in between";
}

TEST_F(DesktopSoundTest, ASoundEndsAndStartsAgain) {
  for (int round = 0; round < 2; ++round) {
    sound_->Play(DSBPLAY_DEFAULT);
    Listen(1.6);
  }
  const auto heard = Heard();
  ExpectUnbroken(heard);
  EXPECT_EQ(std::ranges::count_if(heard, [](int place) { return place >= 0; }), 2 * Length);
}

TEST_F(DesktopSoundTest, ALoopWhoseFileIsEmptiedFallsSilent) {
  sound_->Play(DSBPLAY_LOOPING);
  fs::resize_file(file_, 0);
  Listen(2.5);
  EXPECT_EQ(Heard().back(), -1);
}

TEST_F(DesktopSoundTest, AFileThatIsNoSoundIsNamed) {
  for (const char *file : {"no-such.daw", "table.dax"}) {
    try {
      device_->CreateSoundBufferFromFile(fs::path(SNAPWEDGE_GAME_DIR) / file, {}, {});
      ADD_FAILURE() << file;
    } catch (const SoundError &error) {
      EXPECT_NE(std::string(error.what()).find(file), std::string::npos);
    }
  }
}

} // namespace

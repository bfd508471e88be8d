// Sound through OpenAL.

#include "platform/desktop/open_al_sound.h"

#include <AL/al.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>

namespace {

/// The OpenAL source created last.
ALuint LastSource() {
  constexpr ALuint Most = 1000;
  ALuint last = 0;
  for (ALuint source = 1; source < Most; ++source) {
    if (alIsSource(source)) last = source;
  }
  return last;
}

ALint OffsetOf(ALuint source) {
  ALint offset = 0;
  alGetSourcei(source, AL_SAMPLE_OFFSET, &offset);
  return offset;
}

TEST(DesktopSoundTest, StopKeepsThePositionAndPlayDoesNotRestart) {
  const auto sound = OpenDefaultSound();
  const auto crowd =
      sound->CreateSoundBufferFromFile(std::filesystem::path(SNAPWEDGE_GAME_DIR) / "crowd.daw", {}, {});
  const ALuint source = LastSource();
  ASSERT_NE(source, 0U);
  const auto pause = [] { std::this_thread::sleep_for(std::chrono::milliseconds(50)); };
  /// Waits until it has played for another tenth of a second, at most 20 s. Returns its position.
  const auto playedOn = [&](ALint from) {
    for (int tries = 0; tries < 400 && OffsetOf(source) < from + 4410; ++tries) pause();
    return OffsetOf(source);
  };
  crowd->Play(DSBPLAY_LOOPING);
  const ALint first = playedOn(0);
  ASSERT_GT(first, 0);
  crowd->Play(DSBPLAY_LOOPING);
  EXPECT_GE(OffsetOf(source), first) << "a second call must not start it over";
  const ALint second = playedOn(first);
  crowd->Stop();
  const ALint stopped = OffsetOf(source);
  EXPECT_GE(stopped, second);
  pause();
  EXPECT_EQ(OffsetOf(source), stopped);
  crowd->Play(DSBPLAY_DEFAULT);
  EXPECT_GE(OffsetOf(source), stopped) << "it continues from its position";
  EXPECT_GT(playedOn(stopped), stopped);
}

TEST(DesktopSoundTest, ALoopRepeatsAndASoundEnds) {
  const auto sound = OpenDefaultSound();
  struct Row {
    std::int32_t flags;
    ALint atTheEnd;
  };
  for (const Row &row : {Row{DSBPLAY_LOOPING, AL_PLAYING}, Row{DSBPLAY_DEFAULT, AL_STOPPED}}) {
    const auto whistle =
        sound->CreateSoundBufferFromFile(std::filesystem::path(SNAPWEDGE_GAME_DIR) / "wis1.daw", {}, {});
    const ALuint source = LastSource();
    constexpr ALint NearTheEnd = 4410; // samples
    ALint buffer = 0, bytes = 0;
    alGetSourcei(source, AL_BUFFER, &buffer);
    alGetBufferi(static_cast<ALuint>(buffer), AL_SIZE, &bytes);
    const ALint start = bytes / 2 - NearTheEnd;
    alSourcei(source, AL_SAMPLE_OFFSET, start);
    whistle->Play(row.flags);
    // Wait until it has stopped or restarted.
    for (int tries = 0; tries < 400 && OffsetOf(source) >= start; ++tries)
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
    ALint state = 0;
    alGetSourcei(source, AL_SOURCE_STATE, &state);
    EXPECT_EQ(state, row.atTheEnd);
  }
}

TEST(DesktopSoundTest, AFileThatIsNoSoundIsNamed) {
  const auto sound = OpenDefaultSound();
  for (const char *file : {"no-such.daw", "table.dax"}) {
    try {
      sound->CreateSoundBufferFromFile(std::filesystem::path(SNAPWEDGE_GAME_DIR) / file, {}, {});
      ADD_FAILURE() << file;
    } catch (const SoundError &error) {
      EXPECT_NE(std::string(error.what()).find(file), std::string::npos);
    }
  }
}

} // namespace

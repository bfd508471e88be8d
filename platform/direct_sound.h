#pragma once

// Wave sounds: a device, and buffers that hold one file each and play it once or in a loop.

#include <cstdint>
#include <filesystem>
#include <memory>
#include <stdexcept>

/// A sound operation that failed; says which and why.
class SoundError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

struct Window;

/// Flags of a buffer. The game leaves them at 0, so that the file decides.
struct DSBUFFERDESC {
  std::int32_t lFlags = 0;
  std::int32_t lBufferBytes = 0;
};

/// Format of a buffer. The game leaves it at 0, so that the file decides.
struct WAVEFORMATEX {
  std::int16_t nFormatTag = 0;
};

constexpr std::int32_t DSSCL_PRIORITY = 2;
constexpr std::int32_t DSBPLAY_DEFAULT = 0; ///< once, from the current position
constexpr std::int32_t DSBPLAY_LOOPING = 1;

class DirectSoundBuffer {
public:
  virtual ~DirectSoundBuffer() = default;

  /// Plays from the current position, once or in a loop. Does nothing on a playing buffer.
  virtual void Play(std::int32_t flags) = 0;

  /// Pauses: the next `Play` continues from here. A buffer that has played to its end is at its start again.
  virtual void Stop() = 0;
};

class DirectSound {
public:
  virtual ~DirectSound() = default;

  virtual void SetCooperativeLevel(const Window &window, std::int32_t level) = 0;

  /// Opens a sound file for a new buffer. The device may go on reading the file while it plays.
  /// @throws SoundError  if the file can't be read; says which and why
  virtual std::shared_ptr<DirectSoundBuffer> CreateSoundBufferFromFile(const std::filesystem::path &file,
                                                                       const DSBUFFERDESC &description,
                                                                       const WAVEFORMATEX &format) = 0;
};

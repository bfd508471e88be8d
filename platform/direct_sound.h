#pragma once

// Wave sounds: a device, and buffers that hold one file each and are played once or in a loop.

#include <cstdint>
#include <filesystem>
#include <memory>
#include <stdexcept>

/// A sound operation that failed; says on what and why.
class SoundError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

struct Window;

/// Flags of a buffer; the game leaves all at 0, so that the file gives them.
struct DSBUFFERDESC {
  std::int32_t lFlags = 0;
  std::int32_t lBufferBytes = 0;
};

/// Format of a buffer; the game leaves all at 0, so that the file gives it.
struct WAVEFORMATEX {
  std::int16_t nFormatTag = 0;
};

constexpr std::int32_t DSSCL_PRIORITY = 2;
constexpr std::int32_t DSBPLAY_DEFAULT = 0; ///< once, from the present position
constexpr std::int32_t DSBPLAY_LOOPING = 1;

class DirectSoundBuffer {
public:
  virtual ~DirectSoundBuffer() = default;

  /// Plays from the present position, once or in a loop. On a buffer that plays already it changes nothing.
  virtual void Play(std::int32_t flags) = 0;

  /// Stops and keeps the position: the next `Play` goes on from it. A buffer that has played to its end
  /// stands at its start again.
  virtual void Stop() = 0;
};

class DirectSound {
public:
  virtual ~DirectSound() = default;

  virtual void SetCooperativeLevel(const Window &window, std::int32_t level) = 0;

  /// A buffer with the whole file in it.
  /// @throws SoundError  if the file can't be read; names it and says why
  virtual std::shared_ptr<DirectSoundBuffer> CreateSoundBufferFromFile(const std::filesystem::path &file,
                                                                       const DSBUFFERDESC &description,
                                                                       const WAVEFORMATEX &format) = 0;
};

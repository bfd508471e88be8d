#include "platform/desktop/open_al_sound.h"

#include "platform/files.h"

#include <AL/al.h>
#include <AL/alc.h>
#include <AL/efx.h>
#include <sndfile.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr sf_count_t LongestSound = 60L * 48000;   ///< frames
constexpr std::uintmax_t LargestFile = 16UL << 20; ///< bytes

/// The device and its context, kept alive by every buffer.
struct Device {
  Device() {
    device = alcOpenDevice(nullptr);
    if (!device) throw SoundError("no sound device can be opened");
    constexpr ALCint NoEffects[] = {ALC_MAX_AUXILIARY_SENDS, 0, 0}; // they'd take memory
    context = alcCreateContext(device, NoEffects);
    if (!context || !alcMakeContextCurrent(context)) {
      if (context) alcDestroyContext(context);
      alcCloseDevice(device);
      throw SoundError("can't create a context on the sound device");
    }
  }
  ~Device() {
    alcMakeContextCurrent(nullptr);
    alcDestroyContext(context);
    alcCloseDevice(device);
  }
  Device(const Device &) = delete;
  Device &operator=(const Device &) = delete;

  ALCdevice *device = nullptr;
  ALCcontext *context = nullptr;
};

void Check(const std::string &what) {
  if (const ALenum error = alGetError(); error != AL_NO_ERROR) {
    throw SoundError(what + ": sound error " + std::to_string(error));
  }
}

struct Wave {
  std::vector<short> Samples;
  int Channels = 0;
  int Rate = 0;
};

/// Checks the declared size of a wave file against its real size, because the library accepts truncated
/// files.
/// @throws FileError
void RequireWhole(const std::filesystem::path &path) {
  constexpr std::size_t Mark = 4, ChunkHeader = 8, FileHeader = 12; // bytes
  const std::vector<char> bytes = ReadFile(path, LargestFile);
  const auto mark = [&](std::size_t at) { return std::string_view(&bytes[at], Mark); };
  const auto number = [&](std::size_t at) {
    std::size_t value = 0;
    for (std::size_t i = 4; i > 0; --i) value = value << 8 | static_cast<unsigned char>(bytes[at + i - 1]);
    return value;
  };
  if (bytes.size() < FileHeader || mark(0) != "RIFF" || mark(8) != "WAVE")
    RefuseFile(path, "not a wave file");
  for (std::size_t at = FileHeader; at + ChunkHeader <= bytes.size();) {
    const std::size_t length = number(at + Mark);
    const bool sound = mark(at) == "data";
    at += ChunkHeader + length;
    if (at > bytes.size()) RefuseFile(path, "the file is truncated");
    if (sound) return;
    at += length % 2; // padded to an even length
  }
  RefuseFile(path, "the wave file has no samples");
}

Wave ReadWave(const std::filesystem::path &path) {
  const std::string name = '"' + path.filename().string() + '"';
  try {
    RequireWhole(path);
  } catch (const FileError &error) {
    throw SoundError(error.what());
  }
  SF_INFO info{};
  const std::unique_ptr<SNDFILE, int (*)(SNDFILE *)> file(sf_open(path.c_str(), SFM_READ, &info), sf_close);
  if (!file) throw SoundError(name + ": " + sf_strerror(nullptr));
  if (info.channels < 1 || info.channels > 2 || info.frames < 1 || info.frames > LongestSound) {
    throw SoundError(name + ": must have one or two channels and last at most a minute");
  }
  Wave wave{std::vector<short>(static_cast<std::size_t>(info.frames * info.channels)), info.channels,
            info.samplerate};
  if (sf_readf_short(file.get(), wave.Samples.data(), info.frames) != info.frames) {
    throw SoundError(name + ": the file is truncated");
  }
  return wave;
}

class OpenAlBuffer : public DirectSoundBuffer {
public:
  OpenAlBuffer(std::shared_ptr<Device> device, const std::filesystem::path &path)
      : device_(std::move(device)), name_('"' + path.filename().string() + '"') {
    const Wave wave = ReadWave(path);
    alGetError();
    alGenBuffers(1, &buffer_);
    alGenSources(1, &source_);
    alBufferData(buffer_, wave.Channels == 1 ? AL_FORMAT_MONO16 : AL_FORMAT_STEREO16, wave.Samples.data(),
                 static_cast<ALsizei>(wave.Samples.size() * sizeof(short)), wave.Rate);
    alSourcei(source_, AL_BUFFER, static_cast<ALint>(buffer_));
    // Otherwise a mono sound is spatialised.
    alSourcei(source_, AL_SOURCE_RELATIVE, AL_TRUE);
    Check(name_);
  }
  ~OpenAlBuffer() override {
    alSourceStop(source_);
    alDeleteSources(1, &source_);
    alDeleteBuffers(1, &buffer_);
  }

  void Play(std::int32_t flags) override {
    ALint state = 0;
    alGetSourcei(source_, AL_SOURCE_STATE, &state);
    if (state == AL_PLAYING) return;
    alSourcei(source_, AL_LOOPING, flags & DSBPLAY_LOOPING ? AL_TRUE : AL_FALSE);
    alSourcePlay(source_);
    Check(name_);
  }

  void Stop() override {
    // Pause keeps the position.
    alSourcePause(source_);
    Check(name_);
  }

private:
  std::shared_ptr<Device> device_;
  std::string name_;
  ALuint buffer_ = 0;
  ALuint source_ = 0;
};

class OpenAlSound : public DirectSound {
public:
  void SetCooperativeLevel(const Window &, std::int32_t level) override {
    if (level != DSSCL_PRIORITY) throw SoundError("an unknown cooperative level");
  }

  std::shared_ptr<DirectSoundBuffer> CreateSoundBufferFromFile(const std::filesystem::path &file,
                                                               const DSBUFFERDESC &,
                                                               const WAVEFORMATEX &) override {
    return std::make_shared<OpenAlBuffer>(device_, file);
  }

private:
  std::shared_ptr<Device> device_ = std::make_shared<Device>();
};

} // namespace

std::shared_ptr<DirectSound> OpenDefaultSound() { return std::make_shared<OpenAlSound>(); }

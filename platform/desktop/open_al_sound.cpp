#include "platform/desktop/open_al_sound.h"

#include "platform/files.h"

#include <AL/al.h>
#include <AL/alc.h>
#include <AL/efx.h>
#include <QtEndian>
#include <sndfile.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <set>
#include <stop_token>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <vector>

namespace {

constexpr int LongestSound = 60;                   ///< seconds
constexpr int LeastRate = 8000, MostRate = 48000;  ///< Hz
constexpr std::uintmax_t LargestFile = 16UL << 20; ///< bytes

// Sounds are streamed from their files. In memory they would take 6 MiB, a third of the launch window's.
constexpr int ChunksPerSecond = 2; ///< sets the length of a chunk
constexpr int ChunksAhead = 3;     ///< queued chunks of a playing sound

/// A refill may be a second late before there is a gap in the sound.
constexpr std::chrono::milliseconds RefillEvery{250};

class OpenAlBuffer;

/// The device, its context and the thread that refills the queues of playing sounds. Every buffer keeps it
/// alive.
class Device {
public:
  Device() {
    device_ = alcOpenDevice(nullptr);
    if (!device_) throw SoundError("no sound device can be opened");
    constexpr ALCint NoEffects[] = {ALC_MAX_AUXILIARY_SENDS, 0, 0}; // saves their memory
    context_ = alcCreateContext(device_, NoEffects);
    if (!context_ || !alcMakeContextCurrent(context_)) {
      Close();
      throw SoundError("can't create a context on the sound device");
    }
    try {
      refiller_ = std::jthread([this](const std::stop_token &end) { Refill(end); });
    } catch (const std::system_error &) {
      Close();
      throw SoundError("no thread can be started for sound");
    }
  }
  ~Device() {
    refiller_.request_stop();
    refiller_.join();
    const std::scoped_lock lock(mutex_);
    Close();
  }
  Device(const Device &) = delete;
  Device &operator=(const Device &) = delete;

  /// Makes this device current. While the result lives, no other thread uses a device.
  std::unique_lock<std::mutex> Use() {
    std::unique_lock lock(mutex_);
    alcMakeContextCurrent(context_);
    return lock;
  }

  std::set<OpenAlBuffer *> Buffers;

private:
  void Refill(const std::stop_token &end);

  void Close() {
    alcMakeContextCurrent(nullptr);
    if (context_) alcDestroyContext(context_);
    alcCloseDevice(device_);
  }

  static inline std::mutex mutex_; ///< of all devices, because one context is current in the whole process
  ALCdevice *device_ = nullptr;
  ALCcontext *context_ = nullptr;
  std::condition_variable_any ending_;
  std::jthread refiller_;
};

void Check(const std::string &what) {
  if (const ALenum error = alGetError(); error != AL_NO_ERROR) {
    throw SoundError(what + ": sound error " + std::to_string(error));
  }
}

/// Checks the declared size of a wave file against its real size, because the library accepts truncated
/// files. Reads the headers only.
/// @throws FileError
void RequireComplete(const std::filesystem::path &path) {
  constexpr std::size_t Mark = 4, ChunkHeader = 8, FileHeader = 12; // bytes
  auto [size, file] = OpenFile(path, LargestFile);
  std::array<char, FileHeader> header{};
  const auto mark = [&](std::size_t at) { return std::string_view(&header[at], Mark); };
  if (!file.read(header.data(), FileHeader) || mark(0) != "RIFF" || mark(8) != "WAVE")
    RefuseFile(path, "not a wave file");
  for (std::uintmax_t at = FileHeader; at + ChunkHeader <= size;) {
    if (!file.seekg(static_cast<std::streamoff>(at)).read(header.data(), ChunkHeader))
      RefuseFile(path, "can't be read");
    const std::uintmax_t length = qFromLittleEndian<quint32>(&header[Mark]);
    at += ChunkHeader + length;
    if (at > size) RefuseFile(path, "the file is truncated");
    if (mark(0) == "data") return;
    at += length % 2; // padded to an even length
  }
  RefuseFile(path, "the wave file has no samples");
}

/// A wave file from which samples are read.
class Wave {
public:
  /// @throws SoundError  if it is unusable
  explicit Wave(const std::filesystem::path &path) {
    const std::string name = '"' + path.filename().string() + '"';
    try {
      RequireComplete(path);
    } catch (const FileError &error) {
      throw SoundError(error.what());
    }
    file_.reset(sf_open(path.c_str(), SFM_READ, &info_));
    if (!file_) throw SoundError(name + ": " + sf_strerror(nullptr));
    const bool usable = info_.channels >= 1 && info_.channels <= 2 && info_.samplerate >= LeastRate &&
                        info_.samplerate <= MostRate && info_.frames >= 1 &&
                        info_.frames <= sf_count_t{LongestSound} * info_.samplerate;
    if (!usable) {
      throw SoundError(name + ": must have one or two channels, 8 to 48 kHz, and last at most a minute");
    }
  }

  int Channels() const { return info_.channels; }
  int Rate() const { return info_.samplerate; }

  void Rewind() { sf_seek(file_.get(), 0, SEEK_SET); }

  /// The next chunk of samples; shorter or empty at the end. A loop continues with the beginning.
  std::vector<short> Read(bool loop) {
    const sf_count_t frames = info_.samplerate / ChunksPerSecond;
    std::vector<short> samples(static_cast<std::size_t>(frames * info_.channels));
    sf_count_t done = 0;
    bool rewound = false;
    while (done < frames) {
      const sf_count_t read = sf_readf_short(
          file_.get(), &samples[static_cast<std::size_t>(done * info_.channels)], frames - done);
      done += read;
      if (read > 0) {
        rewound = false;
      } else if (loop && !rewound) {
        Rewind();
        rewound = true;
      } else {
        break;
      }
    }
    samples.resize(static_cast<std::size_t>(done * info_.channels));
    return samples;
  }

private:
  SF_INFO info_{};
  std::unique_ptr<SNDFILE, int (*)(SNDFILE *)> file_{nullptr, sf_close};
};

class OpenAlBuffer : public DirectSoundBuffer {
public:
  OpenAlBuffer(std::shared_ptr<Device> device, const std::filesystem::path &path)
      : device_(std::move(device)), name_('"' + path.filename().string() + '"'), wave_(path) {
    const auto use = device_->Use();
    alGetError();
    alGenSources(1, &source_);
    // Otherwise a mono sound is spatialised.
    alSourcei(source_, AL_SOURCE_RELATIVE, AL_TRUE);
    Check(name_);
    device_->Buffers.insert(this);
  }
  ~OpenAlBuffer() override {
    const auto use = device_->Use();
    device_->Buffers.erase(this);
    alSourceStop(source_);
    DropPlayed();
    alDeleteSources(1, &source_);
  }

  void Play(std::int32_t flags) override {
    const auto use = device_->Use();
    Refill();
    if (playing_) return;
    loop_ = (flags & DSBPLAY_LOOPING) != 0;
    alGetError();
    DropPlayed();
    if (!Queue()) {
      wave_.Rewind();
      Queue();
    }
    alSourcePlay(source_);
    Check(name_);
    playing_ = true;
  }

  void Stop() override {
    const auto use = device_->Use();
    Refill();
    if (!playing_) return;
    // Pausing keeps the position; stopping would not.
    alGetError();
    alSourcePause(source_);
    Check(name_);
    playing_ = false;
  }

  /// Replaces the chunks that have been played. Call while the device is in use.
  void Refill() {
    if (!playing_) return;
    DropPlayed();
    const bool ranDry = Queued() == 0;
    if (!Queue()) {
      playing_ = false;
    } else if (ranDry) {
      alSourcePlay(source_);
    }
  }

private:
  ALint Queued() const {
    ALint count = 0;
    alGetSourcei(source_, AL_BUFFERS_QUEUED, &count);
    return count;
  }

  void DropPlayed() {
    ALint count = 0;
    alGetSourcei(source_, AL_BUFFERS_PROCESSED, &count);
    std::vector<ALuint> played(static_cast<std::size_t>(count));
    alSourceUnqueueBuffers(source_, count, played.data());
    alDeleteBuffers(count, played.data());
  }

  /// Fills the queue. Returns whether it has any chunk.
  bool Queue() {
    ALint queued = Queued();
    for (; queued < ChunksAhead; ++queued) {
      const std::vector<short> samples = wave_.Read(loop_);
      if (samples.empty()) break;
      ALuint chunk = 0;
      alGenBuffers(1, &chunk);
      alBufferData(chunk, wave_.Channels() == 1 ? AL_FORMAT_MONO16 : AL_FORMAT_STEREO16, samples.data(),
                   static_cast<ALsizei>(samples.size() * sizeof(short)), wave_.Rate());
      alSourceQueueBuffers(source_, 1, &chunk);
    }
    return queued > 0;
  }

  std::shared_ptr<Device> device_;
  std::string name_;
  Wave wave_;
  ALuint source_ = 0;
  bool playing_ = false;
  bool loop_ = false;
};

void Device::Refill(const std::stop_token &end) {
  std::unique_lock lock(mutex_);
  while (!end.stop_requested()) {
    alcMakeContextCurrent(context_);
    for (OpenAlBuffer *buffer : Buffers) buffer->Refill();
    ending_.wait_for(lock, end, RefillEvery, [] { return false; });
  }
}

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

#include "platform/headless/headless_sound.h"

namespace {

class HeadlessBuffer : public DirectSoundBuffer {
public:
  HeadlessBuffer(HeadlessMachine &machine, std::string file) : machine_(machine), file_(std::move(file)) {}

  void Play(std::int32_t flags) override {
    if (machine_.BrokenPlays.contains(file_)) throw SoundError('"' + file_ + "\": can't be played");
    machine_.Sounds.push_back((flags == DSBPLAY_LOOPING ? "loop " : "play ") + file_);
  }

  void Stop() override { machine_.Sounds.push_back("stop " + file_); }

private:
  HeadlessMachine &machine_;
  std::string file_;
};

class HeadlessSound : public DirectSound {
public:
  explicit HeadlessSound(HeadlessMachine &machine) : machine_(machine) {}

  void SetCooperativeLevel(const Window &, std::int32_t) override {}

  std::shared_ptr<DirectSoundBuffer> CreateSoundBufferFromFile(const std::filesystem::path &file,
                                                               const DSBUFFERDESC &,
                                                               const WAVEFORMATEX &) override {
    const std::string name = file.filename().string();
    if (machine_.BrokenSounds.contains(name)) throw SoundError('"' + name + "\": not a wave file");
    return std::make_shared<HeadlessBuffer>(machine_, name);
  }

private:
  HeadlessMachine &machine_;
};

} // namespace

std::shared_ptr<DirectSound> HeadlessDirectX::DirectSoundCreate(const std::string &) {
  if (machine_.NoSoundDevice) throw SoundError("no sound device");
  return std::make_shared<HeadlessSound>(machine_);
}

std::shared_ptr<DirectPlay4> HeadlessDirectX::DirectPlayCreate(const std::string &) {
  if (!machine_.MakeDirectPlay) throw DirectPlayError("no network");
  return machine_.MakeDirectPlay();
}

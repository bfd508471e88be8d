#pragma once

// The root object of sound, network and display.

#include "platform/direct_play.h"
#include "platform/direct_sound.h"

#include <memory>
#include <string>

class DirectX7 {
public:
  virtual ~DirectX7() = default;

  /// The default device's sound object; `device` is empty.
  /// @throws SoundError  if there is no sound device or it can't be opened
  virtual std::shared_ptr<DirectSound> DirectSoundCreate(const std::string &device) = 0;

  /// A new network object, not yet bound to a connection; `provider` is empty.
  /// @throws DirectPlayError  if there is no network at all
  virtual std::shared_ptr<DirectPlay4> DirectPlayCreate(const std::string &provider) = 0;

  /// Bits per pixel that the game can use: 16 if the screen has 16 or more, since it then always provides a
  /// High Color surface; else the screen's depth.
  virtual int SystemBpp() = 0;
};

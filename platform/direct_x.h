#pragma once

// The root object of what lies beside the scene: sound, network and the display.

#include "platform/direct_play.h"
#include "platform/direct_sound.h"

#include <memory>
#include <string>

class DirectX7 {
public:
  virtual ~DirectX7() = default;

  /// The default device's sound object; `device` is empty.
  /// @throws SoundError  if the computer has no sound device or it can't be opened
  virtual std::shared_ptr<DirectSound> DirectSoundCreate(const std::string &device) = 0;

  /// A fresh network object, bound to no connection; `provider` is empty.
  /// @throws DirectPlayError  if the network can't be used at all
  virtual std::shared_ptr<DirectPlay4> DirectPlayCreate(const std::string &provider) = 0;

  /// Bits per pixel in which the game can show itself: 16 wherever the screen has 16 or more, since a High
  /// Color surface can always be had there, and the screen's own depth where it has fewer.
  virtual int SystemBpp() = 0;
};

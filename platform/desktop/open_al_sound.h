#pragma once

#include "platform/direct_sound.h"

#include <memory>

/// Opens the default sound device on OpenAL.
/// @throws SoundError  if there is none
std::shared_ptr<DirectSound> OpenDefaultSound();

#pragma once

// The root object of what lies beside the scene: sound, network and the display, and the sockets library.

#include "platform/direct_play.h"
#include "platform/direct_sound.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

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

/// What `Sockets::WSAStartup` tells of the library.
struct WSADATA {
  std::uint16_t wVersion = 0; ///< low byte major, high byte minor
  std::uint16_t iMaxSockets = 0;
};

/// An answer of `Sockets::gethostbyname`.
struct hostent_record {
  std::int16_t h_length = 0;            ///< bytes of an address
  std::vector<std::string> h_addr_list; ///< addresses as raw bytes, the preferred one first
};

/// The calls by which a computer learns its own address.
class Sockets {
public:
  virtual ~Sockets() = default;
  virtual int WSAStartup(std::uint16_t version, WSADATA &data) = 0;         ///< 0 on success
  virtual int WSACleanup() = 0;                                             ///< 0 on success
  virtual std::int32_t WSAGetLastError() = 0;                               ///< number of the last failure
  virtual int gethostname(std::string &name, int size) = 0;                 ///< -1 on failure
  virtual const hostent_record *gethostbyname(const std::string &name) = 0; ///< null on failure
};

#pragma once

// The part of the sockets library that the game uses: finding the computer's own address.

#include <cstdint>
#include <string>
#include <vector>

/// Result of `Sockets::WSAStartup`.
struct WSADATA {
  std::uint16_t wVersion = 0; ///< low byte major, high byte minor
  std::uint16_t iMaxSockets = 0;
};

/// Result of `Sockets::gethostbyname`.
struct hostent_record {
  std::int16_t h_length = 0;            ///< size of an address, bytes
  std::vector<std::string> h_addr_list; ///< addresses as raw bytes, the preferred one first
};

/// The library. Each start needs a clean-up.
class Sockets {
public:
  virtual ~Sockets() = default;
  virtual int WSAStartup(std::uint16_t version, WSADATA &data) = 0;         ///< 0 on success
  virtual int WSACleanup() = 0;                                             ///< 0 on success
  virtual std::int32_t WSAGetLastError() = 0;                               ///< code of the last failure
  virtual int gethostname(std::string &name, int size) = 0;                 ///< -1 on failure
  virtual const hostent_record *gethostbyname(const std::string &name) = 0; ///< null on failure
};

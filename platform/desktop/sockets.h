#pragma once

#include "platform/sockets.h"

/// The sockets library on POSIX, where it needs no start.
class DesktopSockets : public Sockets {
public:
  int WSAStartup(std::uint16_t version, WSADATA &data) override;
  int WSACleanup() override { return 0; }
  std::int32_t WSAGetLastError() override { return lastError_; }
  int gethostname(std::string &name, int size) override;

  /// The addresses of this computer: IPv4 before IPv6, of the interfaces that are up and not loopback;
  /// 127.0.0.1 if there are none. A name that resolves to the loopback address, as many computers' own does,
  /// must not hide them, so the interfaces are asked and not the name.
  const hostent_record *gethostbyname(const std::string &name) override;

private:
  std::int32_t lastError_ = 0;
  hostent_record entry_;
};

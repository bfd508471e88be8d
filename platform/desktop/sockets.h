#pragma once

#include "platform/sockets.h"

class HomeRouter;

/// The sockets library on POSIX, where it needs no initialisation.
class DesktopSockets : public Sockets {
public:
  /// @param router  may know the public address; may be null
  explicit DesktopSockets(HomeRouter *router = nullptr) : router_(router) {}

  int WSAStartup(std::uint16_t version, WSADATA &data) override;
  int WSACleanup() override { return 0; }
  std::int32_t WSAGetLastError() override { return lastError_; }
  int gethostname(std::string &name, int size) override;

  /// The address at which others reach this computer, ignoring the name, which may resolve to the loopback
  /// address: the public address of the home router if known; else the source address of the default route;
  /// else those of the interfaces that are up and not bridges, IPv4 before IPv6; else 127.0.0.1.
  const hostent_record *gethostbyname(const std::string &name) override;

private:
  HomeRouter *router_;
  std::int32_t lastError_ = 0;
  hostent_record entry_;
};

#pragma once

#include "platform/sockets.h"

class HomeRouter;

/// The sockets library on POSIX, where it needs no start.
class DesktopSockets : public Sockets {
public:
  /// @param router  knows the public address, maybe; null: nobody does
  explicit DesktopSockets(HomeRouter *router = nullptr) : router_(router) {}

  int WSAStartup(std::uint16_t version, WSADATA &data) override;
  int WSACleanup() override { return 0; }
  std::int32_t WSAGetLastError() override { return lastError_; }
  int gethostname(std::string &name, int size) override;

  /// The address at which others reach this computer, whatever the name: the home router's public one if that
  /// is known; else the one by which this computer reaches the Internet; else those of the interfaces that
  /// are plugged in and no bridges, IPv4 before IPv6; 127.0.0.1 if there is none. A computer's own name may
  /// resolve to the loopback address, so it isn't looked at.
  const hostent_record *gethostbyname(const std::string &name) override;

private:
  HomeRouter *router_;
  std::int32_t lastError_ = 0;
  hostent_record entry_;
};

#pragma once

// The home router, which blocks incoming connections: opens a port for a waiting host, keeps it open, and
// finds out the public address.

#include "platform/session/transport.h"

#include <memory>
#include <optional>
#include <string>

/// Talks to the router on its own thread, started with the first port. All calls come from the game's one
/// thread and return at once unless stated otherwise.
class HomeRouter {
public:
  HomeRouter();

  /// Waits at most a second for the removal of the mappings.
  ~HomeRouter();

  HomeRouter(const HomeRouter &) = delete;
  HomeRouter &operator=(const HomeRouter &) = delete;

  /// Opens the port, TCP and UDP, and keeps it open while the returned object lives. If it is taken on the
  /// router, opens another port that joiners try. Only one port at a time: a new one replaces the previous
  /// one.
  std::unique_ptr<session::RouterPort> Open(std::uint16_t port);

  /// The public IPv4 address of the router; nothing if unknown. Waits at most two seconds during the first
  /// search for a router.
  std::optional<std::string> PublicAddress();

private:
  struct State;
  class Worker;
  class OpenedPort;

  std::shared_ptr<State> state_; ///< shared with the thread, which may outlive this object
};

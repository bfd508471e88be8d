#pragma once

// The router of the home, which lets nobody in who wasn't asked: opens a port of it for a waiting host, keeps
// it open, and learns the public address on the way.

#include "platform/session/transport.h"

#include <memory>
#include <optional>
#include <string>

/// Talks to the router on a thread of its own, which starts with the first opened port. Everything here is
/// called from the game's one thread and returns at once but where it says otherwise.
class HomeRouter {
public:
  HomeRouter();

  /// Waits, at most a second, until the router has been told to close what is open.
  ~HomeRouter();

  HomeRouter(const HomeRouter &) = delete;
  HomeRouter &operator=(const HomeRouter &) = delete;

  /// Has the port, TCP and UDP, opened until the returned object's end; renewed as long as that lives. Where
  /// it is taken on the router another one on which a host is looked for takes its place. One port at a time:
  /// a new one replaces the one before.
  std::unique_ptr<session::RouterPort> Open(std::uint16_t port);

  /// The router's public IPv4 address; nothing if no router has told one. Waits, at most two seconds, while a
  /// router is being looked for the first time.
  std::optional<std::string> PublicAddress();

private:
  struct State;
  class Worker;
  class OpenedPort;

  std::shared_ptr<State>
      state_; ///< the thread's too: it may outlive this object when a router doesn't answer
};

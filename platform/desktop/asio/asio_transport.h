#pragma once

// Streams and datagrams on real sockets. Every socket is non-blocking and polled; only name lookups run on a
// thread.

#include "platform/desktop/asio/asio_network.h"
#include "platform/session/transport.h"

#include <asio.hpp>

class HomeRouter;

class AsioTransport : public session::Transport {
public:
  /// @param router  may be null
  /// @param watch   watches every stream; may be empty
  AsioTransport(HomeRouter *router, WatchSocket watch) : router_(router), watch_(std::move(watch)) {}

  void Poll() override {}
  std::unique_ptr<session::Listener> Listen(session::Reach reach, std::uint16_t port) override;
  std::unique_ptr<session::DatagramPort> OpenDatagrams(session::Reach reach, std::uint16_t port) override;
  std::unique_ptr<session::RouterPort> OpenRouterPort(std::uint16_t port) override;
  std::unique_ptr<session::Stream> Connect(const session::Endpoint &to) override;
  std::unique_ptr<session::Lookup> LookUp(const std::string &name) override;
  void FillRandom(std::span<std::uint8_t> bytes) override;
  void WakeAt(std::optional<std::int32_t>) override {} // the machine pumps often enough
  bool Rest(std::int32_t milliseconds) override;

private:
  HomeRouter *router_;
  WatchSocket watch_;
  asio::io_context context_;
};

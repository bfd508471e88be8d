#include "platform/desktop/asio/asio_transport.h"

#include "platform/desktop/asio/asio_datagrams.h"
#include "platform/desktop/asio/asio_network.h"
#include "platform/desktop/router/home_router.h"
#include "platform/search_dialog.h"
#include "platform/session/session_direct_play.h"

#include <netdb.h>
#include <poll.h>
#include <sys/random.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <thread>

namespace {

using session::StreamState;
using Tcp = asio::ip::tcp;

class AsioStream : public session::Stream {
public:
  AsioStream(Tcp::socket socket, StreamState state, std::string peer, const WatchSocket &watch = {})
      : socket_(std::move(socket)), state_(state), peer_(std::move(peer)) {
    std::error_code ignored;
    socket_.set_option(Tcp::no_delay(true), ignored);
    const bool lives = state == StreamState::Connecting || state == StreamState::Open;
    if (lives && watch) watch_ = watch(socket_.native_handle());
  }

  StreamState GetState() override {
    if (state_ == StreamState::Connecting) LookAtConnect();
    return state_;
  }

  const std::string &Peer() const override { return peer_; }

  std::size_t Receive(std::span<std::uint8_t> into) override {
    if (GetState() != StreamState::Open) return 0;
    std::error_code error;
    const std::size_t count = socket_.read_some(asio::buffer(into.data(), into.size()), error);
    if (error && error != asio::error::would_block) End(StreamState::Closed);
    return error ? 0 : count;
  }

  std::size_t Send(session::ByteView bytes) override {
    if (GetState() != StreamState::Open) return 0;
    std::error_code error;
    const std::size_t count = socket_.write_some(asio::buffer(bytes.data(), bytes.size()), error);
    // After an error there may still be data; `Receive` finds the end.
    return error ? 0 : count;
  }

private:
  void LookAtConnect() {
    pollfd look{socket_.native_handle(), POLLOUT, 0};
    if (::poll(&look, 1, 0) <= 0) return;
    int failure = 0;
    socklen_t size = sizeof failure;
    getsockopt(socket_.native_handle(), SOL_SOCKET, SO_ERROR, &failure, &size);
    if (failure == 0) {
      state_ = StreamState::Open;
    } else {
      End(failure == ECONNREFUSED ? StreamState::Refused : StreamState::Closed);
    }
  }

  void End(StreamState state) {
    state_ = state;
    watch_.reset(); // to the system an ended connection always has data
  }

  Tcp::socket socket_;
  StreamState state_;
  std::string peer_;
  std::shared_ptr<void> watch_; ///< ends before the socket is closed
};

class AsioListener : public session::Listener {
public:
  AsioListener(Tcp::acceptor acceptor, WatchSocket watch)
      : acceptor_(std::move(acceptor)), watch_(std::move(watch)) {}

  std::unique_ptr<session::Stream> Accept() override {
    std::error_code error;
    Tcp::endpoint peer;
    Tcp::socket socket = acceptor_.accept(peer, error);
    if (!error) socket.non_blocking(true, error);
    if (error) return nullptr;
    return std::make_unique<AsioStream>(std::move(socket), StreamState::Open,
                                        PlainAddress(peer.address()).to_string(), watch_);
  }

private:
  Tcp::acceptor acceptor_;
  WatchSocket watch_; ///< for the streams
};

std::vector<std::string> AddressesOf(const std::string &name) {
  // The one name that must work without a name service.
  if (name == "localhost") return {"127.0.0.1", "::1"};
  addrinfo wanted{};
  wanted.ai_socktype = SOCK_STREAM;
  addrinfo *list = nullptr;
  if (getaddrinfo(name.c_str(), nullptr, &wanted, &list) != 0) return {};
  const std::unique_ptr<addrinfo, void (*)(addrinfo *)> owner(list, freeaddrinfo);
  std::vector<std::string> addresses;
  for (const addrinfo *each = list; each; each = each->ai_next) {
    Tcp::endpoint endpoint;
    if (each->ai_addrlen > endpoint.capacity()) continue;
    std::memcpy(endpoint.data(), each->ai_addr, each->ai_addrlen);
    addresses.push_back(PlainAddress(endpoint.address()).to_string());
  }
  return addresses;
}

/// Resolves on a detached thread, because without a name server the system takes half a minute to fail.
class AsioLookup : public session::Lookup {
public:
  explicit AsioLookup(const std::string &name) {
    try {
      std::thread([name, found = found_] {
        found->addresses = AddressesOf(name);
        found->done = true;
      }).detach();
    } catch (const std::system_error &) {
      found_->done = true; // no thread available: the name is unknown
    }
  }
  bool Done() override { return found_->done; }
  std::vector<std::string> Addresses() override { return found_->addresses; }

private:
  /// Shared with the thread, which may outlive the lookup.
  struct Found {
    std::atomic<bool> done = false; ///< `addresses` is complete
    std::vector<std::string> addresses;
  };
  std::shared_ptr<Found> found_ = std::make_shared<Found>();
};

/// A listening socket; null if the port isn't available.
std::unique_ptr<session::Listener> ListenAt(asio::io_context &context, const Tcp::endpoint &at,
                                            const WatchSocket &watch) {
  std::error_code error;
  Tcp::acceptor acceptor(context);
  acceptor.open(at.protocol(), error);
  if (!error && at.protocol() == Tcp::v6()) acceptor.set_option(asio::ip::v6_only(false), error);
  // Allows a port in TIME_WAIT, but not one on which another program listens.
  if (!error) acceptor.set_option(Tcp::acceptor::reuse_address(true), error);
  if (!error) acceptor.bind(at, error);
  if (!error) acceptor.listen(asio::socket_base::max_listen_connections, error);
  if (!error) acceptor.non_blocking(true, error);
  if (error) return nullptr;
  return std::make_unique<AsioListener>(std::move(acceptor), watch);
}

} // namespace

std::unique_ptr<session::Listener> AsioTransport::Listen(session::Reach reach, std::uint16_t port) {
  if (reach == session::Reach::ThisComputer) {
    return ListenAt(context_, {asio::ip::address_v4::loopback(), port}, watch_);
  }
  // One socket for both IPv6 and IPv4; IPv4 only if the system has no IPv6.
  if (auto both = ListenAt(context_, {asio::ip::address_v6::any(), port}, watch_)) return both;
  return ListenAt(context_, {asio::ip::address_v4::any(), port}, watch_);
}

std::unique_ptr<session::DatagramPort> AsioTransport::OpenDatagrams(session::Reach reach,
                                                                    std::uint16_t port) {
  return OpenAsioDatagrams(context_, reach, port);
}

std::unique_ptr<session::RouterPort> AsioTransport::OpenRouterPort(std::uint16_t port) {
  return router_ ? router_->Open(port) : nullptr;
}

std::unique_ptr<session::Stream> AsioTransport::Connect(const session::Endpoint &to) {
  std::error_code error;
  const auto address = asio::ip::make_address(to.Address, error);
  Tcp::socket socket(context_);
  const Tcp::endpoint at(address, to.Port);
  if (!error) socket.open(at.protocol(), error);
  if (!error) socket.non_blocking(true, error);
  if (error) return std::make_unique<AsioStream>(Tcp::socket(context_), StreamState::Closed, to.Address);
  // The system call, because the library's connect blocks even on a non-blocking socket.
  if (::connect(socket.native_handle(), at.data(), static_cast<socklen_t>(at.size())) == 0) {
    return std::make_unique<AsioStream>(std::move(socket), StreamState::Open, to.Address, watch_);
  }
  const StreamState state = errno == EINPROGRESS    ? StreamState::Connecting
                            : errno == ECONNREFUSED ? StreamState::Refused
                                                    : StreamState::Closed;
  return std::make_unique<AsioStream>(std::move(socket), state, to.Address, watch_);
}

std::unique_ptr<session::Lookup> AsioTransport::LookUp(const std::string &name) {
  return std::make_unique<AsioLookup>(name);
}

void AsioTransport::FillRandom(std::span<std::uint8_t> bytes) {
  if (getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) {
    throw std::runtime_error("can't get random bytes from the system");
  }
}

bool AsioTransport::Rest(std::int32_t milliseconds) {
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
  return true;
}

std::shared_ptr<DirectPlay4> CreateAsioDirectPlay(Machine &machine, HomeRouter *router, WatchSocket watch) {
  return std::make_shared<session::SessionDirectPlay>(
      machine, std::make_shared<AsioTransport>(router, std::move(watch)), ShowSearchDialog);
}

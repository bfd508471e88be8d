#pragma once

// The network as the session layer uses it: streams, datagrams, name lookup, random bytes. Nothing here
// blocks; the game's one thread polls everything.

#include "platform/session/bytes.h"

#include <memory>
#include <optional>
#include <tuple>

namespace session {

/// A numeric address and a port.
struct Endpoint {
  std::string Address;
  std::uint16_t Port = 0;
  bool operator==(const Endpoint &) const = default;
  bool operator<(const Endpoint &other) const {
    return std::tie(Address, Port) < std::tie(other.Address, other.Port);
  }
};

constexpr const char *LoopbackAddress = "127.0.0.1";

enum class StreamState {
  Connecting,
  Open,
  Refused, ///< the other computer answered that no program listens on the port
  Closed,  ///< ended by the other side or broken; bytes received before can still be read
};

/// A connection. The destructor closes it; bytes already sent still go out.
class Stream {
public:
  virtual ~Stream() = default;
  virtual StreamState GetState() = 0;

  /// Numeric address of the other computer.
  virtual const std::string &Peer() const = 0;

  /// Reads what has arrived, up to the size of `into`. Returns the number of bytes, 0 if there is nothing.
  virtual std::size_t Receive(std::span<std::uint8_t> into) = 0;

  /// Sends as much as the network takes now. Returns the number of bytes.
  virtual std::size_t Send(ByteView bytes) = 0;
};

/// Accepts connections while it lives.
class Listener {
public:
  virtual ~Listener() = default;
  /// The next connection; null if there is none.
  virtual std::unique_ptr<Stream> Accept() = 0;
};

/// Sends and receives datagrams while it lives. Any of them may get lost.
class DatagramPort {
public:
  virtual ~DatagramPort() = default;
  /// Receives the next datagram. False if there is none.
  virtual bool Receive(Endpoint &from, Bytes &data) = 0;
  virtual void Send(const Endpoint &to, ByteView data) = 0;
  /// Sends to the port on every computer of the local network, including this one.
  virtual void SendToAll(std::uint16_t port, ByteView data) = 0;
};

/// The resolution of a name.
class Lookup {
public:
  virtual ~Lookup() = default;
  virtual bool Done() = 0;
  /// Numeric addresses, the preferred one first; none if the name is unknown.
  virtual std::vector<std::string> Addresses() = 0;
};

/// A port of the home router that is forwarded to this computer while the object lives.
class RouterPort {
public:
  virtual ~RouterPort() = default;
};

enum class Reach { ThisComputer, Network };

class Transport {
public:
  virtual ~Transport() = default;

  /// Handles everything that is due.
  virtual void Poll() = 0;

  /// Null if the port isn't available.
  virtual std::unique_ptr<Listener> Listen(Reach reach, std::uint16_t port) = 0;

  /// Null if the port isn't available. Port 0 is any free one.
  virtual std::unique_ptr<DatagramPort> OpenDatagrams(Reach reach, std::uint16_t port) = 0;

  /// Asks the home router to forward the port, TCP and UDP, to this computer while the result lives. Success
  /// isn't reported. May be null.
  virtual std::unique_ptr<RouterPort> OpenRouterPort(std::uint16_t port) = 0;

  virtual std::unique_ptr<Stream> Connect(const Endpoint &to) = 0;
  virtual std::unique_ptr<Lookup> LookUp(const std::string &name) = 0;

  /// Cryptographically random bytes.
  virtual void FillRandom(std::span<std::uint8_t> bytes) = 0;

  /// Sets when the session must be polled again at the latest, if nothing arrives before.
  virtual void WakeAt(std::optional<std::int32_t> moment) = 0;

  /// Sleeps without pumping the machine. Returns false if time stands still meanwhile, so that there is no
  /// point in waiting.
  virtual bool Rest(std::int32_t milliseconds) = 0;
};

} // namespace session

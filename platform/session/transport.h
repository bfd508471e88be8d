#pragma once

// What the session layer asks of a network: streams of bytes, datagrams, names, random bytes. Nothing here
// blocks; everything is polled from the game's one thread.

#include "platform/session/bytes.h"

#include <memory>
#include <optional>
#include <tuple>

namespace session {

/// Where a program can be reached: a numeric address and a port.
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
  Refused, ///< the other computer answered that no program listens there
  Closed,  ///< ended by the other side or broken; what came before can still be received
};

/// A connection. Its end closes it; what was sent still goes out.
class Stream {
public:
  virtual ~Stream() = default;
  virtual StreamState GetState() = 0;

  /// Numeric address of the computer at the other end.
  virtual const std::string &Peer() const = 0;

  /// Takes what has come, up to the size of `into`. Returns the number of bytes, 0 if there is nothing.
  virtual std::size_t Receive(std::span<std::uint8_t> into) = 0;

  /// Sends so much as the network takes now. Returns the number of bytes.
  virtual std::size_t Send(ByteView bytes) = 0;
};

/// Takes connections from others until its end.
class Listener {
public:
  virtual ~Listener() = default;
  /// The next connection; null if none waits.
  virtual std::unique_ptr<Stream> Accept() = 0;
};

/// Sends and takes datagrams until its end. Any of them may get lost.
class DatagramPort {
public:
  virtual ~DatagramPort() = default;
  /// Takes the next datagram. False if none waits.
  virtual bool Receive(Endpoint &from, Bytes &data) = 0;
  virtual void Send(const Endpoint &to, ByteView data) = 0;
  /// Sends to that port of every computer of the local network, this one included.
  virtual void SendToAll(std::uint16_t port, ByteView data) = 0;
};

/// The search for a name's addresses.
class Lookup {
public:
  virtual ~Lookup() = default;
  virtual bool Done() = 0;
  /// Numeric addresses, the preferred one first; none if the name is unknown.
  virtual std::vector<std::string> Addresses() = 0;
};

/// A port by which the home router lets callers in to this computer, until its end.
class RouterPort {
public:
  virtual ~RouterPort() = default;
};

enum class Reach { ThisComputer, Network };

class Transport {
public:
  virtual ~Transport() = default;

  /// Moves everything on that waits.
  virtual void Poll() = 0;

  /// Null if the port can't be had.
  virtual std::unique_ptr<Listener> Listen(Reach reach, std::uint16_t port) = 0;

  /// Null if the port can't be had. Port 0 is any free one.
  virtual std::unique_ptr<DatagramPort> OpenDatagrams(Reach reach, std::uint16_t port) = 0;

  /// Has the home router, if there is one that does such a thing, let callers in at that port, TCP and UDP,
  /// as long as the result lives. Nobody is told whether it does. May be null.
  virtual std::unique_ptr<RouterPort> OpenRouterPort(std::uint16_t port) = 0;

  virtual std::unique_ptr<Stream> Connect(const Endpoint &to) = 0;
  virtual std::unique_ptr<Lookup> LookUp(const std::string &name) = 0;

  /// Random bytes that nobody can guess.
  virtual void FillRandom(std::span<std::uint8_t> bytes) = 0;

  /// Tells when the session has to be polled again at the latest, if nothing arrives before.
  virtual void WakeAt(std::optional<std::int32_t> moment) = 0;

  /// Waits some milliseconds for something to arrive, without a pump of the machine. Returns false where time
  /// doesn't go on in such a wait.
  virtual bool Rest(std::int32_t milliseconds) = 0;
};

} // namespace session

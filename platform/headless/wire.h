#pragma once

// A simulated network between simulated computers, with configurable latency, jitter, loss, outages and
// crashes. It runs on a virtual clock and from a seed, so that a failing run can be repeated.

#include "platform/session/transport.h"

#include <functional>
#include <memory>
#include <set>

struct WireState;

class FaultyWire {
public:
  /// An outage: no packet passes between two moments of the clock.
  struct Break {
    std::int32_t From = 0;
    std::int32_t To = 0;
  };

  /// The line between two computers. Traffic of a computer with itself is not affected.
  struct Quality {
    std::int32_t LatencyMs = 1; ///< one way, at least 1
    std::int32_t JitterMs = 0;  ///< random addition, uniform from 0 to this
    double Loss = 0.0;          ///< fraction of packets lost
    std::int32_t LookupMs = 0;  ///< time of a name lookup
    std::vector<Break> Breaks;
  };

  /// Statistics of the line.
  struct Counters {
    long Packets = 0;
    long Lost = 0;       ///< of those; the wire retransmits a connection's itself
    long Connects = 0;   ///< connections established
    long CutStreams = 0; ///< connections that `CutConnections` ended
  };

  /// @param clock  the virtual clock, ms
  FaultyWire(std::function<std::int32_t()> clock, std::uint32_t seed);

  /// The network as the computer with that address sees it.
  std::shared_ptr<session::Transport> Plug(const std::string &address);

  /// Adds a name to the name service.
  void Name(const std::string &name, const std::string &address);

  /// Ends every connection between two computers, as a restarting router does. The line itself stays up.
  void CutConnections();

  /// The program on that computer crashes; its system closes the connections.
  void Kill(const std::string &address);

  /// When something next reaches that computer, or its session is due for a poll. In the past if the computer
  /// hasn't polled since.
  std::optional<std::int32_t> NextArrival(const std::string &address) const;

  /// The ports that home routers currently forward: address and port of each.
  const std::multiset<session::Endpoint> &RouterPorts() const;

  Quality &Line();
  const Counters &Counted() const;

private:
  std::shared_ptr<WireState> state_;
};

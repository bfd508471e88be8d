#pragma once

// A network of memory between computers of memory, as good or as bad as a test wants it: latency, jitter,
// loss, breaks of the line, computers that die. Everything happens on a virtual clock and by a seed, so that
// a run that fails can be run again.

#include "platform/session/transport.h"

#include <functional>
#include <memory>
#include <set>

struct WireState;

class FaultyWire {
public:
  struct Break {
    std::int32_t From = 0; ///< nothing passes from this moment of the clock
    std::int32_t To = 0;   ///< until this one
  };

  /// The line between two computers. A computer reaches itself without any of it.
  struct Quality {
    std::int32_t LatencyMs = 1; ///< one way, at least 1
    std::int32_t JitterMs = 0;  ///< up to so much more, evenly spread
    double Loss = 0.0;          ///< share of the packets that get lost
    std::int32_t LookupMs = 0;  ///< time that a name server takes
    std::vector<Break> Breaks;
  };

  /// What has happened on the line.
  struct Counters {
    long Packets = 0;
    long Lost = 0;       ///< of those; a connection's are sent again by the wire itself
    long Connects = 0;   ///< connections that came up
    long CutStreams = 0; ///< connections that `CutConnections` ended
  };

  /// @param clock  the virtual clock, ms
  FaultyWire(std::function<std::int32_t()> clock, std::uint32_t seed);

  /// The network of the computer with that address.
  std::shared_ptr<session::Transport> Plug(const std::string &address);

  /// Lets computers be found by name.
  void Name(const std::string &name, const std::string &address);

  /// Ends every connection between two computers, as a router does that starts anew. The line itself holds.
  void CutConnections();

  /// The program on that computer ends without a word; its system closes the connections.
  void Kill(const std::string &address);

  /// When something reaches that computer, or its session wants to be polled: in the future, or already past
  /// if the computer hasn't looked at its network since.
  std::optional<std::int32_t> NextArrival(const std::string &address) const;

  /// Ports that programs have had their home routers open just now: address and port of each.
  const std::multiset<session::Endpoint> &RouterPorts() const;

  Quality &Line();
  const Counters &Counted() const;

private:
  std::shared_ptr<WireState> state_;
};

#pragma once

// The state of the simulated network: everything in transit.

#include "platform/headless/wire.h"

#include <array>
#include <deque>
#include <map>
#include <random>
#include <set>

/// Bytes in transit to one end of a connection.
struct WirePipe {
  struct Chunk {
    std::int32_t arrival;
    session::Bytes bytes;
    std::size_t taken = 0;
  };
  std::deque<Chunk> chunks;
  std::size_t held = 0;                 ///< bytes not yet taken by the receiver
  std::int32_t last = 0;                ///< arrival of the last chunk; later bytes don't overtake it
  std::optional<std::int32_t> closedAt; ///< when the receiver sees the end of the stream
  bool dead = false;                    ///< the wire has given up retransmitting
};

/// A connection. Side 0 dialled, side 1 listened.
struct WireCircuit {
  std::array<std::string, 2> address;
  std::uint16_t port = 0;
  std::array<WirePipe, 2> to;
  std::array<bool, 2> ended{};
  std::optional<std::int32_t> dialArrival; ///< when the dial reaches the listener
  std::optional<std::int32_t> answerTime;  ///< travel time of the answer
  std::optional<std::int32_t> answeredAt;  ///< when the answer reaches the dialler
  bool refused = false;
};

struct WireListener {
  std::string address;
  session::Reach reach;
  std::uint16_t port;
  std::deque<std::shared_ptr<WireCircuit>> waiting;
};

struct WireDatagrams {
  struct Datagram {
    std::int32_t arrival;
    session::Endpoint from;
    session::Bytes data;
  };
  std::string address;
  session::Reach reach;
  std::uint16_t port;
  std::deque<Datagram> waiting;
};

struct WirePlug {
  std::string address;
  std::optional<std::int32_t> wake;
  std::optional<std::int32_t> polledAt; ///< the computer has seen what arrived before
};

struct WireState {
  std::function<std::int32_t()> clock;
  std::mt19937 random;
  FaultyWire::Quality line;
  FaultyWire::Counters counters;
  std::map<std::string, std::string> names;
  std::set<std::string> killed;
  std::vector<std::shared_ptr<WireCircuit>> circuits;
  std::vector<std::weak_ptr<WireListener>> listeners;
  std::vector<std::weak_ptr<WireDatagrams>> datagrams;
  std::vector<std::weak_ptr<WirePlug>> plugs;
  std::multiset<session::Endpoint> routerPorts;
  std::uint16_t nextPort = 50000;

  /// Delivers the dials that have arrived to their listeners, and removes finished connections.
  void Advance();

  /// When a packet sent at `sent` arrives; nothing if it gets lost.
  std::optional<std::int32_t> Packet(std::int32_t sent, bool sameComputer);

  /// When a packet arrives if it is retransmitted until it does, first after `pause` ms and then after twice
  /// as long each time. Nothing if the wire gives up.
  std::optional<std::int32_t> Transit(std::int32_t sent, bool sameComputer, std::int32_t pause);

  /// Ends one side of a connection and notifies the other.
  void EndSide(WireCircuit &circuit, std::size_t side);
};

std::unique_ptr<session::Stream> MakeWireStream(std::shared_ptr<WireState> state,
                                                std::shared_ptr<WireCircuit> circuit, std::size_t side);

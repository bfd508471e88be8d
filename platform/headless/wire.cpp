#include "platform/headless/wire.h"

#include "platform/clock.h"
#include "platform/headless/wire_state.h"

#include <algorithm>

using session::Bytes;
using session::ByteView;
using session::Endpoint;
using session::Reach;

namespace {

constexpr std::int32_t DialAgainMs = 1000; ///< before the first retransmission of a dial

class ListenerEnd : public session::Listener {
public:
  ListenerEnd(std::shared_ptr<WireState> state, std::shared_ptr<WireListener> listener)
      : state_(std::move(state)), listener_(std::move(listener)) {}

  ~ListenerEnd() override {
    for (const auto &circuit : listener_->waiting) state_->EndSide(*circuit, 1);
  }

  std::unique_ptr<session::Stream> Accept() override {
    state_->Advance();
    if (listener_->waiting.empty()) return nullptr;
    auto circuit = listener_->waiting.front();
    listener_->waiting.pop_front();
    return MakeWireStream(state_, std::move(circuit), 1);
  }

private:
  std::shared_ptr<WireState> state_;
  std::shared_ptr<WireListener> listener_;
};

class DatagramEnd : public session::DatagramPort {
public:
  DatagramEnd(std::shared_ptr<WireState> state, std::shared_ptr<WireDatagrams> port)
      : state_(std::move(state)), port_(std::move(port)) {}

  bool Receive(Endpoint &from, Bytes &data) override {
    auto &waiting = port_->waiting;
    const auto first = std::ranges::find_if(
        waiting, [&](const WireDatagrams::Datagram &each) { return each.arrival <= state_->clock(); });
    if (first == waiting.end()) return false;
    from = first->from;
    data = std::move(first->data);
    waiting.erase(first);
    return true;
  }

  void Send(const Endpoint &to, ByteView data) override {
    const std::string address = to.Address == session::LoopbackAddress ? port_->address : to.Address;
    for (const auto &weak : state_->datagrams) {
      const auto receiver = weak.lock();
      if (receiver && receiver->address == address && receiver->port == to.Port) Deliver(*receiver, data);
    }
  }

  void SendToAll(std::uint16_t port, ByteView data) override {
    for (const auto &weak : state_->datagrams) {
      const auto receiver = weak.lock();
      if (receiver && receiver->port == port) Deliver(*receiver, data);
    }
  }

private:
  void Deliver(WireDatagrams &receiver, ByteView data) {
    const bool same = receiver.address == port_->address;
    if (!same && (receiver.reach == Reach::ThisComputer || port_->reach == Reach::ThisComputer)) return;
    if (state_->killed.contains(port_->address)) return;
    if (const auto arrival = state_->Packet(state_->clock(), same)) {
      receiver.waiting.push_back({*arrival, {port_->address, port_->port}, Bytes(data.begin(), data.end())});
    }
  }

  std::shared_ptr<WireState> state_;
  std::shared_ptr<WireDatagrams> port_;
};

class WireLookup : public session::Lookup {
public:
  WireLookup(std::shared_ptr<WireState> state, std::vector<std::string> addresses)
      : state_(std::move(state)), begun_(state_->clock()), addresses_(std::move(addresses)) {}
  bool Done() override { return Elapsed(begun_, state_->clock()) >= state_->line.LookupMs; }
  std::vector<std::string> Addresses() override { return addresses_; }

private:
  std::shared_ptr<WireState> state_;
  std::int32_t begun_;
  std::vector<std::string> addresses_;
};

class WireRouterPort : public session::RouterPort {
public:
  WireRouterPort(std::shared_ptr<WireState> state, Endpoint port)
      : state_(std::move(state)), place_(state_->routerPorts.insert(std::move(port))) {}
  ~WireRouterPort() override { state_->routerPorts.erase(place_); }

private:
  std::shared_ptr<WireState> state_;
  std::multiset<Endpoint>::iterator place_;
};

class WireTransport : public session::Transport {
public:
  WireTransport(std::shared_ptr<WireState> state, std::shared_ptr<WirePlug> plug)
      : state_(std::move(state)), plug_(std::move(plug)) {}

  void Poll() override {
    state_->Advance();
    plug_->polledAt = state_->clock();
  }

  std::unique_ptr<session::Listener> Listen(Reach reach, std::uint16_t port) override {
    if (Killed()) return nullptr;
    auto listener = Open(state_->listeners, reach, port);
    return listener ? std::make_unique<ListenerEnd>(state_, std::move(listener)) : nullptr;
  }

  std::unique_ptr<session::DatagramPort> OpenDatagrams(Reach reach, std::uint16_t port) override {
    if (Killed()) return nullptr;
    if (port == 0) port = state_->nextPort++;
    auto opened = Open(state_->datagrams, reach, port);
    return opened ? std::make_unique<DatagramEnd>(state_, std::move(opened)) : nullptr;
  }

  std::unique_ptr<session::RouterPort> OpenRouterPort(std::uint16_t port) override {
    return std::make_unique<WireRouterPort>(state_, Endpoint{plug_->address, port});
  }

  std::unique_ptr<session::Stream> Connect(const Endpoint &to) override {
    auto circuit = std::make_shared<WireCircuit>();
    const std::string address = to.Address == session::LoopbackAddress ? plug_->address : to.Address;
    circuit->address = {plug_->address, address};
    circuit->port = to.Port;
    const bool same = address == plug_->address;
    circuit->dialArrival = Killed() ? std::nullopt : state_->Transit(state_->clock(), same, DialAgainMs);
    if (circuit->dialArrival) {
      if (const auto answer = state_->Transit(*circuit->dialArrival, same, DialAgainMs)) {
        circuit->answerTime = *answer - *circuit->dialArrival;
      }
    }
    state_->circuits.push_back(circuit);
    return MakeWireStream(state_, std::move(circuit), 0);
  }

  std::unique_ptr<session::Lookup> LookUp(const std::string &name) override {
    const auto found = state_->names.find(name);
    if (found != state_->names.end()) return Found({found->second});
    const bool numeric = name.find_first_not_of("0123456789.") == std::string::npos;
    return Found(numeric ? std::vector{name} : std::vector<std::string>());
  }

  void FillRandom(std::span<std::uint8_t> bytes) override {
    for (std::uint8_t &byte : bytes) byte = static_cast<std::uint8_t>(state_->random() >> 8);
  }

  void WakeAt(std::optional<std::int32_t> moment) override { plug_->wake = moment; }

  /// The virtual clock stands still here, and sent bytes arrive without waiting.
  bool Rest(std::int32_t) override { return false; }

private:
  bool Killed() const { return state_->killed.contains(plug_->address); }

  /// Opens a port of this computer. Returns null if it is taken.
  template <class Port>
  std::shared_ptr<Port> Open(std::vector<std::weak_ptr<Port>> &ports, Reach reach, std::uint16_t number) {
    for (const auto &weak : ports) {
      const auto other = weak.lock();
      if (other && other->address == plug_->address && other->port == number) return nullptr;
    }
    auto opened = std::make_shared<Port>(Port{plug_->address, reach, number, {}});
    std::erase_if(ports, [](const auto &each) { return each.expired(); });
    ports.push_back(opened);
    return opened;
  }

  std::unique_ptr<session::Lookup> Found(std::vector<std::string> addresses) {
    return std::make_unique<WireLookup>(state_, std::move(addresses));
  }

  std::shared_ptr<WireState> state_;
  std::shared_ptr<WirePlug> plug_;
};

} // namespace

FaultyWire::FaultyWire(std::function<std::int32_t()> clock, std::uint32_t seed)
    : state_(std::make_shared<WireState>()) {
  state_->clock = std::move(clock);
  state_->random.seed(seed);
}

std::shared_ptr<session::Transport> FaultyWire::Plug(const std::string &address) {
  auto plug = std::make_shared<WirePlug>(WirePlug{address, std::nullopt, std::nullopt});
  std::erase_if(state_->plugs, [](const auto &each) { return each.expired(); });
  state_->plugs.push_back(plug);
  return std::make_shared<WireTransport>(state_, std::move(plug));
}

void FaultyWire::Name(const std::string &name, const std::string &address) { state_->names[name] = address; }

void FaultyWire::CutConnections() {
  const std::int32_t now = state_->clock();
  for (const auto &circuit : state_->circuits) {
    if (circuit->address[0] == circuit->address[1] || circuit->ended[0] || circuit->ended[1]) continue;
    if (circuit->dialArrival || circuit->refused) continue;
    ++state_->counters.CutStreams;
    for (WirePipe &pipe : circuit->to) {
      pipe.dead = true;
      pipe.chunks.clear();
      pipe.closedAt = now + 1;
    }
  }
}

void FaultyWire::Kill(const std::string &address) {
  state_->killed.insert(address);
  for (const auto &circuit : state_->circuits) {
    if (circuit->address[0] == address) state_->EndSide(*circuit, 0);
    if (circuit->address[1] == address && !circuit->dialArrival) state_->EndSide(*circuit, 1);
  }
  std::erase_if(state_->listeners, [&](const auto &weak) {
    const auto listener = weak.lock();
    return !listener || listener->address == address;
  });
  std::erase_if(state_->datagrams, [&](const auto &weak) {
    const auto port = weak.lock();
    return !port || port->address == address;
  });
}

std::optional<std::int32_t> FaultyWire::NextArrival(const std::string &address) const {
  // Arrivals since the last poll, for example during a long draw, are still unseen.
  std::int32_t known = state_->clock();
  for (const auto &weak : state_->plugs) {
    const auto plug = weak.lock();
    if (plug && plug->address == address && plug->polledAt) known = std::min(known, *plug->polledAt);
  }
  std::optional<std::int32_t> next;
  const auto consider = [&](const std::optional<std::int32_t> &moment) {
    if (moment && *moment > known && (!next || *moment < *next)) next = moment;
  };
  for (const auto &circuit : state_->circuits) {
    for (std::size_t side = 0; side < 2; ++side) {
      if (circuit->address[side] != address || circuit->ended[side]) continue;
      for (const auto &chunk : circuit->to[side].chunks) consider(chunk.arrival);
      consider(circuit->to[side].closedAt);
    }
    if (circuit->address[1] == address) consider(circuit->dialArrival);
    if (circuit->address[0] == address) {
      consider(circuit->answeredAt);
      if (circuit->dialArrival && circuit->answerTime) consider(*circuit->dialArrival + *circuit->answerTime);
    }
  }
  for (const auto &weak : state_->datagrams) {
    const auto port = weak.lock();
    if (!port || port->address != address) continue;
    for (const auto &datagram : port->waiting) consider(datagram.arrival);
  }
  for (const auto &weak : state_->plugs) {
    const auto plug = weak.lock();
    if (plug && plug->address == address) consider(plug->wake);
  }
  return next;
}

const std::multiset<Endpoint> &FaultyWire::RouterPorts() const { return state_->routerPorts; }
FaultyWire::Quality &FaultyWire::Line() { return state_->line; }
const FaultyWire::Counters &FaultyWire::Counted() const { return state_->counters; }

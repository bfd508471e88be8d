#include "platform/headless/wire_state.h"

#include <algorithm>

using session::StreamState;

namespace {

constexpr std::size_t SendWindow = 64 * 1024; ///< bytes in flight in one direction, at most
constexpr std::int32_t SendAgainMs = 200;     ///< before the first retransmission of a packet

class WireStream : public session::Stream {
public:
  WireStream(std::shared_ptr<WireState> state, std::shared_ptr<WireCircuit> circuit, std::size_t side)
      : state_(std::move(state)), circuit_(std::move(circuit)), side_(side) {}

  ~WireStream() override { state_->EndSide(*circuit_, side_); }

  StreamState GetState() override {
    state_->Advance();
    const std::int32_t now = state_->clock();
    if (circuit_->ended[side_]) return StreamState::Closed;
    if (side_ == 0) {
      if (!circuit_->answeredAt || now < *circuit_->answeredAt) return StreamState::Connecting;
      if (circuit_->refused) return StreamState::Refused;
    }
    const auto &closedAt = circuit_->to[side_].closedAt;
    return closedAt && now >= *closedAt ? StreamState::Closed : StreamState::Open;
  }

  const std::string &Peer() const override { return circuit_->address[1 - side_]; }

  std::size_t Receive(std::span<std::uint8_t> into) override {
    if (circuit_->ended[side_]) return 0;
    WirePipe &pipe = circuit_->to[side_];
    std::size_t count = 0;
    while (count < into.size() && !pipe.chunks.empty() && pipe.chunks.front().arrival <= state_->clock()) {
      WirePipe::Chunk &chunk = pipe.chunks.front();
      const std::size_t part = std::min(into.size() - count, chunk.bytes.size() - chunk.taken);
      std::copy_n(chunk.bytes.begin() + static_cast<std::ptrdiff_t>(chunk.taken), part,
                  into.begin() + static_cast<std::ptrdiff_t>(count));
      count += part;
      chunk.taken += part;
      pipe.held -= part;
      if (chunk.taken == chunk.bytes.size()) pipe.chunks.pop_front();
    }
    return count;
  }

  std::size_t Send(session::ByteView bytes) override {
    if (GetState() != StreamState::Open) return 0;
    WirePipe &pipe = circuit_->to[1 - side_];
    const std::size_t count = std::min(bytes.size(), SendWindow - std::min(SendWindow, pipe.held));
    if (count == 0) return 0;
    const std::int32_t now = state_->clock();
    const bool same = circuit_->address[0] == circuit_->address[1];
    const auto arrival = pipe.dead ? std::nullopt : state_->Transit(now, same, SendAgainMs);
    if (!arrival) {
      pipe.dead = true;
      pipe.held += count;
      return count;
    }
    pipe.last = std::max(pipe.last, *arrival);
    if (circuit_->ended[1 - side_]) {
      // The other side is gone, and its system resets the connection.
      auto &closedAt = circuit_->to[side_].closedAt;
      if (!closedAt) closedAt = state_->Transit(pipe.last, same, SendAgainMs);
      return count;
    }
    pipe.held += count;
    pipe.chunks.push_back(
        {pipe.last, session::Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(count))});
    return count;
  }

private:
  std::shared_ptr<WireState> state_;
  std::shared_ptr<WireCircuit> circuit_;
  std::size_t side_;
};

} // namespace

std::unique_ptr<session::Stream> MakeWireStream(std::shared_ptr<WireState> state,
                                                std::shared_ptr<WireCircuit> circuit, std::size_t side) {
  return std::make_unique<WireStream>(std::move(state), std::move(circuit), side);
}

void WireState::EndSide(WireCircuit &circuit, std::size_t side) {
  if (circuit.ended[side]) return;
  circuit.ended[side] = true;
  circuit.to[side].chunks.clear();
  WirePipe &pipe = circuit.to[1 - side];
  if (pipe.closedAt || pipe.dead) return;
  const bool same = circuit.address[0] == circuit.address[1];
  if (const auto arrival = Transit(clock(), same, SendAgainMs)) pipe.closedAt = std::max(pipe.last, *arrival);
}

std::optional<std::int32_t> WireState::Packet(std::int32_t sent, bool sameComputer) {
  if (sameComputer) return sent + 1;
  ++counters.Packets;
  const std::int32_t jitter =
      line.JitterMs > 0 ? static_cast<std::int32_t>(random() % static_cast<std::uint32_t>(line.JitterMs + 1))
                        : 0;
  const std::int32_t arrival = sent + std::max(1, line.LatencyMs) + jitter;
  const bool broken = std::ranges::any_of(
      line.Breaks, [&](const FaultyWire::Break &each) { return sent < each.To && arrival >= each.From; });
  const bool lost = line.Loss > 0.0 && static_cast<double>(random()) < line.Loss * 4294967296.0;
  if (!broken && !lost) return arrival;
  ++counters.Lost;
  return std::nullopt;
}

std::optional<std::int32_t> WireState::Transit(std::int32_t sent, bool sameComputer, std::int32_t pause) {
  constexpr int MostAttempts = 10;
  pause += sameComputer ? 0 : 2 * line.LatencyMs;
  for (int attempt = 0; attempt < MostAttempts; ++attempt) {
    if (const auto arrival = Packet(sent, sameComputer)) return arrival;
    sent += pause;
    pause *= 2;
  }
  return std::nullopt;
}

void WireState::Advance() {
  const std::int32_t now = clock();
  for (const auto &circuit : circuits) {
    if (!circuit->dialArrival || *circuit->dialArrival > now) continue;
    const std::int32_t arrived = *circuit->dialArrival;
    circuit->dialArrival.reset();
    if (circuit->answerTime) circuit->answeredAt = arrived + *circuit->answerTime;
    circuit->refused = true;
    for (const auto &weak : listeners) {
      const auto listener = weak.lock();
      if (!listener || listener->address != circuit->address[1] || listener->port != circuit->port) continue;
      if (listener->reach == session::Reach::ThisComputer && circuit->address[0] != circuit->address[1])
        continue;
      circuit->refused = false;
      ++counters.Connects;
      listener->waiting.push_back(circuit);
    }
  }
  std::erase_if(circuits, [](const auto &circuit) {
    return circuit->ended[0] && (circuit->ended[1] || circuit->refused || circuit.use_count() == 1);
  });
}

// NAT-PMP. Routers with its successor PCP usually accept its requests too.

#include "platform/desktop/router/router_protocol.h"

#include <arpa/inet.h>
#include <natpmp.h>
#include <poll.h>

#include <algorithm>
#include <array>
#include <chrono>

namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::milliseconds;

/// The library's object, which owns a socket to the gateway.
class Gateway {
public:
  Gateway() : opened_(initnatpmp(&gateway_, 0, 0) == 0) {}
  ~Gateway() {
    if (gateway_.s >= 0) closenatpmp(&gateway_); // without a route it fails with its socket open
  }
  Gateway(const Gateway &) = delete;
  Gateway &operator=(const Gateway &) = delete;

  /// Null if this computer has no gateway.
  natpmp_t *Get() { return opened_ ? &gateway_ : nullptr; }

private:
  natpmp_t gateway_{};
  bool opened_;
};

/// The answer to the last request; nothing on a time-out or refusal.
std::optional<natpmpresp_t> Await(natpmp_t &gateway, const std::function<bool()> &wanted) {
  natpmpresp_t answer{};
  for (const auto end = Clock::now() + Milliseconds(NatPmpAnswerMs); Clock::now() < end && wanted();) {
    timeval wait{};
    getnatpmprequesttimeout(&gateway, &wait);
    const auto milliseconds = std::clamp<long>(wait.tv_sec * 1000 + wait.tv_usec / 1000, 1, 100);
    pollfd look{gateway.s, POLLIN, 0};
    ::poll(&look, 1, static_cast<int>(milliseconds));
    const int result = readnatpmpresponseorretry(&gateway, &answer);
    if (result == 0) return answer;
    if (result != NATPMP_TRYAGAIN) return std::nullopt;
  }
  return std::nullopt;
}

bool Always() { return true; }

class NatPmp : public RouterProtocol {
public:
  std::optional<std::string> Find(const std::function<bool()> &wanted) override {
    Gateway gateway;
    if (!gateway.Get() || sendpublicaddressrequest(gateway.Get()) < 0) return std::nullopt;
    const auto answer = Await(*gateway.Get(), wanted);
    if (!answer || answer->type != NATPMP_RESPTYPE_PUBLICADDRESS) return std::nullopt;
    std::array<char, INET_ADDRSTRLEN> text{};
    inet_ntop(AF_INET, &answer->pnu.publicaddress.addr, text.data(), text.size());
    return text.data();
  }

  bool Open(std::uint16_t inside, std::uint16_t outside) override {
    // A router assigns another port if that one is taken.
    const auto given = Request(NATPMP_PROTOCOL_TCP, inside, outside, LeaseSeconds);
    if (given != outside) {
      if (given) Request(NATPMP_PROTOCOL_TCP, inside, 0, 0);
      return false;
    }
    const auto datagrams = Request(NATPMP_PROTOCOL_UDP, inside, outside, LeaseSeconds);
    if (datagrams && datagrams != outside) Request(NATPMP_PROTOCOL_UDP, inside, 0, 0);
    return true;
  }

  void Close(std::uint16_t inside, std::uint16_t) override {
    Request(NATPMP_PROTOCOL_TCP, inside, 0, 0);
    Request(NATPMP_PROTOCOL_UDP, inside, 0, 0);
  }

private:
  /// Returns the assigned port. @param seconds  0 removes the mapping
  static std::optional<std::uint16_t> Request(int protocol, std::uint16_t inside, std::uint16_t outside,
                                              unsigned seconds) {
    Gateway gateway;
    if (!gateway.Get()) return std::nullopt;
    if (sendnewportmappingrequest(gateway.Get(), protocol, inside, outside, seconds) < 0) return std::nullopt;
    const auto answer = Await(*gateway.Get(), Always);
    if (!answer || answer->type == NATPMP_RESPTYPE_PUBLICADDRESS) return std::nullopt;
    return answer->pnu.newportmapping.mappedpublicport;
  }
};

} // namespace

std::unique_ptr<RouterProtocol> MakeNatPmp() { return std::make_unique<NatPmp>(); }

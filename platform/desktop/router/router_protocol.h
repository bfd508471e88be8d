#pragma once

// What every protocol that opens a router's port looks like. The calls block, and run on a thread of their
// own (home_router.cpp).

#include "platform/network_times.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

/// Lifetime of a port mapping, seconds, as both protocols have it.
constexpr unsigned LeaseSeconds = RouterLeaseMs / 1000;

class RouterProtocol {
public:
  virtual ~RouterProtocol() = default;

  /// Looks for a router that speaks this protocol, until one answers or `wanted` turns false. Returns its
  /// public IPv4 address as text, which may be empty; nothing if no router answers.
  virtual std::optional<std::string> Find(const std::function<bool()> &wanted) = 0;

  /// Has the router found last pass the port `outside` on to `inside` of this computer: TCP, and UDP where it
  /// takes that too. Renews it where it is open already. Returns false if the router refuses.
  virtual bool Open(std::uint16_t inside, std::uint16_t outside) = 0;

  /// Takes that back.
  virtual void Close(std::uint16_t inside, std::uint16_t outside) = 0;
};

std::unique_ptr<RouterProtocol> MakeNatPmp();
std::unique_ptr<RouterProtocol> MakeUpnp();

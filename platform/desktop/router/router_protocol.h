#pragma once

// The interface of the protocols that open a port of a router. The calls block; they run on a separate thread
// (home_router.cpp).

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

  /// Searches for a router with this protocol until one answers or `wanted` returns false. Returns its public
  /// IPv4 address as text, which may be empty; nothing if no router answers.
  virtual std::optional<std::string> Find(const std::function<bool()> &wanted) = 0;

  /// Makes the router forward port `outside` to `inside` of this computer: TCP, and if possible UDP. Renews
  /// an existing mapping. Returns false if the router refuses.
  virtual bool Open(std::uint16_t inside, std::uint16_t outside) = 0;

  /// Removes the mapping.
  virtual void Close(std::uint16_t inside, std::uint16_t outside) = 0;
};

std::unique_ptr<RouterProtocol> MakeNatPmp();
std::unique_ptr<RouterProtocol> MakeUpnp();

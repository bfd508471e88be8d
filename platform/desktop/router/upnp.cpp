// The UPnP Internet Gateway Device.

#include "platform/desktop/router/router_protocol.h"

#include <miniupnpc/miniupnpc.h>
#include <miniupnpc/upnpcommands.h>

#include <array>

namespace {

constexpr unsigned char HopLimit = 2;    ///< as specified
constexpr int OnlyPermanentLeases = 725; ///< error code of a router without time limits

/// Types of routers and services to search for.
constexpr std::array Types = {"urn:schemas-upnp-org:device:InternetGatewayDevice:1",
                              "urn:schemas-upnp-org:device:InternetGatewayDevice:2",
                              "urn:schemas-upnp-org:service:WANIPConnection:1",
                              "urn:schemas-upnp-org:service:WANPPPConnection:1"};

using Devices = std::unique_ptr<UPNPDev, void (*)(UPNPDev *)>;

Devices Discover(const char *type) {
  int error = 0;
  return {upnpDiscoverDevice(type, UpnpAnswerMs, nullptr, nullptr, UPNP_LOCAL_PORT_ANY, 0, HopLimit, &error),
          freeUPNPDevlist};
}

constexpr std::size_t AddressText = 64; ///< buffer size, bytes; the library needs 46

/// An Internet gateway device.
class Igd {
public:
  explicit Igd(UPNPDev *devices) {
#if MINIUPNPC_API_VERSION >= 18
    std::array<char, AddressText> outside{};
    kind_ = UPNP_GetValidIGD(devices, &urls_, &data_, own_.data(), static_cast<int>(own_.size()),
                             outside.data(), static_cast<int>(outside.size()));
#else
    kind_ = UPNP_GetValidIGD(devices, &urls_, &data_, own_.data(), static_cast<int>(own_.size()));
#endif
  }
  ~Igd() {
    if (kind_ != 0) FreeUPNPUrls(&urls_);
  }
  Igd(const Igd &) = delete;
  Igd &operator=(const Igd &) = delete;

  bool Connected() const { return kind_ == 1; }
  const char *Url() const { return urls_.controlURL; }
  const char *Service() const { return data_.first.servicetype; }
  const char *OwnAddress() const { return own_.data(); } ///< of this computer, as the router sees it

private:
  UPNPUrls urls_{};
  IGDdatas data_{};
  std::array<char, AddressText> own_{};
  int kind_ = 0;
};

class Upnp : public RouterProtocol {
public:
  std::optional<std::string> Find(const std::function<bool()> &wanted) override {
    for (const char *type : Types) {
      if (!wanted()) return std::nullopt;
      const Devices devices = Discover(type);
      if (!devices || !wanted()) continue;
      auto found = std::make_unique<Igd>(devices.get());
      if (!found->Connected()) continue;
      igd_ = std::move(found); // not earlier: the previous one may be needed to close a mapping
      std::array<char, AddressText> address{};
      UPNP_GetExternalIPAddress(igd_->Url(), igd_->Service(), address.data());
      return address.data();
    }
    return std::nullopt;
  }

  bool Open(std::uint16_t inside, std::uint16_t outside) override {
    if (!Map("TCP", inside, outside)) return false;
    Map("UDP", inside, outside);
    return true;
  }

  void Close(std::uint16_t, std::uint16_t outside) override {
    const std::string port = std::to_string(outside);
    for (const char *kind : {"TCP", "UDP"}) {
      UPNP_DeletePortMapping(igd_->Url(), igd_->Service(), port.c_str(), kind, nullptr);
    }
  }

private:
  bool Map(const char *kind, std::uint16_t inside, std::uint16_t outside) {
    const std::string from = std::to_string(outside), to = std::to_string(inside);
    const auto ask = [&](const std::string &seconds) {
      return UPNP_AddPortMapping(igd_->Url(), igd_->Service(), from.c_str(), to.c_str(), igd_->OwnAddress(),
                                 "Snapwedge", kind, nullptr, seconds.c_str());
    };
    int result = ask(std::to_string(LeaseSeconds));
    if (result == OnlyPermanentLeases) result = ask("0");
    return result == UPNPCOMMAND_SUCCESS;
  }

  std::unique_ptr<Igd> igd_; ///< the last one found
};

} // namespace

std::unique_ptr<RouterProtocol> MakeUpnp() { return std::make_unique<Upnp>(); }

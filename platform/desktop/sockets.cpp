#include "platform/desktop/sockets.h"

#include "platform/desktop/router/home_router.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <linux/ethtool.h>
#include <linux/sockios.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <memory>
#include <utility>

namespace {

constexpr std::uint16_t MostSockets = 32767; ///< the reported maximum; POSIX has no limit
constexpr std::int16_t BytesOfIPv4 = 4;
constexpr std::int16_t BytesOfIPv6 = 16;

// Unused addresses behind the default route. Nothing is sent there.
constexpr const char *FarIPv4 = "192.0.2.1";
constexpr const char *FarIPv6 = "2001:db8::1";
constexpr std::uint16_t AnyPort = 9;

using Interfaces = std::unique_ptr<ifaddrs, void (*)(ifaddrs *)>;

Interfaces ReadInterfaces() {
  ifaddrs *list = nullptr;
  if (getifaddrs(&list) != 0) list = nullptr;
  return {list, freeifaddrs};
}

/// Bridges mostly connect containers and virtual machines; those addresses are unreachable from outside.
bool IsBridge(const char *interface) {
  const int socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  if (socket < 0) return false;
  ethtool_drvinfo driver{};
  driver.cmd = ETHTOOL_GDRVINFO;
  ifreq request{};
  std::strncpy(request.ifr_name, interface, IFNAMSIZ - 1);
  request.ifr_data = reinterpret_cast<char *>(&driver);
  const bool known = ioctl(socket, SIOCETHTOOL, &request) == 0;
  close(socket);
  return known && std::strncmp(driver.driver, "bridge", sizeof driver.driver) == 0;
}

/// Raw bytes of an address; empty for another family.
std::string BytesOf(const sockaddr *address, int family) {
  if (!address || address->sa_family != family) return {};
  if (family == AF_INET) {
    return {reinterpret_cast<const char *>(&reinterpret_cast<const sockaddr_in *>(address)->sin_addr),
            BytesOfIPv4};
  }
  return {reinterpret_cast<const char *>(&reinterpret_cast<const sockaddr_in6 *>(address)->sin6_addr),
          BytesOfIPv6};
}

/// Whether an interface is up, plugged in, and not loopback.
bool Works(const ifaddrs &interface) {
  return (interface.ifa_flags & IFF_UP) && (interface.ifa_flags & IFF_RUNNING) &&
         !(interface.ifa_flags & IFF_LOOPBACK);
}

/// Raw addresses of a family on bridges, or on all other interfaces that others may reach.
std::vector<std::string> AddressesOf(const Interfaces &interfaces, int family, bool bridges = false) {
  std::vector<std::string> addresses;
  for (const ifaddrs *each = interfaces.get(); each; each = each->ifa_next) {
    const std::string bytes = BytesOf(each->ifa_addr, family);
    if (bytes.empty() || !Works(*each) || IsBridge(each->ifa_name) != bridges) continue;
    // Link-local addresses are useless without the interface.
    if (family == AF_INET6 &&
        IN6_IS_ADDR_LINKLOCAL(&reinterpret_cast<const sockaddr_in6 *>(each->ifa_addr)->sin6_addr)) {
      continue;
    }
    addresses.push_back(bytes);
  }
  return addresses;
}

/// Raw source address of the default route; empty if there is none or its interface is unplugged.
std::string AddressTowards(const char *far, int family, const Interfaces &interfaces) {
  sockaddr_storage address{};
  auto *const generic = reinterpret_cast<sockaddr *>(&address);
  generic->sa_family = static_cast<sa_family_t>(family);
  socklen_t size = sizeof(sockaddr_in);
  if (family == AF_INET) {
    auto &four = reinterpret_cast<sockaddr_in &>(address);
    four.sin_port = htons(AnyPort);
    inet_pton(family, far, &four.sin_addr);
  } else {
    auto &six = reinterpret_cast<sockaddr_in6 &>(address);
    six.sin6_port = htons(AnyPort);
    inet_pton(family, far, &six.sin6_addr);
    size = sizeof six;
  }
  const int socket = ::socket(family, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  if (socket < 0) return {};
  const bool routed = connect(socket, generic, size) == 0 && getsockname(socket, generic, &size) == 0;
  close(socket);
  if (!routed) return {};
  const std::string source = BytesOf(generic, family);
  for (const ifaddrs *each = interfaces.get(); each; each = each->ifa_next) {
    if (Works(*each) && BytesOf(each->ifa_addr, family) == source) return source;
  }
  return {};
}

} // namespace

int DesktopSockets::WSAStartup(std::uint16_t version, WSADATA &data) {
  data.wVersion = version;
  data.iMaxSockets = MostSockets;
  return 0;
}

int DesktopSockets::gethostname(std::string &name, int size) {
  std::vector<char> buffer(static_cast<std::size_t>(size) + 1, '\0');
  if (::gethostname(buffer.data(), static_cast<std::size_t>(size)) != 0) {
    lastError_ = errno;
    return -1;
  }
  name = buffer.data();
  return 0;
}

const hostent_record *DesktopSockets::gethostbyname(const std::string &) {
  const auto answer = [this](std::int16_t length, std::vector<std::string> addresses) {
    entry_ = {length, std::move(addresses)};
    return !entry_.h_addr_list.empty() && !entry_.h_addr_list.front().empty();
  };
  in_addr outside{};
  const auto router = router_ ? router_->PublicAddress() : std::nullopt;
  if (router && inet_pton(AF_INET, router->c_str(), &outside) == 1) {
    entry_ = {BytesOfIPv4, {std::string(reinterpret_cast<const char *>(&outside), BytesOfIPv4)}};
    return &entry_;
  }
  const Interfaces interfaces = ReadInterfaces();
  const bool found = answer(BytesOfIPv4, {AddressTowards(FarIPv4, AF_INET, interfaces)}) ||
                     answer(BytesOfIPv6, {AddressTowards(FarIPv6, AF_INET6, interfaces)}) ||
                     answer(BytesOfIPv4, AddressesOf(interfaces, AF_INET)) ||
                     answer(BytesOfIPv6, AddressesOf(interfaces, AF_INET6)) ||
                     answer(BytesOfIPv4, AddressesOf(interfaces, AF_INET, true));
  if (!found) entry_ = {BytesOfIPv4, {std::string("\x7F\x00\x00\x01", BytesOfIPv4)}};
  return &entry_;
}

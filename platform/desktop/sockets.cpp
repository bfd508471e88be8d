#include "platform/desktop/sockets.h"

#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>
#include <unistd.h>

#include <cerrno>
#include <memory>

namespace {

constexpr std::uint16_t MostSockets = 32767; ///< what the library says it has; POSIX knows no number
constexpr std::int16_t BytesOfIPv4 = 4;
constexpr std::int16_t BytesOfIPv6 = 16;

/// Raw addresses of that family of the interfaces that are up and not loopback.
std::vector<std::string> AddressesOf(const ifaddrs *first, int family) {
  std::vector<std::string> addresses;
  for (const ifaddrs *each = first; each; each = each->ifa_next) {
    if (!each->ifa_addr || each->ifa_addr->sa_family != family) continue;
    if (!(each->ifa_flags & IFF_UP) || (each->ifa_flags & IFF_LOOPBACK)) continue;
    if (family == AF_INET) {
      const auto &address = *reinterpret_cast<const sockaddr_in *>(each->ifa_addr);
      addresses.emplace_back(reinterpret_cast<const char *>(&address.sin_addr), BytesOfIPv4);
    } else {
      const auto &address = *reinterpret_cast<const sockaddr_in6 *>(each->ifa_addr);
      if (IN6_IS_ADDR_LINKLOCAL(&address.sin6_addr)) continue; // of no use without the interface's name
      addresses.emplace_back(reinterpret_cast<const char *>(&address.sin6_addr), BytesOfIPv6);
    }
  }
  return addresses;
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
  ifaddrs *list = nullptr;
  if (getifaddrs(&list) != 0) {
    lastError_ = errno;
    return nullptr;
  }
  const std::unique_ptr<ifaddrs, void (*)(ifaddrs *)> owner(list, freeifaddrs);
  entry_ = {BytesOfIPv4, AddressesOf(list, AF_INET)};
  if (entry_.h_addr_list.empty()) entry_ = {BytesOfIPv6, AddressesOf(list, AF_INET6)};
  if (entry_.h_addr_list.empty()) entry_ = {BytesOfIPv4, {std::string("\x7F\x00\x00\x01", BytesOfIPv4)}};
  return &entry_;
}

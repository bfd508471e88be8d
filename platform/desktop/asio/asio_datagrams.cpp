#include "platform/desktop/asio/asio_datagrams.h"

#include <ifaddrs.h>
#include <net/if.h>
#include <sys/socket.h>

#include <array>
#include <cstring>
#include <memory>
#include <set>

namespace {

using Udp = asio::ip::udp;

constexpr std::size_t LargestDatagram = 2048; ///< bytes; ours are shorter
/// The link-local multicast group of hosts, with "SNWG" in its last bytes.
constexpr const char *LinkGroup = "ff02::534e:5747";

struct Interfaces {
  std::set<asio::ip::address_v4> Broadcasts; ///< of the IPv4 interfaces that are up, and of loopback
  std::set<unsigned> Bare;                   ///< indices of those without a broadcast address
  std::set<unsigned> Links;                  ///< indices of the interfaces with IPv6
};

in_addr_t AddressIn(const sockaddr *address) {
  return address ? reinterpret_cast<const sockaddr_in *>(address)->sin_addr.s_addr : INADDR_ANY;
}

Interfaces FindInterfaces() {
  Interfaces found;
  ifaddrs *list = nullptr;
  if (getifaddrs(&list) != 0) return found;
  const std::unique_ptr<ifaddrs, void (*)(ifaddrs *)> owner(list, freeifaddrs);
  for (const ifaddrs *each = list; each; each = each->ifa_next) {
    if (!each->ifa_addr || !(each->ifa_flags & IFF_UP)) continue;
    if (each->ifa_addr->sa_family == AF_INET6) found.Links.insert(if_nametoindex(each->ifa_name));
    if (each->ifa_addr->sa_family != AF_INET || (each->ifa_flags & IFF_LOOPBACK)) continue;
    // Without a broadcast address the system returns the address of the interface.
    const in_addr_t own = AddressIn(each->ifa_addr), broadcast = AddressIn(each->ifa_broadaddr);
    if ((each->ifa_flags & IFF_BROADCAST) && broadcast != INADDR_ANY && broadcast != own) {
      found.Broadcasts.emplace(ntohl(broadcast));
    } else {
      found.Bare.insert(if_nametoindex(each->ifa_name));
    }
  }
  found.Broadcasts.insert(asio::ip::make_address_v4("127.255.255.255"));
  return found;
}

class AsioDatagrams : public session::DatagramPort {
public:
  AsioDatagrams(session::Reach reach, Udp::socket four, std::optional<Udp::socket> six)
      : reach_(reach), four_(std::move(four)), six_(std::move(six)) {}

  bool Receive(session::Endpoint &from, session::Bytes &data) override {
    return ReceiveAt(four_, from, data) || (six_ && ReceiveAt(*six_, from, data));
  }

  void Send(const session::Endpoint &to, session::ByteView data) override {
    std::error_code error;
    const auto address = asio::ip::make_address(to.Address, error);
    if (error) return;
    if (address.is_v4()) SendAt(four_, {address, to.Port}, data);
    if (address.is_v6() && six_) SendAt(*six_, {address, to.Port}, data);
  }

  void SendToAll(std::uint16_t port, session::ByteView data) override {
    if (reach_ == session::Reach::ThisComputer) {
      SendAt(four_, {asio::ip::address_v4::loopback(), port}, data);
      return;
    }
    const Interfaces found = FindInterfaces();
    for (const auto &broadcast : found.Broadcasts) SendAt(four_, {broadcast, port}, data);
    for (const unsigned interface : found.Bare) SendToAllAt(interface, port, data);
    if (!six_) return;
    for (const unsigned link : found.Links) {
      auto group = asio::ip::make_address_v6(LinkGroup);
      group.scope_id(link);
      SendAt(*six_, {group, port}, data);
    }
  }

private:
  static bool ReceiveAt(Udp::socket &socket, session::Endpoint &from, session::Bytes &data) {
    session::Bytes buffer(LargestDatagram);
    Udp::endpoint sender;
    std::error_code error;
    const std::size_t count = socket.receive_from(asio::buffer(buffer), sender, 0, error);
    if (error) return false;
    buffer.resize(count);
    data = std::move(buffer);
    from = {PlainAddress(sender.address()).to_string(), sender.port()};
    return true;
  }

  /// Ignores errors, since a datagram may get lost anyway.
  static void SendAt(Udp::socket &socket, const Udp::endpoint &to, session::ByteView data) {
    std::error_code ignored;
    socket.send_to(asio::buffer(data.data(), data.size()), to, 0, ignored);
  }

  /// Sends to 255.255.255.255 through an interface. Routing would use one interface only, or none.
  void SendToAllAt(unsigned interface, std::uint16_t port, session::ByteView data) {
    const Udp::endpoint to(asio::ip::address_v4::broadcast(), port);
    iovec bytes{const_cast<std::uint8_t *>(data.data()), data.size()};
    in_pktinfo by{};
    by.ipi_ifindex = static_cast<int>(interface);
    alignas(cmsghdr) std::array<std::byte, CMSG_SPACE(sizeof by)> control{};
    msghdr message{};
    message.msg_name = const_cast<sockaddr *>(to.data());
    message.msg_namelen = static_cast<socklen_t>(to.size());
    message.msg_iov = &bytes;
    message.msg_iovlen = 1;
    message.msg_control = control.data();
    message.msg_controllen = control.size();
    cmsghdr *header = CMSG_FIRSTHDR(&message);
    header->cmsg_level = IPPROTO_IP;
    header->cmsg_type = IP_PKTINFO;
    header->cmsg_len = CMSG_LEN(sizeof by);
    std::memcpy(CMSG_DATA(header), &by, sizeof by);
    ::sendmsg(four_.native_handle(), &message, 0); // an error counts as a loss
  }

  session::Reach reach_;
  Udp::socket four_;
  std::optional<Udp::socket> six_;
};

/// The IPv6 socket beside an IPv4 one; nothing if the system has no IPv6.
std::optional<Udp::socket> OpenSix(asio::io_context &context, std::uint16_t port) {
  std::error_code error;
  Udp::socket socket(context);
  socket.open(Udp::v6(), error);
  if (!error) socket.set_option(asio::ip::v6_only(true), error);
  if (!error) socket.bind({asio::ip::address_v6::any(), port}, error);
  if (!error) socket.non_blocking(true, error);
  if (error) return std::nullopt;
  for (const unsigned link : FindInterfaces().Links) {
    std::error_code ignored; // an interface without multicast
    socket.set_option(asio::ip::multicast::join_group(asio::ip::make_address_v6(LinkGroup), link), ignored);
  }
  return socket;
}

} // namespace

asio::ip::address PlainAddress(const asio::ip::address &address) {
  if (address.is_v6() && address.to_v6().is_v4_mapped()) {
    return asio::ip::make_address_v4(asio::ip::v4_mapped, address.to_v6());
  }
  return address;
}

std::unique_ptr<session::DatagramPort> OpenAsioDatagrams(asio::io_context &context, session::Reach reach,
                                                         std::uint16_t port) {
  const bool near = reach == session::Reach::ThisComputer;
  std::error_code error;
  Udp::socket socket(context);
  socket.open(Udp::v4(), error);
  if (!error) socket.set_option(asio::socket_base::broadcast(true), error);
  const asio::ip::address_v4 at = near ? asio::ip::address_v4::loopback() : asio::ip::address_v4::any();
  if (!error) socket.bind({at, port}, error);
  if (!error) socket.non_blocking(true, error);
  if (error) return nullptr;
  return std::make_unique<AsioDatagrams>(reach, std::move(socket),
                                         near ? std::nullopt : OpenSix(context, port));
}

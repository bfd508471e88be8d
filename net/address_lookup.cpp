#include "net/address_lookup.h"

#include "platform/plain_text.h"

#include <arpa/inet.h>

#include <array>
#include <stdexcept>

namespace {

constexpr std::uint16_t WantedVersion = 0x0101; ///< 1.1
constexpr int WantedMajor = 1;
constexpr int WantedMinor = 1;
constexpr int MinimumSockets = 1;
constexpr int NameBuffer = 256; ///< characters
constexpr std::size_t BytesOfIPv6 = 16;
const std::string Loopback = "127.0.0.1";

void Tell(Machine &machine, const std::string &text) { machine.MsgBox({text, ""}); }

bool StartSockets(Machine &machine) {
  WSADATA data;
  if (machine.WinSock().WSAStartup(WantedVersion, data) != 0) {
    Tell(machine, "The 32-bit Windows Socket is not responding.");
    return false;
  }
  if (data.iMaxSockets < MinimumSockets) {
    Tell(machine,
         "This application requires a minimum of " + std::to_string(MinimumSockets) + " supported sockets.");
    return false;
  }
  const int major = AddressLowByte(data.wVersion);
  const int minor = AddressHighByte(data.wVersion);
  if (major < WantedMajor || (major == WantedMajor && minor < WantedMinor)) {
    Tell(machine, "Sockets version " + std::to_string(major) + "." + std::to_string(minor) +
                      " is not supported by 32-bit Windows Sockets.");
    return false;
  }
  return true;
}

void StopSockets(Machine &machine) {
  if (machine.WinSock().WSACleanup() != 0) Tell(machine, "Socket error occurred in Cleanup.");
}

/// A signed number with a blank instead of a plus sign.
std::string Signed(std::int32_t number) { return (number < 0 ? "" : " ") + std::to_string(number); }

std::string Dotted(const std::string &bytes) {
  std::string text;
  for (const char byte : bytes) text += std::to_string(static_cast<unsigned char>(byte)) + ".";
  if (!text.empty()) text.pop_back();
  return text;
}

/// An IPv6 address in its usual form.
std::string Colons(const std::string &bytes) {
  std::array<char, INET6_ADDRSTRLEN> text{};
  inet_ntop(AF_INET6, bytes.data(), text.data(), text.size());
  return text.data();
}

} // namespace

std::uint8_t AddressLowByte(std::uint16_t n) { return static_cast<std::uint8_t>(n & 0xFFU); }

std::uint8_t AddressHighByte(std::uint16_t n) { return static_cast<std::uint8_t>(n >> 8U); }

std::string LookUpLocalAddress(Machine &machine) {
  if (!StartSockets(machine)) return "";
  Sockets &sockets = machine.WinSock();
  std::string name;
  if (sockets.gethostname(name, NameBuffer) == -1) {
    Tell(machine, "Windows Sockets error " + Signed(sockets.WSAGetLastError()) +
                      " has occurred. Unable to successfully get Host Name.");
    StopSockets(machine);
    return "";
  }
  const hostent_record *host = sockets.gethostbyname(Trimmed(name));
  if (!host) {
    Tell(machine, "Windows Sockets are not responding. Unable to successfully get Host Name.");
    StopSockets(machine);
    return "";
  }
  if (host->h_addr_list.empty()) throw std::runtime_error("the host has no address");
  const std::string bytes = host->h_addr_list.front().substr(0, static_cast<std::size_t>(host->h_length));
  std::string address = bytes.size() == BytesOfIPv6 ? Colons(bytes) : Dotted(bytes);
  StopSockets(machine);
  return address;
}

void TellLocalAddress(Machine &machine) {
  std::string address = Loopback;
  try {
    address = LookUpLocalAddress(machine);
  } catch (const std::runtime_error &) {
    // Shown in the same box as a missing network.
  }
  if (address != Loopback) {
    machine.MsgBox({"Your IP address is: " + address, "IP Address:"});
  } else {
    machine.MsgBox(
        {"An error occurred while attempting to locate IP address.  Please make sure that you are connected "
         "to a LAN or the Internet.",
         "Error:", true});
  }
}

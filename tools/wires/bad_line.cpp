// A bad line between two network interfaces: forwards packets in both directions with delay and loss. For
// kernels without netem. SIGUSR1 takes the line down, SIGUSR2 brings it up; it runs until killed.
//   bad_line INTERFACE INTERFACE DELAY_MS LOSS_PERCENT

#include <linux/if_packet.h>
#include <net/ethernet.h>
#include <net/if.h>

#include <poll.h>
#include <sys/socket.h>

#include <arpa/inet.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <random>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t LargestPacket = 70000; ///< bytes; the kernel may merge several segments

volatile std::sig_atomic_t broken = 0;

void Check(int result, const std::string &what) {
  if (result < 0) throw std::system_error(errno, std::generic_category(), what);
}

/// A packet socket on an interface. Each packet is preceded by the kernel's header for checksum and
/// segmentation offload.
int OpenInterface(const char *name) {
  const int opened = socket(AF_PACKET, SOCK_RAW | SOCK_NONBLOCK, htons(ETH_P_ALL));
  Check(opened, "packet socket");
  const int on = 1;
  Check(setsockopt(opened, SOL_PACKET, PACKET_VNET_HDR, &on, sizeof on), "packet header");
  sockaddr_ll address{};
  address.sll_family = AF_PACKET;
  address.sll_protocol = htons(ETH_P_ALL);
  address.sll_ifindex = static_cast<int>(if_nametoindex(name));
  if (address.sll_ifindex == 0) throw std::runtime_error(std::string("no interface ") + name);
  Check(bind(opened, reinterpret_cast<const sockaddr *>(&address), sizeof address), name);
  packet_mreq request{};
  request.mr_ifindex = address.sll_ifindex;
  request.mr_type = PACKET_MR_PROMISC;
  Check(setsockopt(opened, SOL_PACKET, PACKET_ADD_MEMBERSHIP, &request, sizeof request), name);
  return opened;
}

class Line {
public:
  Line(const char *first, const char *second, int delay, double loss)
      : socket_{OpenInterface(first), OpenInterface(second)}, delay_(delay), loss_(loss) {}

  void Run() {
    std::array<pollfd, 2> waiting{pollfd{socket_[0], POLLIN, 0}, pollfd{socket_[1], POLLIN, 0}};
    for (;;) {
      if (poll(waiting.data(), waiting.size(), underWay_.empty() ? -1 : 1) < 0 && errno != EINTR)
        Check(-1, "poll");
      for (std::size_t side = 0; side < 2; ++side) {
        while (Take(side)) {
        }
      }
      Deliver();
    }
  }

private:
  struct Packet {
    std::size_t to; ///< outgoing side
    Clock::time_point due;
    std::vector<char> bytes;
  };

  bool Take(std::size_t side) {
    sockaddr_ll from{};
    socklen_t length = sizeof from;
    const auto count = recvfrom(socket_[side], buffer_.data(), buffer_.size(), 0,
                                reinterpret_cast<sockaddr *>(&from), &length);
    if (count <= 0) return false;
    const bool own = from.sll_pkttype == PACKET_OUTGOING; // the socket also sees outgoing packets
    if (own || broken || chance_(random_) < loss_) return true;
    underWay_.push_back({1 - side, Clock::now() + delay_, {buffer_.begin(), buffer_.begin() + count}});
    return true;
  }

  void Deliver() {
    for (; !underWay_.empty() && underWay_.front().due <= Clock::now(); underWay_.pop_front()) {
      const Packet &packet = underWay_.front();
      // A packet that can't be sent counts as lost.
      if (!broken && send(socket_[packet.to], packet.bytes.data(), packet.bytes.size(), 0) < 0)
        std::perror("bad_line");
    }
  }

  std::array<int, 2> socket_;
  std::chrono::milliseconds delay_;
  double loss_; ///< fraction of packets lost
  std::mt19937 random_{1};
  std::uniform_real_distribution<double> chance_{0.0, 1.0};
  std::vector<char> buffer_ = std::vector<char>(LargestPacket);
  std::deque<Packet> underWay_;
};

} // namespace

int main(int argc, char **argv) {
  if (argc != 5) {
    std::fprintf(stderr, "usage: bad_line INTERFACE INTERFACE DELAY_MS LOSS_PERCENT\n");
    return 2;
  }
  std::signal(SIGUSR1, [](int) { broken = 1; });
  std::signal(SIGUSR2, [](int) { broken = 0; });
  try {
    Line(argv[1], argv[2], std::atoi(argv[3]), std::atof(argv[4]) / 100.0).Run();
  } catch (const std::exception &error) {
    std::fprintf(stderr, "bad_line: %s\n", error.what());
    return 1;
  }
}

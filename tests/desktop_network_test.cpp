// Sessions over real sockets, on this computer only.

#include "net/address_lookup.h"
#include "platform/desktop/asio/asio_network.h"
#include "platform/desktop/sockets.h"
#include "tests/session_kit.h"

#include <asio.hpp>

#include <fcntl.h>
#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <thread>

using namespace kit;

namespace {

/// A search takes a second, on a busy computer more, but less than a blocking call would.
constexpr std::int32_t LongestSearchMs = 3000;

/// A headless machine on the real clock.
struct RealTime {
  RealTime() : machine("") {
    machine.SetNow(Clock());
    machine.Sleeper = [this](std::int32_t) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
      machine.SetNow(Clock());
    };
  }

  static std::int32_t Clock() {
    using namespace std::chrono;
    return static_cast<std::int32_t>(
        duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
  }

  std::shared_ptr<DirectPlay4> Program(const std::string &method) {
    auto program = CreateAsioDirectPlay(machine);
    program->InitializeConnection(method);
    return program;
  }

  /// Searches and returns the sessions with that name.
  std::vector<DirectPlaySessionData> Search(DirectPlay4 &program, const std::string &name,
                                            const std::string &host = "") {
    const DialogPlayer player(machine, host);
    DirectPlaySessionData wanted;
    wanted.SetGuidApplication(ApplicationGuid);
    const std::int32_t begun = Clock();
    const auto found = program.GetDPEnumSessions(wanted, 0, DPENUMSESSIONS_AVAILABLE);
    took = Clock() - begun;
    std::vector<DirectPlaySessionData> rows;
    for (std::int32_t i = 1; i <= found->GetCount(); ++i) {
      if (found->GetItem(i).GetSessionName() == name) rows.push_back(found->GetItem(i));
    }
    return rows;
  }

  void Run(std::int32_t milliseconds) {
    const std::int32_t end = machine.ClockIn(milliseconds);
    while (!machine.ClockReached(end)) machine.WaitUntil(end);
  }

  HeadlessMachine machine;
  std::int32_t took = 0; ///< duration of the last search, ms
};

/// A name that no other test on this computer uses.
std::string OwnName(const std::string &name) { return name + " " + std::to_string(RealTime::Clock()); }

std::string PortOf(const DirectPlaySessionData &row) {
  const std::string &address = row.GetAddress();
  const auto first = address.find(' ');
  return address.substr(first + 1, address.find(' ', first + 1) - first - 1);
}

TEST(DesktopNetworkTest, TwoProgramsFindEachOtherOnThisComputerAndPlay) {
  RealTime time;
  const auto host = time.Program(ThisComputer);
  const auto joiner = time.Program(ThisComputer);
  const std::string name = OwnName("here");
  const std::int32_t player = Host(*host, name);
  const auto rows = time.Search(*joiner, name);
  EXPECT_LE(time.took, LongestSearchMs);
  ASSERT_EQ(rows.size(), 1U);
  const std::int32_t joined = Join(*joiner, rows[0]);
  const auto third = time.Program(ThisComputer);
  EXPECT_THROW(Join(*third, rows[0]), DirectPlayError);
  EXPECT_TRUE(time.Search(*third, name).empty());
  for (int i = 1; i <= 200; ++i) {
    SendNumber(*host, player, i);
    SendNumber(*joiner, joined, i);
  }
  joiner->Close();
  time.Run(100);
  std::vector<std::string> expected{"joined"};
  for (int i = 1; i <= 200; ++i) expected.push_back(std::to_string(i));
  expected.emplace_back("lost");
  EXPECT_EQ(TakeAll(*host, player), expected) << "messages sent before the farewell arrive";
}

TEST(DesktopNetworkTest, AHostIsFoundByNameAndAddressWhateverItsPort) {
  // Another program holds one of our ports, so the second host fails to bind it.
  asio::io_context context;
  asio::ip::tcp::acceptor other(context);
  std::error_code taken;
  other.open(asio::ip::tcp::v4());
  other.set_option(
      asio::socket_base::reuse_address(true)); // the port may still be in TIME_WAIT from an earlier test
  other.bind({asio::ip::address_v4::any(), session::DefaultPort + 1}, taken);
  if (!taken) other.listen();

  RealTime time;
  const auto first = time.Program(Internet);
  const auto second = time.Program(Internet);
  const auto joiner = time.Program(Internet);
  const std::string name = OwnName("there");
  Host(*first, name);
  Host(*second, name);
  const auto both = time.Search(*joiner, name, "127.0.0.1");
  EXPECT_LE(time.took, LongestSearchMs);
  ASSERT_EQ(both.size(), 2U);
  EXPECT_NE(PortOf(both[0]), PortOf(both[1]));
  for (const auto &row : both) EXPECT_NE(PortOf(row), std::to_string(session::DefaultPort + 1));

  const std::string port = PortOf(both[0]);
  struct Row {
    std::string host;
    std::size_t found;
  };
  std::vector<Row> rows = {
      {"localhost", 2}, {"127.0.0.1:" + port, 1}, {"localhost:" + port, 1}, {"127.0.0.1:1", 0}};
  asio::ip::tcp::acceptor six(context);
  std::error_code none;
  six.open(asio::ip::tcp::v6(), none);
  if (!none) six.bind({asio::ip::address_v6::loopback(), 0}, none);
  if (!none) rows.insert(rows.end(), {{"::1", 2}, {"[::1]:" + port, 1}});
  for (const Row &row : rows) {
    SCOPED_TRACE(row.host);
    const auto found = time.Search(*joiner, name, row.host);
    EXPECT_EQ(found.size(), row.found);
    EXPECT_LE(time.took, LongestSearchMs);
    if (found.size() != 1) continue;
    const auto guest = time.Program(Internet);
    guest->Open(found[0], DPOPEN_JOIN); // creates no player, so doesn't take the place
  }
}

/// Enters a new network namespace. Returns false if that isn't permitted.
bool EnterNamespace() {
  const std::string user = std::to_string(getuid());
  if (unshare(CLONE_NEWNET) == 0) return true;
  if (unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0) return false;
  std::ofstream("/proc/self/uid_map") << "0 " + user + " 1";
  return true;
}

constexpr char Returned = '=', NoNamespace = '-'; ///< first letter of the process's output

/// The result of `look` in a process with its own network namespace; nothing if that isn't permitted. A
/// process without output has crashed.
std::optional<std::string> InNamespace(const std::function<std::string()> &look) {
  std::array<int, 2> pipe{};
  if (::pipe(pipe.data()) != 0) return std::nullopt;
  const pid_t child = fork();
  if (child == 0) {
    std::string result;
    try {
      result = EnterNamespace() ? Returned + look() : std::string(1, NoNamespace);
    } catch (const std::exception &error) {
      result = Returned + std::string(error.what());
    }
    const auto written = write(pipe[1], result.data(), result.size());
    _exit(written == static_cast<ssize_t>(result.size()) ? 0 : 1);
  }
  close(pipe[1]);
  std::array<char, 100> result{};
  const auto count = read(pipe[0], result.data(), result.size());
  close(pipe[0]);
  waitpid(child, nullptr, 0);
  if (count < 1) return "the process has crashed";
  if (result[0] == NoNamespace) return std::nullopt;
  return std::string(result.data() + 1, static_cast<std::size_t>(count - 1));
}

/// A developer's container may not permit namespaces. CI must, or nobody would notice that a test never runs.
bool MayBeSkipped() { return std::getenv("CI") == nullptr; }

void Make(const std::string &commands) {
  if (std::system(("set -e\n" + commands).c_str()) != 0) throw std::runtime_error("fails: " + commands);
}

// Commands that add an interface with an address.
std::string Unplugged(const std::string &name, const std::string &address) {
  return "ip link add " + name + " type veth peer name " + name + "-far\nip link set " + name +
         " up\nip address add " + address + " dev " + name + (address.find(':') < 9 ? " nodad\n" : "\n");
}
// The kernel may take a second to report that an interface runs.
std::string UntilUp(const std::string &name) {
  return "until ip link show " + name + " | grep -q 'state UP'; do sleep 0.01; done\n";
}
std::string Card(const std::string &name, const std::string &address) {
  return Unplugged(name, address) + "ip link set " + name + "-far up\n" + UntilUp(name);
}
std::string Bridge(const std::string &name, const std::string &address) {
  return "ip link add " + name + " type bridge\nip link set " + name + " up\n" + "ip address add " + address +
         " dev " + name + "\n" + Card(name + "-port", "10.9.9.9/32") + "ip address flush dev " + name +
         "-port\nip link set " + name + "-port master " + name + "\n" + UntilUp(name);
}

TEST(DesktopNetworkTest, TheAddressIsThatOfTheDefaultRoute) {
  struct Row {
    const char *name;
    std::string commands;
    const char *told;
  };
  const Row rows[] = {
      {"nothing", "ip link set lo up", "127.0.0.1"},
      {"a bridge alone", Bridge("br0", "172.17.0.1/16"), "172.17.0.1"},
      {"a card behind a bridge", Bridge("br0", "172.17.0.1/16") + Card("eth0", "192.168.1.7/24"),
       "192.168.1.7"},
      {"a card behind one that isn't plugged in",
       Unplugged("eth0", "10.0.0.5/24") + Card("eth1", "192.168.1.7/24"), "192.168.1.7"},
      {"two cards, default route over the second",
       Card("eth0", "10.0.0.5/24") + Card("eth1", "192.168.1.7/24") + "ip route add default via 192.168.1.1",
       "192.168.1.7"},
      {"a way by a card that isn't plugged in",
       Unplugged("eth0", "10.0.0.5/24") + Card("eth1", "192.168.1.7/24") +
           "ip route add default via 10.0.0.1",
       "192.168.1.7"},
      {"default route over a bridge",
       Card("eth0", "10.0.0.5/24") + Bridge("br0", "192.168.1.7/24") + "ip route add default via 192.168.1.1",
       "192.168.1.7"},
      {"a way by IPv6 alone",
       Card("eth0", "10.0.0.5/24") + Card("eth1", "2001:db8:1::7/64") + "ip -6 route add default dev eth1",
       "2001:db8:1::7"},
      {"ways by both",
       Card("eth0", "10.0.0.5/24") + Card("eth1", "2001:db8:1::7/64") +
           "ip -6 route add default dev eth1\nip route add default via 10.0.0.1",
       "10.0.0.5"},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.name);
    const auto told = InNamespace([&row] {
      Make(row.commands);
      HeadlessMachine machine("");
      machine.SocketsLibrary = std::make_unique<DesktopSockets>();
      return LookUpLocalAddress(machine);
    });
    if (!told && MayBeSkipped()) GTEST_SKIP() << "no network namespaces can be made here";
    ASSERT_TRUE(told) << "no network namespaces can be made here";
    EXPECT_EQ(*told, row.told);
  }
}

TEST(DesktopNetworkTest, ASearchReachesAHostByACardWithoutABroadcastAddress) {
  for (const char *broadcast : {"brd + ", ""}) {
    SCOPED_TRACE(*broadcast ? "with" : "without");
    constexpr int MostSearches = 3; // a busy machine may take longer than one to answer
    // The host's end of the wire is in a second namespace. Sockets stay in the namespace in which they were
    // opened.
    const auto found = InNamespace([broadcast] {
      const int here = open("/proc/self/ns/net", O_RDONLY);
      if (unshare(CLONE_NEWNET) != 0) return std::string("no second namespace");
      const int there = open("/proc/self/ns/net", O_RDONLY);
      const std::string address = std::string(" ") + broadcast + "dev eth0\nip link set eth0 up";
      const std::string noIPv6 =
          "ip link set eth0 addrgenmode none\n"; // or the host would be found through it
      Make("ip link add eth0 type veth peer name eth0 netns /proc/" + std::to_string(getpid()) + "/fd/" +
           std::to_string(here) + "\n" + noIPv6 + "ip address add 10.0.0.1/24" + address);
      RealTime time;
      const auto host = time.Program(Internet);
      Host(*host, "over there");
      setns(here, CLONE_NEWNET);
      Make(noIPv6 + "ip address add 10.0.0.2/24" + address);
      // On a busy machine the kernel takes a while to start a new link, and drops what is sent before.
      for (const int end : {there, here}) {
        setns(end, CLONE_NEWNET);
        Make("for i in $(seq 500); do ip link show eth0 | grep -q 'state UP' && break; sleep 0.01; done");
      }
      const auto joiner = time.Program(Internet);
      auto rows = time.Search(*joiner, "over there");
      for (int tries = 1; rows.empty() && tries < MostSearches; ++tries)
        rows = time.Search(*joiner, "over there");
      close(here);
      close(there);
      return rows.empty() ? std::string("nobody") : rows[0].GetAddress().substr(0, 14);
    });
    if (!found && MayBeSkipped()) GTEST_SKIP() << "no network namespaces can be made here";
    ASSERT_TRUE(found) << "no network namespaces can be made here";
    EXPECT_EQ(*found, "10.0.0.1 28710");
  }
}

} // namespace

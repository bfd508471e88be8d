// Sessions over real sockets, on this computer alone.

#include "net/address_lookup.h"
#include "platform/desktop/asio/asio_network.h"
#include "platform/desktop/sockets.h"
#include "tests/session_kit.h"

#include <asio.hpp>

#include <chrono>
#include <thread>

using namespace kit;

namespace {

/// A search takes a second. On a busy computer it may take longer, but not as long as a call that blocks.
constexpr std::int32_t LongestSearchMs = 3000;

/// The machine of memory on the real clock.
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

  /// Searches, and returns the rows with that name.
  std::vector<DirectPlaySessionData> Search(DirectPlay4 &program, const std::string &name,
                                            const std::string &host = "") {
    const DialogPlayer player(machine, host);
    DirectPlaySessionData wanted;
    wanted.SetGuidApplication(GameGuid);
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
  std::int32_t took = 0; ///< by the last search, ms
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
  EXPECT_EQ(TakeAll(*host, player), expected) << "what was sent before the farewell has come";
}

TEST(DesktopNetworkTest, AHostIsFoundByNameAndAddressWhateverItsPort) {
  // Another program has a port of ours, so one of the two hosts gets it not.
  asio::io_context context;
  asio::ip::tcp::acceptor other(context);
  std::error_code taken;
  other.open(asio::ip::tcp::v4());
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
    guest->Open(found[0], DPOPEN_JOIN); // makes no player, and so keeps nobody out
  }
}

TEST(DesktopNetworkTest, TheAddressToldIsOneOfThisComputersInterfaces) {
  HeadlessMachine machine("");
  machine.SocketsLibrary = std::make_unique<DesktopSockets>();
  const std::string told = LookUpLocalAddress(machine);
  RecordProperty("told", told);
  asio::io_context context;
  asio::ip::udp::socket socket(context);
  const auto address = asio::ip::make_address(told);
  EXPECT_NO_THROW({
    const asio::ip::udp::endpoint at(address, 0);
    socket.open(at.protocol());
    socket.bind(at);
  }) << told
     << " is somebody else's";
  // The name of this computer may stand for any loopback address; only having no network is told as one.
  EXPECT_TRUE(!address.is_loopback() || told == "127.0.0.1") << told;
}

} // namespace

// Finding, creating, joining and leaving a session.

#include "tests/session_kit.h"

#include <algorithm>
#include <bit>
#include <limits>

using namespace kit;

namespace {

std::vector<std::string> Names(const std::vector<DirectPlaySessionData> &rows) {
  std::vector<std::string> names;
  for (const auto &row : rows) names.push_back(row.GetSessionName());
  return names;
}

TEST(SessionLobbyTest, MethodsAreListedInTheFamiliarOrder) {
  Network network;
  const auto program = std::make_shared<session::SessionDirectPlay>(
      network.machine, network.wire.Plug("10.0.0.1"), ShowSearchDialog);
  const auto methods = program->GetDPEnumConnections("", DPCONNECTION_DIRECTPLAY);
  ASSERT_EQ(methods->GetCount(), 2);
  EXPECT_EQ(methods->GetName(1), "This Computer");
  EXPECT_EQ(methods->GetName(2), "Internet TCP/IP Connection");
  EXPECT_THROW(methods->GetAddress(0), DirectPlayError);
  EXPECT_THROW(methods->GetAddress(3), DirectPlayError);
  program->InitializeConnection(methods->GetAddress(2));
  EXPECT_THROW(program->InitializeConnection(methods->GetAddress(2)), DirectPlayError);
}

TEST(SessionLobbyTest, ASearchTellsAllThatTheLobbyShowsAndIsOverOnTime) {
  Network network;
  const auto host = network.Program("10.0.0.1");
  const auto joiner = network.Program("10.0.0.2");
  Host(*host, "SNWG\n17", 7);
  EXPECT_THROW(host->Open(Description("another"), DPOPEN_CREATE), DirectPlayError);
  const std::int32_t begun = network.machine.Now();
  const auto rows = network.Search(*joiner);
  EXPECT_LE(network.machine.Now() - begun, 1200);
  ASSERT_EQ(rows.size(), 1U) << "a host that answers repeatedly is listed once";
  EXPECT_EQ(rows[0].GetSessionName(), "SNWG 17");
  EXPECT_EQ(rows[0].GetCurrentPlayers(), 1);
  EXPECT_EQ(rows[0].GetMaxPlayers(), 2);
  EXPECT_EQ(rows[0].GetRounds(), 7);
  EXPECT_EQ(rows[0].GetFlags(), DPSESSION_MIGRATEHOST);
  EXPECT_EQ(rows[0].GetGuidApplication(), ApplicationGuid);
}

TEST(SessionLobbyTest, TheDialogTakesNamesAndAddressesWithAndWithoutAPort) {
  struct Row {
    const char *entered;
    const char *button;
    std::vector<std::string> found;
    const char *told = ""; ///< beginning of the reason if nobody is found
  };
  const std::vector<std::string> none;
  const std::vector<std::string> both{"first", "second"};
  const Row rows[] = {
      {"", "Command1", {"first", "second", "far"}},
      {"   ", "Command1", {"first", "second", "far"}},
      {"10.0.0.1", "Command1", both},
      {" 10.0.0.1 ", "Command1", both},
      {"bramble", "Command1", both},
      {"10.0.0.1:28711", "Command1", {"second"}},
      {"bramble:28710", "Command1", {"first"}},
      {"[10.0.0.1]:28710", "Command1", {"first"}},
      {"10.0.0.3", "Command1", {"far"}},
      {"10.0.0.9", "Command1", none, "10.0.0.9 answers, but no game waits there."},
      {"nobody", "Command1", none, "No computer is known by the name \"nobody\"."},
      {"bramble:", "Command1", none, "\"bramble:\" is neither a computer name nor an IP address."},
      {"bramble:0", "Command1", none, "\"bramble:0\" is neither a computer name nor an IP address."},
      {"bramble:65536", "Command1", none, "\"bramble:65536\" is neither a computer name nor an IP address."},
      {"bramble:28710x", "Command1", none,
       "\"bramble:28710x\" is neither a computer name nor an IP address."},
      {"[10.0.0.1", "Command1", none, "\"[10.0.0.1\" is neither a computer name nor an IP address."},
      {"two words", "Command1", none, "\"two words\" is neither a computer name nor an IP address."},
      {"bramble", "Command2", none},
  };
  Network network;
  network.wire.Name("bramble", "10.0.0.1");
  const auto first = network.Program("10.0.0.1");
  const auto second = network.Program("10.0.0.1");
  const auto far = network.Program("10.0.0.3");
  Host(*first, "first");
  Host(*second, "second");
  Host(*far, "far");
  std::string last;
  for (const Row &row : rows) {
    SCOPED_TRACE(std::string(row.entered) + ", " + row.button);
    const auto joiner = network.Program("10.0.0.2"); // a new one each time, as Connect does
    const DialogPlayer player(network.machine, row.entered, row.button);
    const std::int32_t begun = network.machine.Now();
    std::vector<std::string> names = Names(network.Found(*joiner));
    EXPECT_EQ(player.offered, last) << "it offers the last entry";
    EXPECT_TRUE(player.told.starts_with(row.told) && player.told.empty() == (*row.told == '\0'))
        << player.told;
    last = row.entered;
    const bool atOnce = last.find(":2871") != std::string::npos && row.found.size() == 1;
    EXPECT_LE(network.machine.Now() - begun, atOnce ? 300 : 1200);
    std::ranges::sort(names);
    auto wantedNames = row.found;
    std::ranges::sort(wantedNames);
    EXPECT_EQ(names, wantedNames);
  }
}

TEST(SessionLobbyTest, ASearchAtANamedHostTakesItsTimeAndTellsWhyNobodyWasFound) {
  struct Row {
    const char *name;
    std::function<void(FaultyWire::Quality &)> arrange;
    std::size_t found;
    std::int32_t took; ///< ms
    const char *told;
  };
  const Row rows[] = {
      {"a slow name server", [](auto &line) { line.LookupMs = LookupMs - 500; }, 1, LookupMs + 500, ""},
      {"a dead name server", [](auto &line) { line.LookupMs = 60000; }, 0, LookupMs,
       "No computer is known by the name \"bramble\".\n-  Is it spelled right?\n-  Is this computer "
       "connected to the network?"},
      {"silence",
       [](auto &line) {
         line.Breaks = {{0, 60000}};
       },
       0, 1000,
       "Nobody answers at bramble.\n-  Is the address right?\n-  Has the host pressed Create? Its title bar "
       "then "
       "says \"Polling...\".\n-  Is port 28710, TCP and UDP, open in the host's router and firewall?"},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.name);
    Network network;
    network.wire.Name("bramble", "10.0.0.1");
    const auto host = network.Program("10.0.0.1");
    const auto joiner = network.Program("10.0.0.2");
    Host(*host);
    row.arrange(network.wire.Line());
    const std::int32_t begun = network.machine.Now();
    const DialogPlayer player(network.machine, "bramble");
    EXPECT_EQ(network.Found(*joiner).size(), row.found);
    EXPECT_EQ(player.told, row.told);
    EXPECT_NEAR(player.searchedUntil - begun, row.took, 100);
  }
  Pair pair;
  const auto third = pair.network.Program("10.0.0.3");
  const DialogPlayer player(pair.network.machine, "10.0.0.1");
  EXPECT_TRUE(pair.network.Found(*third).empty());
  EXPECT_EQ(player.told, "The game at 10.0.0.1 is full: it is already being played.");
}

TEST(SessionLobbyTest, ThisComputerStaysOnThisComputer) {
  Network network;
  const auto host = network.Program("10.0.0.1", ThisComputer);
  const auto here = network.Program("10.0.0.1", ThisComputer);
  const auto there = network.Program("10.0.0.2");
  Host(*host, "private");
  EXPECT_EQ(Names(network.Search(*there)), std::vector<std::string>{});
  EXPECT_EQ(Names(network.Search(*there, "10.0.0.1")), std::vector<std::string>{});
  const auto rows = network.Search(*here);
  ASSERT_EQ(Names(rows), std::vector<std::string>{"private"});
  EXPECT_EQ(network.machine.Find("frmSearch", "Text1"), nullptr);
  EXPECT_NO_THROW(Join(*here, rows[0]));
}

TEST(SessionLobbyTest, TheHomeRouterLetsCallersInAsLongAsTheHostHasItsSession) {
  Network network;
  const auto &ports = network.wire.RouterPorts();
  const auto local = network.Program("10.0.0.1", ThisComputer);
  auto host = network.Program("10.0.0.1");
  Host(*local);
  EXPECT_TRUE(ports.empty());
  Host(*host);
  EXPECT_EQ(ports, (std::multiset<session::Endpoint>{{"10.0.0.1", 28711}})) << "the port that was free";
  const auto joiner = network.Program("10.0.0.2");
  const std::int32_t player = Join(*joiner, network.Search(*joiner).at(0));
  network.Run(1000);
  SendNumber(*joiner, player, 1);
  EXPECT_EQ(ports.size(), 1U) << "the port stays open for a reconnect";
  host.reset();
  EXPECT_TRUE(ports.empty());
}

TEST(SessionLobbyTest, AllPortsTakenIsAFailure) {
  Network network;
  std::vector<std::shared_ptr<session::SessionDirectPlay>> hosts;
  for (int i = 0; i < session::PortCount; ++i) {
    hosts.push_back(network.Program("10.0.0.1"));
    Host(*hosts.back(), "session " + std::to_string(i));
  }
  const auto late = network.Program("10.0.0.1");
  EXPECT_THROW(Host(*late), DirectPlayError);
  const auto joiner = network.Program("10.0.0.2");
  EXPECT_EQ(network.Search(*joiner).size(), std::size_t{session::PortCount});
  hosts.front()->Close();
  EXPECT_NO_THROW(Host(*late));
}

TEST(SessionLobbyTest, AThirdComputerCanNeitherFindNorEnterAFullSession) {
  Pair pair;
  const auto third = pair.network.Program("10.0.0.3");
  EXPECT_TRUE(pair.network.Search(*third).empty());
  EXPECT_TRUE(pair.network.Search(*third, "10.0.0.1").empty());
  const std::int32_t begun = pair.network.machine.Now();
  EXPECT_THROW(Join(*third, pair.row), DirectPlayError);
  EXPECT_LT(pair.network.machine.Now() - begun, 1000) << "a refusal is immediate";
  SendNumber(*pair.joiner, pair.joinerPlayer, 4);
  pair.network.Run(50);
  EXPECT_EQ(TakeAll(*pair.host, pair.hostPlayer), std::vector<std::string>{"4"});
}

TEST(SessionLobbyTest, ASessionThatWasCancelledCantBeJoined) {
  Network network;
  const auto host = network.Program("10.0.0.1");
  const auto joiner = network.Program("10.0.0.2");
  Host(*host, "first");
  const auto stale = network.Search(*joiner).at(0);
  host->Close();
  EXPECT_THROW(joiner->Open(stale, DPOPEN_JOIN), DirectPlayError);
  EXPECT_TRUE(network.Search(*joiner).empty());
  // A new session at the same port is another one.
  Host(*host, "second");
  EXPECT_THROW(joiner->Open(stale, DPOPEN_JOIN), DirectPlayError);
  EXPECT_NO_THROW(Join(*joiner, network.Search(*joiner).at(0)));
}

TEST(SessionLobbyTest, AHostOfAnotherVersionIsNeitherListedNorJoined) {
  Network network;
  auto host = network.Program("10.0.0.1");
  const auto joiner = network.Program("10.0.0.2");
  Host(*host);
  const auto row = network.Search(*joiner).at(0);
  host.reset();
  // The program there now answers every question in another version, and refuses connections.
  constexpr std::size_t VersionInDatagram = 5;
  const auto transport = network.wire.Plug("10.0.0.1");
  const auto listener = transport->Listen(session::Reach::Network, session::DefaultPort);
  const auto datagrams = transport->OpenDatagrams(session::Reach::Network, session::DefaultPort);
  ASSERT_TRUE(listener && datagrams);
  int questions = 0;
  std::vector<std::unique_ptr<session::Stream>> calls;
  const auto answering = network.machine.OnPump([&] {
    session::Endpoint from;
    session::Bytes data;
    while (datagrams->Receive(from, data)) {
      const session::AnyFrame question = session::DecodeDatagram(data);
      session::AnswerFrame answer;
      answer.Game = std::get<session::AskFrame>(question).Game;
      answer.Nonce = std::get<session::AskFrame>(question).Nonce;
      answer.CurrentPlayers = 1;
      answer.MaxPlayers = 2;
      answer.Rounds = 1;
      answer.Name = "newer";
      session::Bytes bytes = session::EncodeDatagram(answer);
      if (++questions > 1) ++bytes.at(VersionInDatagram);
      datagrams->Send(from, bytes);
    }
    if (auto call = listener->Accept()) calls.push_back(std::move(call));
    for (const auto &call : calls)
      call->Send(session::EncodeFrame(session::RefuseFrame{session::RefuseReason::OtherVersion}));
  });
  EXPECT_EQ(Names(network.Search(*joiner)), std::vector<std::string>{"newer"})
      << "the answer is right but for that";
  EXPECT_EQ(questions, 4) << "at once, and after 300, 600 and 900 ms";
  EXPECT_TRUE(network.Search(*joiner).empty());
  const DialogPlayer player(network.machine, "10.0.0.1");
  EXPECT_TRUE(network.Found(*joiner).empty());
  EXPECT_EQ(player.told,
            "The game at 10.0.0.1 is another version of Snapwedge. Both players need the same one.");
  EXPECT_THROW(joiner->Open(row, DPOPEN_JOIN), DirectPlayError);
}

TEST(SessionLobbyTest, AHostThatDoesNotAnswerIsGivenUp) {
  Network network;
  const auto host = network.Program("10.0.0.1");
  const auto joiner = network.Program("10.0.0.2");
  Host(*host);
  const auto row = network.Search(*joiner).at(0);
  const std::int32_t begun = network.machine.Now();
  network.wire.Line().Breaks = {{begun, begun + 60000}};
  EXPECT_THROW(joiner->Open(row, DPOPEN_JOIN), DirectPlayError);
  EXPECT_LE(network.machine.Now() - begun, 5100);
}

TEST(SessionLobbyTest, AJoinerWhosePlayerIsNotAcknowledgedIsNotIn) {
  Network network;
  const auto host = network.Program("10.0.0.1");
  const auto joiner = network.Program("10.0.0.2");
  Host(*host);
  const auto row = network.Search(*joiner).at(0);
  joiner->Open(row, DPOPEN_JOIN);
  const std::int32_t begun = network.machine.Now();
  network.wire.Line().Breaks = {{begun, begun + 60000}};
  EXPECT_THROW(joiner->CreatePlayer("Thicket", "Player2", 0, 0), DirectPlayError);
  EXPECT_LE(network.machine.Now() - begun, 5100);
  EXPECT_EQ(joiner->Opened(), nullptr);
}

TEST(SessionLobbyTest, OfTwoWhoJoinTheFirstToMakeItsPlayerPlays) {
  Network network;
  const auto host = network.Program("10.0.0.1");
  const auto slow = network.Program("10.0.0.2");
  const auto quick = network.Program("10.0.0.3");
  const std::int32_t player = Host(*host);
  const auto row = network.Search(*slow).at(0);
  slow->Open(row, DPOPEN_JOIN);
  EXPECT_NO_THROW(Join(*quick, row));
  EXPECT_THROW(slow->CreatePlayer("Thicket", "Player2", 0, 0), DirectPlayError);
  EXPECT_EQ(TakeAll(*host, player), std::vector<std::string>{"joined"});
  EXPECT_EQ(host->Opened()->GetLink().Resumes(), 0);
}

TEST(SessionLobbyTest, FieldsComeBackInOrderTypeAndEveryBit) {
  Pair pair;
  const auto message = pair.host->CreateMessage();
  const float values[] = {0.1f, -0.0f, 1e-45f, std::numeric_limits<float>::infinity(),
                          std::numeric_limits<float>::quiet_NaN()};
  message->WriteString("Flick");
  message->WriteString("");
  message->WriteLong(INT32_MIN);
  for (const float value : values) message->WriteSingle(value);
  pair.host->Send(pair.hostPlayer, DPID_ALLPLAYERS, DPSEND_GUARANTEED, *message);
  pair.network.Run(10);
  std::int32_t from = 0;
  std::int32_t to = 0;
  const auto received = pair.joiner->Receive(from, to, DPRECEIVE_ALL);
  EXPECT_EQ(from, pair.hostPlayer);
  EXPECT_EQ(to, pair.joinerPlayer);
  EXPECT_EQ(received->ReadString(), "Flick");
  EXPECT_THROW(received->ReadLong(), DirectPlayError);
  EXPECT_EQ(received->ReadString(), "");
  EXPECT_EQ(received->ReadLong(), INT32_MIN);
  for (const float value : values) {
    EXPECT_FALSE(received->AtEnd());
    EXPECT_EQ(std::bit_cast<std::uint32_t>(received->ReadSingle()), std::bit_cast<std::uint32_t>(value));
  }
  EXPECT_TRUE(received->AtEnd());
  EXPECT_THROW(received->ReadSingle(), DirectPlayError);
  EXPECT_THROW(pair.joiner->Receive(from, to, DPRECEIVE_ALL), DirectPlayError);
}

} // namespace

// Hostile input, from an unknown program or the other player's, must not crash, hang, use unbounded memory,
// or disturb a running match.

#include "tests/session_kit.h"

#include <algorithm>

using namespace kit;
using session::AnyFrame;
using session::Bytes;

namespace {

const session::Guid Game = *session::ParseGuid(ApplicationGuid);

std::uint64_t IdOf(const DirectPlaySessionData &row) {
  return std::stoull(row.GetAddress().substr(row.GetAddress().rfind(' ') + 1));
}

Bytes Frame(const AnyFrame &frame) { return session::EncodeFrame(frame); }

Bytes Changed(Bytes bytes, std::size_t place, std::uint8_t value) {
  bytes.at(place) = value;
  return bytes;
}

void ExpectUndisturbed(Pair &pair) {
  SendNumber(*pair.host, pair.hostPlayer, 7);
  SendNumber(*pair.joiner, pair.joinerPlayer, 8);
  pair.network.Run(20);
  EXPECT_EQ(TakeAll(*pair.joiner, pair.joinerPlayer), std::vector<std::string>{"7"});
  EXPECT_EQ(TakeAll(*pair.host, pair.hostPlayer), std::vector<std::string>{"8"});
  EXPECT_EQ(pair.host->Opened()->GetLink().Resumes(), 0);
}

/// The reaction to a stranger's bytes: "refused", "closed" or "waits".
std::string Outcome(Stranger &stranger) {
  const Bytes received = stranger.Received();
  if (!received.empty()) {
    session::FrameReader reader(session::LargestFrame);
    reader.Add(received);
    return std::holds_alternative<session::RefuseFrame>(*reader.Next()) ? "refused" : "answered";
  }
  return stranger.Closed() ? "closed" : "waits";
}

TEST(SessionHostileTest, AStrangersFirstBytesDoNotDisturbTwoWhoPlay) {
  Pair pair;
  const std::uint64_t id = IdOf(pair.row);
  const session::Token guessed{};
  const Bytes join = Frame(session::JoinFrame{Game, id});
  struct Row {
    const char *name;
    Bytes bytes;
    std::string outcome;
  };
  const Row rows[] = {
      {"nothing", {}, "waits"},
      {"half a length", {1, 0}, "waits"},
      {"half a frame", Bytes(join.begin(), join.end() - 1), "waits"},
      {"another protocol", Bytes{'G', 'E', 'T', ' ', '/', ' ', 'H', 'T', 'T', 'P', '\r', '\n'}, "closed"},
      {"a length of nothing", {0, 0, 0, 0}, "closed"},
      {"a length of 4 GiB", {255, 255, 255, 255, 3}, "closed"},
      {"a length longer than any handshake", {0, 4, 0, 0, 3}, "closed"},
      {"an unknown type", {1, 0, 0, 0, 99}, "closed"},
      {"another magic", Changed(join, 5, 'X'), "closed"},
      {"a surplus byte",
       Changed(
           [&] {
             Bytes b = join;
             b.push_back(0);
             return b;
           }(),
           0, static_cast<std::uint8_t>(join[0] + 1)),
       "closed"},
      {"another version", Changed(join, 9, 2), "refused"},
      {"another game", Changed(join, 11, 0), "refused"},
      {"another session", Frame(session::JoinFrame{Game, id + 1}), "refused"},
      {"a full session", join, "refused"},
      {"a guessed secret", Frame(session::ResumeFrame{Game, id, guessed, 1}), "refused"},
      {"a guessed secret of another session", Frame(session::ResumeFrame{Game, id + 1, guessed, 1}),
       "refused"},
      {"a message at once", Frame(session::DataFrame{1, session::DataKind::Game, {}}), "closed"},
      {"a farewell at once", Frame(session::ByeFrame{1}), "closed"},
      {"a host's answer", Frame(session::WelcomeFrame{}), "closed"},
      {"a question to a full session", Frame(session::AskFrame{Game, 1}), "closed"},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.name);
    Stranger stranger(pair.network, "10.0.0.9");
    stranger.Send(row.bytes);
    EXPECT_EQ(Outcome(stranger), row.outcome);
    ExpectUndisturbed(pair);
    if (row.outcome != "waits") continue;
    pair.network.Run(5000);
    EXPECT_TRUE(stranger.Closed()) << "a connection without a first frame is closed";
  }
}

TEST(SessionHostileTest, ConnectionsOfOneComputerDoNotKeepAnotherOut) {
  struct Row {
    const char *name;
    bool introduced; ///< each sends Join and nothing else
  };
  for (const Row &row : {Row{"silent", false}, Row{"half a handshake", true}}) {
    SCOPED_TRACE(row.name);
    Network network;
    const auto host = network.Program("10.0.0.1");
    const auto joiner = network.Program("10.0.0.2");
    const std::int32_t player = Host(*host);
    const auto found = network.Search(*joiner).at(0);
    const Bytes join = Frame(session::JoinFrame{Game, IdOf(found)});
    Stranger early(network, "10.0.0.3"); // so slow that all others overtake it
    if (row.introduced) early.Send(join);
    std::vector<std::unique_ptr<Stranger>> strangers;
    for (int i = 0; i < 100; ++i) {
      strangers.push_back(std::make_unique<Stranger>(network, "10.0.0.9"));
      if (row.introduced) strangers.back()->Send(join);
    }
    const auto open = std::ranges::count_if(strangers, [](auto &each) { return !each->Closed(); });
    EXPECT_LT(open, static_cast<std::ptrdiff_t>(session::MostPending));
    EXPECT_FALSE(early.Closed());
    EXPECT_NO_THROW(Join(*joiner, found));
    network.Run(5000);
    EXPECT_EQ(TakeAll(*host, player), std::vector<std::string>{"joined"});
    for (const auto &each : strangers) EXPECT_TRUE(each->Closed());
  }
}

/// A joiner that follows the protocol until the test breaks it.
struct BadJoiner : Stranger {
  BadJoiner(Network &on, std::uint64_t session) : Stranger(on, "10.0.0.9"), id(session) {
    Send(Frame(session::JoinFrame{Game, id}));
    session::FrameReader reader(session::LargestFrame);
    reader.Add(Received());
    secret = std::get<session::WelcomeFrame>(*reader.Next()).Secret;
  }

  void MakePlayer() { Send(Frame(session::DataFrame{1, session::DataKind::Player, {}})); }

  std::uint64_t id;
  session::Token secret{};
};

struct Lobby {
  Lobby() {
    player = Host(*host);
    id = IdOf(network.Search(*network.Program("10.0.0.2")).at(0));
  }
  Network network;
  std::shared_ptr<session::SessionDirectPlay> host = network.Program("10.0.0.1");
  std::int32_t player = 0;
  std::uint64_t id = 0;
};

TEST(SessionHostileTest, ABrokenFrameOfTheOtherPlayerEndsTheConnection) {
  const Bytes longest(session::LargestFrame, 0);
  struct Row {
    const char *name;
    Bytes bytes;
    bool closed;
    int dropped = 0; ///< messages that could not be decoded
  };
  const Row rows[] = {
      {"a frame of more than 64 KiB", {0, 0, 1, 0}, true},
      {"an unknown type", {1, 0, 0, 0, 77}, true},
      {"a message too many", Frame(session::DataFrame{3, session::DataKind::Game, {}}), true},
      {"a kind of message that is none", {6, 0, 0, 0, 8, 2, 0, 0, 0, 2}, true},
      {"acknowledges what was never sent", Frame(session::AckFrame{500}), true},
      {"acknowledges message 0", Frame(session::AckFrame{0}), true},
      {"a farewell with messages missing", Frame(session::ByeFrame{9}), true},
      {"a second introduction", Frame(session::JoinFrame{Game, 1}), true},
      {"a number that came before", Frame(session::DataFrame{1, session::DataKind::Game, {2, 1, 0, 0, 0}}),
       false},
      {"a second player", Frame(session::DataFrame{2, session::DataKind::Player, {}}), false},
      {"fields that are none", Frame(session::DataFrame{2, session::DataKind::Game, {9, 9, 9}}), false, 1},
      {"a text without its end", Frame(session::DataFrame{2, session::DataKind::Game, {1, 255, 255, 65}}),
       false, 1},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.name);
    Lobby lobby;
    BadJoiner joiner(lobby.network, lobby.id);
    joiner.MakePlayer();
    EXPECT_EQ(TakeAll(*lobby.host, lobby.player), std::vector<std::string>{"joined"});
    joiner.Send(row.bytes);
    EXPECT_EQ(joiner.Closed(), row.closed);
    EXPECT_EQ(lobby.host->Opened()->GetLink().Dropped(), row.dropped);
    EXPECT_EQ(lobby.host->GetMessageCount(lobby.player), 0) << "the game must not see any of it";
  }
}

TEST(SessionHostileTest, AJoinerThatOnlyBreaksItsConnectionsIsGivenUp) {
  struct Row {
    const char *name;
    Bytes sent;      ///< on each connection
    int connections; ///< accepted by the host
  };
  for (const Row &row : {Row{"breaks frames", {1, 0, 0, 0, 77}, 5}, Row{"comes and goes", {}, 11}}) {
    SCOPED_TRACE(row.name);
    Lobby lobby;
    BadJoiner first(lobby.network, lobby.id);
    first.MakePlayer();
    session::Token wrong = first.secret;
    wrong.back() ^= 1;
    Stranger thief(lobby.network, "10.0.0.8");
    thief.Send(Frame(session::ResumeFrame{Game, lobby.id, wrong, 1}));
    EXPECT_EQ(thief.Received(), Frame(session::RefuseFrame{session::RefuseReason::WrongSecret}));
    int connections = 1;
    first.Send(row.sent);
    for (; connections < 100; ++connections) {
      Stranger next(lobby.network, "10.0.0.9");
      next.Send(Frame(session::ResumeFrame{Game, lobby.id, first.secret, 1}));
      if (next.Received().empty()) break;
      next.Send(row.sent);
    }
    EXPECT_EQ(connections, row.connections);
    EXPECT_EQ(TakeAll(*lobby.host, lobby.player), (std::vector<std::string>{"joined", "lost"}));
  }
}

TEST(SessionHostileTest, AJoinerThatSendsBeforeItHasAPlayerStartsNoMatch) {
  Lobby lobby;
  BadJoiner joiner(lobby.network, lobby.id);
  joiner.Send(Frame(session::DataFrame{1, session::DataKind::Game, {}}));
  EXPECT_TRUE(joiner.Closed());
  EXPECT_EQ(lobby.host->GetMessageCount(lobby.player), 0);
  BadJoiner idle(lobby.network, lobby.id);
  for (int second = 0; second < 29; ++second) {
    lobby.network.Run(990);
    idle.Send(Frame(session::AckFrame{1}));
  }
  EXPECT_FALSE(idle.Closed());
  lobby.network.Run(2000);
  EXPECT_TRUE(idle.Closed()) << "it has thirty seconds to create its player";
  const auto other = lobby.network.Program("10.0.0.2");
  EXPECT_NO_THROW(Join(*other, lobby.network.Search(*other).at(0)));
}

TEST(SessionHostileTest, AFloodOfMessagesEndsTheSessionAndNotTheMemory) {
  Lobby lobby;
  BadJoiner joiner(lobby.network, lobby.id);
  joiner.MakePlayer();
  Bytes payload = {1, 0x50, 0xC3};
  payload.resize(3 + 50000, 'A');
  std::uint32_t number = 2;
  for (std::int32_t from = 0, to = 0; number < 60; ++number) {
    joiner.Send(Frame(session::DataFrame{number, session::DataKind::Game, payload}));
    while (lobby.host->GetMessageCount(lobby.player) > 0) lobby.host->Receive(from, to, DPRECEIVE_ALL);
  }
  EXPECT_FALSE(joiner.Closed()) << "messages taken by the game don't count";
  std::size_t most = 0;
  for (; number < 200 && !joiner.Closed(); ++number) {
    joiner.Send(Frame(session::DataFrame{number, session::DataKind::Game, payload}));
    most = std::max(most, lobby.host->Opened()->GetLink().Waiting());
  }
  EXPECT_TRUE(joiner.Closed());
  EXPECT_LE(most * payload.size(), session::MostIncoming + payload.size());
  EXPECT_EQ(TakeAll(*lobby.host, lobby.player), std::vector<std::string>{"lost"});
}

TEST(SessionHostileTest, AFloodOfSmallMessagesEndsTheSessionInSeconds) {
  Lobby lobby;
  BadJoiner joiner(lobby.network, lobby.id);
  joiner.MakePlayer();
  std::uint32_t number = 2;
  std::size_t most = 0;
  for (; number < 5000 && !joiner.Closed(); ++number) {
    joiner.Send(Frame(session::DataFrame{number, session::DataKind::Game, {}}));
    most = std::max(most, lobby.host->Opened()->GetLink().Waiting());
  }
  EXPECT_TRUE(joiner.Closed());
  constexpr std::size_t TakenInASecond = 40, Seconds = 15; // the game takes one message in each frame
  EXPECT_LE(most, TakenInASecond * Seconds);
  EXPECT_GE(most, 200U) << "a player who chats through a break of half a minute";
}

TEST(SessionHostileTest, APlayerThatNeverAcknowledgesIsGivenUp) {
  Lobby lobby;
  BadJoiner joiner(lobby.network, lobby.id);
  joiner.MakePlayer();
  const auto message = lobby.host->CreateMessage();
  message->WriteString(std::string(50000, 'A'));
  for (int i = 0; i < 100; ++i) lobby.host->Send(lobby.player, DPID_ALLPLAYERS, DPSEND_GUARANTEED, *message);
  EXPECT_EQ(TakeAll(*lobby.host, lobby.player), (std::vector<std::string>{"joined", "lost"}));
}

TEST(SessionHostileTest, APlayerThatOnlySeemsToListenIsGivenUp) {
  struct Row {
    const char *name;
    std::uint32_t acknowledged; ///< how many messages more than before
  };
  for (const Row &row : {Row{"lives and never acknowledges", 0}, Row{"acknowledges and never reads", 1}}) {
    SCOPED_TRACE(row.name);
    Lobby lobby;
    BadJoiner joiner(lobby.network, lobby.id);
    joiner.MakePlayer();
    TakeAll(*lobby.host, lobby.player);
    const auto message = lobby.host->CreateMessage();
    message->WriteString(std::string(row.acknowledged * 60000, 'A'));
    std::uint32_t next = 1;
    for (int second = 0; second < 40 && !joiner.Closed(); ++second) {
      if (row.acknowledged > 0 || second == 0) {
        lobby.host->Send(lobby.player, DPID_ALLPLAYERS, DPSEND_GUARANTEED, *message);
      }
      next += row.acknowledged;
      joiner.Send(Frame(session::AckFrame{next}));
      lobby.network.Run(1000);
    }
    EXPECT_TRUE(joiner.Closed());
    lobby.network.Run(GiveUpMs + 100);
    EXPECT_EQ(TakeAll(*lobby.host, lobby.player), std::vector<std::string>{"lost"});
    EXPECT_TRUE(lobby.host->Delivered()) << "the end of a match waits for it";
  }
}

TEST(SessionHostileTest, AFloodOfAnswersHidesNobody) {
  Network network;
  const auto host = network.Program("10.0.0.1");
  const auto joiner = network.Program("10.0.0.2");
  Host(*host, "honest");
  network.wire.Line().LatencyMs = 3; // each way, so that the flood arrives first
  const auto transport = network.wire.Plug("10.0.0.9");
  const auto datagrams = transport->OpenDatagrams(session::Reach::Network, session::DefaultPort);
  const auto listener = transport->Listen(session::Reach::Network, session::DefaultPort);
  std::vector<std::unique_ptr<session::Stream>> calls;
  std::size_t poured = 0;
  const Bytes zeros(60000, 0);
  const auto flood = network.machine.OnPump([&] {
    session::Endpoint from;
    Bytes data;
    while (datagrams->Receive(from, data)) {
      const auto ask = std::get<session::AskFrame>(session::DecodeDatagram(data));
      session::AnswerFrame answer{Game, ask.Nonce, 100, 1, 2, 0, 5, "fake"};
      for (const auto &bad : {session::AnswerFrame{Game, ask.Nonce + 1, 98, 1, 2, 0, 5, "bad"},
                              session::AnswerFrame{Game, ask.Nonce, 99, 2, 2, 0, 5, "bad"}}) {
        datagrams->Send(from, session::EncodeDatagram(bad)); // a wrong nonce; a full session
      }
      for (const std::uint16_t rounds : std::initializer_list<std::uint16_t>{0, 100, 65535}) {
        answer.Rounds = rounds;
        ++answer.Session;
        datagrams->Send(from, session::EncodeDatagram(answer));
      }
      answer.Rounds = 5;
      for (int i = 0; i < 200; ++i, ++answer.Session) {
        datagrams->Send(from, session::EncodeDatagram(answer));
      }
    }
    if (auto call = listener->Accept()) calls.push_back(std::move(call));
    for (const auto &call : calls) poured += call->Send(zeros);
  });
  const auto everywhere = network.Search(*joiner);
  const auto honest = std::ranges::count(everywhere, "honest", &DirectPlaySessionData::GetSessionName);
  EXPECT_EQ(honest, 1);
  EXPECT_EQ(everywhere.size(), 1U + session::PortCount);
  for (const auto &row : everywhere) {
    EXPECT_EQ(row.GetRounds(), 5);
    EXPECT_NE(row.GetSessionName(), "bad");
  }
  network.Search(*joiner, "10.0.0.9");
  EXPECT_FALSE(calls.empty());
  EXPECT_LT(poured, std::size_t{500000}) << "a call without an answer is ended";
}

TEST(SessionHostileTest, AQuestionNeverGetsALongerAnswer) {
  Network network;
  const auto host = network.Program("10.0.0.1");
  Host(*host, std::string(1000, 'N'));
  network.addresses.insert("10.0.0.9");
  const auto transport = network.wire.Plug("10.0.0.9");
  const auto port = transport->OpenDatagrams(session::Reach::Network, 0);
  const Bytes question = session::EncodeDatagram(session::AskFrame{Game, 1});
  struct Row {
    const char *name;
    Bytes bytes;
    bool answered;
  };
  const Row rows[] = {
      {"a question", question, true},
      {"a question without its filling", Bytes(question.begin(), question.begin() + 31), false},
      {"another version", Changed(question, 5, 9), false},
      {"another game", Changed(question, 7, 0), false},
      {"an answer", session::EncodeDatagram(session::AnswerFrame{}), false},
      {"nothing", {}, false},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.name);
    port->Send({"10.0.0.1", session::DefaultPort}, row.bytes);
    network.Run(10);
    session::Endpoint from;
    Bytes answer;
    EXPECT_EQ(port->Receive(from, answer), row.answered);
    EXPECT_LE(answer.size(), row.bytes.size());
    EXPECT_FALSE(port->Receive(from, answer));
  }
}

} // namespace

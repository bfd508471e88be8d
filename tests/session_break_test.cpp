// Guaranteed delivery: messages arrive exactly once and in order whatever happens to the line, or both sides
// learn that the other is gone.

#include "tests/session_kit.h"

using namespace kit;

namespace {

std::vector<std::string> Numbers(int first, int last) {
  std::vector<std::string> numbers;
  for (int i = first; i <= last; ++i) numbers.push_back(std::to_string(i));
  return numbers;
}

TEST(SessionBreakTest, NothingIsLostAndNothingComesTwiceOnABadLine) {
  int resumes = 0;
  for (std::uint32_t seed = 1; seed <= 60; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    Pair pair(seed);
    std::mt19937 random(seed);
    const auto upTo = [&](std::uint32_t limit) { return static_cast<std::int32_t>(random() % limit); };
    auto &line = pair.network.wire.Line();
    line.LatencyMs = 1 + upTo(200);
    line.JitterMs = upTo(100);
    line.Loss = 0.01 * upTo(20);
    std::int32_t moment = pair.network.machine.Now() + upTo(3000);
    for (int i = 0; i < 3; ++i) {
      line.Breaks.push_back({moment, moment + 1 + upTo(20000)});
      moment = line.Breaks.back().To + 5000 + upTo(10000);
    }
    std::vector<std::string> atHost;
    std::vector<std::string> atJoiner;
    int sent = 0;
    const auto take = [&] {
      for (auto &each : TakeAll(*pair.host, pair.hostPlayer)) atHost.push_back(each);
      for (auto &each : TakeAll(*pair.joiner, pair.joinerPlayer)) atJoiner.push_back(each);
    };
    while (pair.network.machine.Now() < moment) {
      ++sent;
      SendNumber(*pair.host, pair.hostPlayer, sent);
      SendNumber(*pair.joiner, pair.joinerPlayer, sent);
      if (upTo(40) == 0) pair.network.wire.CutConnections();
      pair.network.Run(1 + upTo(500));
      if (upTo(3) == 0) take();
    }
    pair.network.Run(40000);
    take();
    ASSERT_EQ(atHost, Numbers(1, sent));
    ASSERT_EQ(atJoiner, Numbers(1, sent));
    resumes += pair.host->Opened()->GetLink().Resumes();
  }
  EXPECT_GT(resumes, 100) << "the lines were too good to prove anything";
}

TEST(SessionBreakTest, HowLongAnOutageMayLast) {
  struct Row {
    std::int32_t away; // ms
    bool survives;
  };
  for (const Row row :
       {Row{5000, true}, Row{12000, true}, Row{20000, true}, Row{34000, true}, Row{60000, false}}) {
    SCOPED_TRACE(row.away);
    Pair pair;
    const std::int32_t begun = pair.network.machine.Now();
    pair.network.wire.Line().Breaks = {{begun + 100, begun + 100 + row.away}};
    SendNumber(*pair.host, pair.hostPlayer, 1);
    pair.network.Run(1000);
    SendNumber(*pair.host, pair.hostPlayer, 2);
    SendNumber(*pair.joiner, pair.joinerPlayer, 2);
    pair.network.Run(row.away + 12000);
    if (row.survives) {
      EXPECT_EQ(TakeAll(*pair.host, pair.hostPlayer), Numbers(2, 2));
      EXPECT_EQ(TakeAll(*pair.joiner, pair.joinerPlayer), Numbers(1, 2));
    } else {
      // Messages received before the break can still be read.
      EXPECT_EQ(TakeAll(*pair.host, pair.hostPlayer), std::vector<std::string>{"lost"});
      EXPECT_EQ(TakeAll(*pair.joiner, pair.joinerPlayer), (std::vector<std::string>{"1", "lost"}));
      SendNumber(*pair.host, pair.hostPlayer, 3); // is discarded
      EXPECT_EQ(pair.host->GetMessageCount(pair.hostPlayer), 0);
    }
  }
}

TEST(SessionBreakTest, ASilentLineIsGivenUpAfterFortySeconds) {
  Pair pair;
  const std::int32_t begun = pair.network.machine.Now();
  pair.network.wire.Line().Breaks = {{begun, begun + 1000000}};
  pair.network.Run(7900); // last keep-alive up to 2 s before, 10 s of silence, 30 s to give up
  EXPECT_FALSE(pair.host->Broken() || pair.joiner->Broken());
  pair.network.Run(2200);
  EXPECT_TRUE(pair.host->Broken() && pair.joiner->Broken());
  pair.network.Run(27800);
  EXPECT_EQ(pair.host->GetMessageCount(pair.hostPlayer), 0);
  EXPECT_EQ(pair.joiner->GetMessageCount(pair.joinerPlayer), 0);
  pair.network.Run(2200);
  EXPECT_TRUE(pair.host->Broken() && pair.joiner->Broken()) << "a lost line has not come back";
  EXPECT_EQ(TakeAll(*pair.host, pair.hostPlayer), std::vector<std::string>{"lost"});
  EXPECT_EQ(TakeAll(*pair.joiner, pair.joinerPlayer), std::vector<std::string>{"lost"});
}

TEST(SessionBreakTest, TheNextDeadlineIsNeverInThePast) {
  Pair pair;
  const std::int32_t begun = pair.network.machine.Now();
  pair.network.wire.Line().Breaks = {{begun + 1000, begun + 25000}};
  // While a box waits for a click nothing polls, so a deadline in the past would never be met.
  while (pair.network.machine.Now() < begun + 30000) {
    pair.network.Run(1);
    for (const auto &side : {pair.host, pair.joiner}) {
      ASSERT_GT(side->Opened()->NextDeadline().value(), pair.network.machine.Now());
    }
  }
  EXPECT_EQ(pair.joiner->Opened()->GetLink().Resumes(), 1);
  EXPECT_FALSE(pair.host->Broken() || pair.joiner->Broken());
}

TEST(SessionBreakTest, WhatCameDuringALongDrawEndsTheNextWaitAtOnce) {
  constexpr std::int32_t LongDrawMs = 5000;
  for (const bool message : {true, false}) {
    SCOPED_TRACE(message ? "a message" : "the time for a sign of life");
    Pair pair;
    HeadlessMachine &machine = pair.network.machine;
    const session::Link &link = pair.joiner->Opened()->GetLink();
    if (message) SendNumber(*pair.host, pair.hostPlayer, 1);
    const std::int32_t deadline = pair.host->Opened()->NextDeadline().value();
    Canvas canvas;
    machine.DrawMs = LongDrawMs;
    machine.DrawCanvas(canvas);
    const std::int32_t drawn = machine.Now();
    ASSERT_GT(drawn, deadline);
    machine.Wait();
    EXPECT_EQ(machine.Now(), drawn);
    EXPECT_EQ(link.Waiting(), message ? 1U : 0U);
    EXPECT_GT(pair.host->Opened()->NextDeadline().value(), drawn);
    machine.Wait();
    EXPECT_GT(machine.Now(), drawn) << "old arrivals don't wake it again";
  }
}

TEST(SessionBreakTest, AnIdleSessionStaysUp) {
  Pair pair;
  const long before = pair.network.wire.Counted().Packets;
  pair.network.Run(600000);
  EXPECT_EQ(pair.host->Opened()->GetLink().Resumes(), 0);
  EXPECT_NEAR(static_cast<double>(pair.network.wire.Counted().Packets - before), 600, 10)
      << "every two seconds, from either side";
  pair.network.wire.Line().LatencyMs = 100;
  SendNumber(*pair.host, pair.hostPlayer, 1);
  pair.network.Run(500);
  EXPECT_EQ(TakeAll(*pair.joiner, pair.joinerPlayer), Numbers(1, 1));
  EXPECT_TRUE(pair.host->Opened()->GetLink().IsUp()) << "the time-out counts from the message";
}

TEST(SessionBreakTest, ByeArrivesAfterEveryMessage) {
  for (const bool hostLeaves : {true, false}) {
    SCOPED_TRACE(hostLeaves ? "the host leaves" : "the joiner leaves");
    Pair pair;
    pair.network.wire.Line().LatencyMs = 100;
    auto &leaver = hostLeaves ? pair.host : pair.joiner;
    auto &other = hostLeaves ? pair.joiner : pair.host;
    for (int i = 1; i <= 20; ++i) SendNumber(*leaver, hostLeaves ? pair.hostPlayer : pair.joinerPlayer, i);
    leaver.reset();
    pair.network.Run(400);
    auto expected = Numbers(1, 20);
    expected.emplace_back("lost");
    EXPECT_EQ(TakeAll(*other, hostLeaves ? pair.joinerPlayer : pair.hostPlayer), expected);
  }
}

TEST(SessionBreakTest, AKilledHostIsNoticedByItsSilentPort) {
  Pair pair;
  pair.network.wire.Kill("10.0.0.1");
  pair.network.Run(1500);
  EXPECT_EQ(pair.joiner->GetMessageCount(pair.joinerPlayer), 0);
  pair.network.Run(1000); // the third attempt, two seconds after the first
  EXPECT_EQ(TakeAll(*pair.joiner, pair.joinerPlayer), std::vector<std::string>{"lost"});
}

TEST(SessionBreakTest, AKilledJoinerIsGivenUpAfterThirtySeconds) {
  Pair pair;
  pair.network.wire.Kill("10.0.0.2");
  pair.network.Run(29000);
  EXPECT_EQ(pair.host->GetMessageCount(pair.hostPlayer), 0);
  pair.network.Run(2000);
  EXPECT_EQ(TakeAll(*pair.host, pair.hostPlayer), std::vector<std::string>{"lost"});
}

TEST(SessionBreakTest, ABrokenJoinBeforeThePlayerCameIsTakenUpAgain) {
  Network network;
  const auto host = network.Program("10.0.0.1");
  const auto joiner = network.Program("10.0.0.2");
  const std::int32_t player = Host(*host);
  joiner->Open(network.Search(*joiner).at(0), DPOPEN_JOIN);
  network.wire.CutConnections();
  const std::int32_t joined = joiner->CreatePlayer("Thicket", "Player2", 0, 0);
  SendNumber(*joiner, joined, 1);
  network.Run(3000);
  EXPECT_EQ(TakeAll(*host, player), (std::vector<std::string>{"joined", "1"}));
}

} // namespace

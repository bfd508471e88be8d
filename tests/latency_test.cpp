// The delay from the release on one computer to the replay on the other.

#include "tests/game_kit.h"
#include "tests/session_kit.h"
#include "tools/netsim/fibre.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

constexpr std::int32_t WireMs = 10; ///< one way
constexpr std::int32_t FrameMs = 25;
constexpr std::int16_t Rounds = 17; ///< of six flicks each
constexpr std::size_t Shots = 6 * Rounds;

/// A computer whose player makes weak flicks at irregular times.
struct Computer {
  Computer(FaultyWire &line, const std::string &address, std::uint32_t seed)
      : game("INET", Rounds), random(seed), play(std::make_shared<session::SessionDirectPlay>(
                                                game.machine, line.Plug(address), ShowSearchDialog)),
        nextMoment(
            [this, &line, address] { return std::min(wake, line.NextArrival(address).value_or(wake)); }) {
    game.program.DP = play;
    play->InitializeConnection("internet");
    game.machine.NextArrival = [&line, address] { return line.NextArrival(address); };
    game.machine.Sleeper = [this](std::int32_t moment) {
      wake = moment;
      fibre->Pause();
    };
    game.machine.Player = [this] {
      if (pressed || !game.window.Visible || !game.window.MouseGate()) return;
      pressed = true;
      const auto press = static_cast<std::int32_t>(1 + random() % 400);
      game.machine.After(press, [this] { game.machine.PressMouse(1); });
      game.machine.After(press + 30 + static_cast<std::int32_t>(random() % 40),
                         [this] { game.machine.ReleaseMouse(1); });
    };
    game.machine.OnDraw = [this](Canvas &) {
      if (game.window.NoShot && !flying) steps.push_back(game.machine.Now());
      flying = game.window.NoShot != False;
      if (flying) pressed = false;
    };
  }

  /// Sets the player's id and the side.
  void Begin(std::int32_t player, bool host) {
    game.program.MyPlayerId = player;
    game.program.IsHost = host ? True : False;
    game.program.MyTurn = host ? False : True;
  }

  Game game;
  std::mt19937 random;
  std::shared_ptr<session::SessionDirectPlay> play;
  std::function<std::int32_t()> nextMoment;
  std::optional<Fibre> fibre;
  std::int32_t wake = 0;
  bool pressed = false, flying = false;
  std::vector<std::int32_t> steps; ///< first step of every flight, own and replayed
};

TEST(LatencyTest, AReplayBeginsWithinAFrameOfTheShotsArrival) {
  std::int32_t now = 0;
  FaultyWire wire([&now] { return now; }, 1);
  wire.Line().LatencyMs = WireMs;
  Computer host(wire, "10.0.0.1", 1);
  Computer joiner(wire, "10.0.0.2", 2);
  const auto play = [](Computer &side) {
    try {
      side.game.window.PlayRounds();
    } catch (const ProgramEnd &) {
      ADD_FAILURE() << "a side has left";
    }
  };
  host.fibre.emplace([&] {
    const std::int32_t player = kit::Host(*host.play, "SNWG1", Rounds);
    host.Begin(player, true);
    while (host.play->GetMessageCount(player) == 0) host.game.machine.WaitUntil(host.game.machine.ClockIn(5));
    host.game.window.SetUp();
    play(host);
  });
  joiner.fibre.emplace([&] {
    joiner.game.machine.After(1, [&] {
      auto *button = dynamic_cast<CommandButton *>(joiner.game.machine.Find("frmSearch", "Command1"));
      ASSERT_NE(button, nullptr);
      joiner.game.machine.Press(*button);
    });
    DirectPlaySessionData wanted;
    wanted.SetGuidApplication(ApplicationGuid);
    joiner.Begin(kit::Join(*joiner.play, joiner.play->GetDPEnumSessions(wanted, 0, 1)->GetItem(1)), false);
    joiner.game.window.SetUp();
    play(joiner);
  });
  while (!host.fibre->Done() || !joiner.fibre->Done()) {
    Computer *next = &host;
    if (host.fibre->Done() || (!joiner.fibre->Done() && joiner.nextMoment() < host.nextMoment()))
      next = &joiner;
    now = std::max(now, next->nextMoment());
    ASSERT_LT(now, 3600 * 1000) << "the match doesn't end";
    next->game.machine.SetNow(now);
    next->fibre->Resume();
  }
  EXPECT_TRUE(host.game.window.LastWait) << "the host doesn't shoot after its last possession";
  EXPECT_FALSE(joiner.game.window.LastWait);
  ASSERT_EQ(host.steps.size(), Shots);
  ASSERT_EQ(joiner.steps.size(), Shots);
  std::vector<std::int32_t> latencies;
  for (std::size_t shot = 0; shot < Shots; ++shot) {
    latencies.push_back(std::abs(host.steps[shot] - joiner.steps[shot]));
  }
  std::ranges::sort(latencies);
  const std::int32_t median = latencies[Shots / 2];
  RecordProperty("median_ms", median);
  RecordProperty("longest_ms", latencies.back());
  EXPECT_GE(latencies.front(), WireMs);
  EXPECT_LE(median, WireMs + FrameMs) << "longest " << latencies.back();
}

} // namespace

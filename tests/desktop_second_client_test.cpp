// The game against a client written from docs/protocol.md alone. In both roles every flick must end at the
// same position on both sides, to the bit, and the scores must agree.

#include "front/run_program.h"
#include "tests/game_kit.h"
#include "tools/netsim/quick_machine.h"
#include "tools/netsim/scripted_player.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <future>
#include <iomanip>
#include <sstream>

namespace {

constexpr int Speed = 10; ///< virtual time per real time
constexpr int Rounds = 3;

/// Runs the client and returns the lines of its output, then its exit status.
std::vector<std::string> RunClient(const std::string &arguments) {
  const std::string command = "python3 " SNAPWEDGE_TESTS_DIR "/second_client.py " + arguments + " 2>&1";
  std::vector<std::string> lines(1);
  FILE *client = popen(command.c_str(), "r");
  for (int letter = fgetc(client); letter != EOF; letter = fgetc(client)) {
    if (letter == '\n') {
      lines.emplace_back();
    } else {
      lines.back() += static_cast<char>(letter);
    }
  }
  lines.back() += "status " + std::to_string(pclose(client));
  return lines;
}

/// The program, its player, and observations of its screen.
struct Real {
  Real(bool host, const std::string &session)
      : program(machine), player(machine, host, Rounds, 1), name(session) {
    player.LookFor(session);
    machine.Player = [this, act = machine.Player] {
      Prepare();
      act();
      Watch();
    };
  }

  /// In the lobby: the connection method "This Computer" and a unique session name.
  void Prepare() {
    auto *lobby = dynamic_cast<frmNewNet *>(machine.FindWindow("frmNewNet"));
    if (!lobby) return;
    lobby->lstConnections.ListIndex = 0;
    lobby->txtName.Text = name;
  }

  void Watch() {
    const auto *table = dynamic_cast<frmSnapwedge *>(machine.FindWindow("frmSnapwedge"));
    for (; heard < machine.Sounds.size(); ++heard)
      flying = flying || machine.Sounds[heard] == "play swoosh.daw";
    if (!table || !flying || table->NoShot) return;
    flying = false;
    Vector place;
    table->PieceFrame->GetPosition(table->RMCanvas1.SceneFrame, place);
    std::ostringstream line;
    line << std::hex << std::uppercase << std::setfill('0') << "flick";
    if (place.y < 0.0f) {
      line << " fell";
    } else {
      for (const float part : {place.x, place.z})
        line << ' ' << std::setw(8) << std::bit_cast<std::uint32_t>(part);
    }
    flicks.push_back(line.str());
  }

  QuickMachine machine{SNAPWEDGE_GAME_DIR, Speed};
  Program program;
  ScriptedPlayer player;
  std::string name;
  std::size_t heard = 0;
  bool flying = false;
  std::vector<std::string> flicks;
};

/// Plays a whole match. @param role  of the client
void PlayAgainstClient(const std::string &role, const std::string &options) {
  Game().SetUp(); // loads the models now: on an accelerated clock it would look like a silent peer
  const std::string session = "second-" + std::to_string(getpid());
  const std::string numbers = " --rounds " + std::to_string(Rounds) + " --speed " + std::to_string(Speed);
  auto client = std::async(std::launch::async, RunClient, role + ' ' + session + ' ' + options + numbers);
  Real real(role == "join", session);
  RunProgram(real.machine, real.program);
  const SeenMatch seen = real.player.Seen();
  const std::vector<std::string> printed = client.get();
  std::string all;
  std::vector<std::string> flicks;
  for (const std::string &line : printed) {
    all += line + '\n';
    if (line.starts_with("flick")) flicks.push_back(line);
  }
  SCOPED_TRACE(all);
  EXPECT_EQ(flicks, real.flicks);
  EXPECT_EQ(printed.back(), "status 0");
  const std::string score = "score " + std::to_string(seen.Away) + ' ' + std::to_string(seen.Home);
  EXPECT_NE(std::ranges::find(printed, score), printed.end()) << "is missing: " << score;
  EXPECT_EQ(seen.Rounds, Rounds);
  EXPECT_FALSE(seen.EndCard.empty());
  EXPECT_EQ(seen.Dropped, 0);
  EXPECT_EQ(seen.Box, "");
}

TEST(SecondClientTest, AClientOfTheDocumentAloneJoins) { PlayAgainstClient("join", "--seed 1"); }

TEST(SecondClientTest, AClientOfTheDocumentAloneHostsOverALineThatItBreaks) {
  PlayAgainstClient("host", "--seed 2 --cut 9");
}

} // namespace

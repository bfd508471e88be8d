// One side of a match between two processes on this computer, over real sockets, with a scripted player.
//   peer host|join SESSION ROUNDS SEED
// Prints what it saw, which must be the same on both sides whatever their processors and compilers.

#include "front/run_program.h"
#include "tools/game_directory.h"
#include "tools/netsim/quick_machine.h"
#include "tools/netsim/scripted_player.h"

#include <bit>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <exception>

namespace {

constexpr int Speed = 4; ///< virtual time per real time

int Play(bool host, const std::string &session, int rounds, std::uint32_t seed) {
  QuickMachine machine(GameDirectory(), Speed);
  Program program(machine);
  ScriptedPlayer player(machine, host, rounds, seed);
  player.LookFor(session);
  // In the lobby: the connection method "This Computer" and the session name.
  machine.Player = [&, act = machine.Player] {
    if (auto *lobby = dynamic_cast<frmNewNet *>(machine.FindWindow("frmNewNet"))) {
      lobby->lstConnections.ListIndex = 0;
      lobby->txtName.Text = session;
    }
    act();
  };
  RunProgram(machine, program);
  const SeenMatch &seen = player.Seen();
  for (const std::uint64_t flick : seen.Flicks) std::printf("flick %016" PRIx64 "\n", flick);
  for (const float kick : seen.Kicks) std::printf("kick %08" PRIx32 "\n", std::bit_cast<std::uint32_t>(kick));
  std::printf("rounds %d, host %d, joiner %d\n", seen.Rounds, host ? seen.Home : seen.Away,
              host ? seen.Away : seen.Home);
  if (!seen.Box.empty()) std::printf("ended by: %s\n", seen.Box.c_str());
  return seen.Box.empty() && !seen.EndCard.empty() && seen.Dropped == 0 ? 0 : 1;
}

} // namespace

int main(int argc, char **argv) {
  const std::string role = argc == 5 ? argv[1] : "";
  const int rounds = argc == 5 ? std::atoi(argv[3]) : 0;
  if ((role != "host" && role != "join") || rounds < 1) {
    std::fprintf(stderr, "usage: peer host|join SESSION ROUNDS SEED\n");
    return 2;
  }
  try {
    return Play(role == "host", argv[2], rounds,
                static_cast<std::uint32_t>(std::strtoul(argv[4], nullptr, 10)));
  } catch (const std::exception &error) {
    std::fprintf(stderr, "peer: %s\n", error.what());
    return 1;
  }
}

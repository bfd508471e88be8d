// Benchmarks of the headless machine: a step, a pick and a match without drawing.

#include "match/frm_snapwedge.h"
#include "platform/headless/headless_machine.h"
#include "tools/game_directory.h"

#include <benchmark/benchmark.h>

namespace {

/// A match ready for its first shot.
struct Ready {
  explicit Ready(const std::string &mode, std::int16_t rounds = 1)
      : machine(GameDirectory()), program(machine), window(machine, program) {
    program.GameMode = mode;
    program.Rounds = rounds;
    program.SoundOn = False;
  }
  HeadlessMachine machine;
  Program program;
  frmSnapwedge window;
};

/// One step of a flight, including the ray: the time of a flick of 96 divided by its 161 steps.
void FlightStep(benchmark::State &state) {
  constexpr int Steps = 161;
  Ready game("Human");
  game.window.SetUp();
  for (auto _ : state) {
    for (const auto &frame : {game.window.PieceFrame, game.window.AimFrame}) {
      frame->SetPosition(game.window.RMCanvas1.SceneFrame, 0, 0, 85);
    }
    game.window.Shots = 3;
    game.window.Force = 96.0f;
    game.window.RMCanvas1_MouseUp(1, 0, 0.0f, 0.0f);
    game.window.HomeScore = 0;
  }
  state.counters["step"] = benchmark::Counter(Steps * static_cast<double>(state.iterations()),
                                              benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(FlightStep);

void PickDown(benchmark::State &state) {
  Ready game("Human");
  game.window.SetUp();
  for (auto _ : state) benchmark::DoNotOptimize(game.window.CheckRay());
}
BENCHMARK(PickDown);

/// A ray down onto the stands, the largest mesh.
void PickInTheStadium(benchmark::State &state) {
  Ready game("Human");
  game.window.SetUp();
  const D3DRMRAY down{{0, -1, 0}, {3.0f, 300.0f, -190.0f}};
  Ref<Direct3DRMPickArray> picked;
  for (auto _ : state) {
    game.window.StadiumFrame->RayPick(game.window.RMCanvas1.SceneFrame, down,
                                      D3DRMRAYPICK_IGNOREFURTHERPRIMITIVES, picked);
    if (picked->Hits.empty()) state.SkipWithError("the ray has missed the stands");
  }
  const std::size_t faces = game.window.StadiumMesh->Data().Indices.size() / 3;
  state.counters["faces"] = static_cast<double>(faces);
}
BENCHMARK(PickInTheStadium);

/// A match of 99 rounds against the computer; the player overcharges every shot.
void WholeMatch(benchmark::State &state) {
  for (auto _ : state) {
    Ready game("Computer", 99);
    game.machine.Player = [&] {
      for (const char *card : {"frmHome", "frmAway", "frmTie"}) {
        if (Window *window = game.machine.FindWindow(card)) game.machine.ClickOn(*window);
      }
      if (!game.window.ShotPending && game.program.MyTurn) game.machine.PressMouse(1);
    };
    try {
      game.window.Load();
    } catch (const ProgramEnd &) {
    }
  }
}
BENCHMARK(WholeMatch)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();

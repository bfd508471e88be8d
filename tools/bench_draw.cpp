// The cost of a frame of the scene at each level of quality, drawn in full and while aiming: medians of wall
// and processor time.
//   bench_draw [measured|full|low]

#include "match/frm_snapwedge.h"
#include "platform/desktop/renderer/renderer.h"
#include "platform/headless/headless_machine.h"
#include "tools/game_directory.h"
#include "tools/median.h"

#include <QGuiApplication>

#include <sys/resource.h>

#include <chrono>
#include <cstdio>
#include <string_view>
#include <utility>
#include <vector>

namespace {

constexpr QSize CanvasSize(417, 361);
constexpr int Frames = 60;

double ProcessorMs() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  const auto ms = [](const timeval &t) {
    return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_usec) / 1e3;
  };
  return ms(usage.ru_utime) + ms(usage.ru_stime);
}

void Bench(frmSnapwedge &window, const char *name, Quality quality, bool whole) {
  Renderer renderer(quality);
  std::vector<double> wall;
  double processor = 0;
  for (int frame = 0; frame < Frames; ++frame) {
    window.Wind();
    window.AimFrame->AddRotation(D3DRMCOMBINE_BEFORE, 0, 1, 0, frame % 2 == 0 ? 0.05f : -0.05f);
    // A moving camera redraws the whole frame.
    if (whole) window.CameraFrame->SetPosition(window.CameraFrame, frame % 2 == 0 ? 0.01f : -0.01f, 0, 0);
    const double before = ProcessorMs();
    const auto start = std::chrono::steady_clock::now();
    renderer.Draw(window.RMCanvas1, CanvasSize);
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
    if (frame < Frames / 3) continue; // uploads and the choice of the level
    wall.push_back(took.count());
    processor += ProcessorMs() - before;
  }
  std::printf("%-9s level %-4s %-6s wall %.2f ms, processor %.2f ms a frame\n", name,
              renderer.Level() == Quality::Full ? "full" : "low", whole ? "whole" : "aiming", Median(wall),
              processor / static_cast<double>(wall.size()));
}

} // namespace

int main(int argc, char **argv) {
  QGuiApplication application(argc, argv);
  HeadlessMachine machine(GameDirectory());
  Program program(machine);
  program.GameMode = "Human";
  program.SoundOn = False;
  frmSnapwedge window(machine, program);
  window.SetUp();
  const std::string_view only = argc > 1 ? argv[1] : "";
  for (const auto &[name, quality] :
       {std::pair{"measured", Quality::Measured}, {"full", Quality::Full}, {"low", Quality::Low}}) {
    for (const bool whole : {true, false}) {
      if (only.empty() || only == name) Bench(window, name, quality, whole);
    }
  }
}

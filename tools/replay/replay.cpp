// Plays a match on the headless machine from commands on standard input and reports the results as lines of
// JSON. For tests and for checking a shot.

#include "platform/headless/headless_machine.h"
#include "shot/computer.h"
#include "tools/game_directory.h"
#include "tools/replay/command.h"
#include "tools/replay/report.h"
#include "tools/replay/watcher.h"

#include <iostream>

namespace {

constexpr float ComputerKick = 90.0f;

/// One match, driven from between its frames: after each frame the next command is read and executed.
class Replay {
public:
  Replay(HeadlessMachine &machine, Program &program, CommandReader &commands)
      : machine_(machine), program_(program), commands_(commands), window_(machine, program),
        watcher_(window_), planner_(machine.AppPath()) {
    planner_.Seed = machine.Seed;
    machine.OnDraw = [this](Canvas &) { SeeFrame(); };
    machine.Player = [this] { SeePump(); };
  }

  [[noreturn]] void Run() { window_.Load(); }

private:
  enum class Stage {
    Between,    ///< no shot is running
    Flick,      ///< a flick and its consequences
    PointAfter, ///< before the kick of a Touchdown
    Kick        ///< a kick and its consequences
  };

  bool ComputersTurn() const { return program_.GameMode == "Computer" && !program_.MyTurn; }
  char Side() const { return program_.MyTurn ? 'A' : 'B'; }

  void SeeFrame() {
    const bool firstOfComputer = stage_ == Stage::Between && ComputersTurn() && window_.NoShot;
    if (firstOfComputer) BeginComputer();
    watcher_.SeeFrame();
    if (stage_ == Stage::Flick && window_.KickMode) {
      ReportFlick(window_, asked_, watcher_.Flick());
      stage_ = Stage::PointAfter;
    }
    const bool waits = stage_ == Stage::PointAfter || (stage_ == Stage::Between && window_.Round > 0);
    if (waits && !ComputersTurn()) EndFrame();
  }

  void SeePump() {
    watcher_.SeeCards();
    for (const auto &[name, card] : {std::pair{"frmHome", "home"}, {"frmAway", "away"}, {"frmTie", "tie"}}) {
      if (!machine_.FindWindow(name)) continue;
      ReportOver(window_, card);
      throw ProgramEnd{};
    }
    if (asked_.Computer) EndComputer();
  }

  /// Called after each frame of a human turn. Plays at most one shot, and none in the frame in which the
  /// computer's possession ended, so that the match can continue.
  void EndFrame() {
    if (framesLeft_ > 0) --framesLeft_;
    const Stage stage = stage_;
    while (framesLeft_ == 0 && stage_ == stage && !played_) {
      if (kickWaits_) {
        ReleaseKick();
      } else {
        const auto command = commands_.Next();
        if (!command) throw ProgramEnd{};
        std::visit([this](const auto &each) { Do(each); }, *command);
      }
    }
    played_ = false;
  }

  void Do(const RoundsCommand &) { commands_.Refuse("rounds is allowed only in the first line"); }
  void Do(const ModeCommand &) { commands_.Refuse("mode is allowed only before the first shot"); }
  void Do(const SkillCommand &) { commands_.Refuse("skill is allowed only before the first shot"); }
  void Do(const SeedCommand &) { commands_.Refuse("seed is allowed only before the first shot"); }
  void Do(const FramesCommand &frames) { framesLeft_ = frames.Count; }

  void Do(const ProbeCommand &probe) {
    const D3DRMRAY ray{{0.0f, -1.0f, 0.0f}, {probe.X, 0.0f, probe.Z}};
    std::string surface;
    try {
      Ref<Direct3DRMPickArray> hits;
      window_.TableFrame->RayPick(window_.RMCanvas1.SceneFrame, ray, D3DRMRAYPICK_IGNOREFURTHERPRIMITIVES,
                                  hits);
      D3DRMPICKDESC description;
      surface = hits->GetPickVisual(0, description)->GetName();
    } catch (const SceneError &) {
      // No mesh there.
    }
    ReportProbe(probe.X, probe.Z, surface);
  }

  void Do(const FlickCommand &flick) {
    if (stage_ != Stage::Between) commands_.Refuse("a flick in the point-after");
    asked_ = {Side(), flick.Force, flick.Turn, FirstAttempt + 3 - window_.Shots, false};
    stage_ = Stage::Flick;
    TurnAim(flick.Turn);
    watcher_.Begin();
    Release(flick.Force);
    // A Touchdown was reported when its point-after began, so it is the kick that has ended.
    if (stage_ == Stage::Flick) ReportFlick(window_, asked_, watcher_.Flick());
    if (stage_ == Stage::Kick) ReportKick(window_, asked_, watcher_.Kick());
    stage_ = Stage::Between;
    played_ = true;
  }

  void Do(const KickCommand &kick) {
    if (stage_ != Stage::PointAfter) commands_.Refuse("a kick outside the point-after");
    kick_ = kick;
    framesLeft_ = kick.Wait;
    kickWaits_ = true;
  }

  void ReleaseKick() {
    kickWaits_ = false;
    TurnAim(kick_.Turn);
    if (kick_.Force == 0.0f) {
      Release(kick_.Force);
      ReportNoKick();
      return;
    }
    asked_ = {Side(), kick_.Force, kick_.Turn, 0, false};
    stage_ = Stage::Kick;
    Release(kick_.Force);
  }

  void TurnAim(float turn) { window_.AimFrame->AddRotation(D3DRMCOMBINE_BEFORE, 0, 1, 0, turn); }

  /// Releases the button with the meter at `force`.
  void Release(float force) {
    window_.ShotPending = True;
    window_.Force = force;
    window_.RMCanvas1_MouseUp(1, 0, 0.0f, 0.0f);
  }

  void BeginComputer() {
    // The flick has already used its attempt. A second machine with the same seed makes the same plans.
    const ComputerPlan plan =
        PlanComputerShot(planner_, program_.Skill, static_cast<std::int16_t>(window_.Shots + 1));
    asked_ = {Side(), plan.Force, plan.Turn, FirstAttempt + 2 - window_.Shots, true};
    watcher_.Begin();
    stage_ = Stage::Flick;
  }

  /// Reports the computer's shot when it is over.
  void EndComputer() {
    if (stage_ == Stage::PointAfter && watcher_.Kick().Steps > 0) {
      asked_ = {'B', ComputerKick, 0.0f, 0, true};
      stage_ = Stage::Kick;
    }
    const bool over = !window_.NoShot && !window_.Busy && !window_.KickMode;
    if (stage_ == Stage::Flick && over)
      ReportFlick(window_, asked_, watcher_.Flick());
    else if (stage_ == Stage::Kick && over && program_.MyTurn)
      ReportKick(window_, asked_, watcher_.Kick());
    else
      return;
    stage_ = Stage::Between;
    asked_.Computer = false;
    played_ = !ComputersTurn();
  }

  static constexpr int FirstAttempt = 1;

  HeadlessMachine &machine_;
  Program &program_;
  CommandReader &commands_;
  frmSnapwedge window_;
  Watcher watcher_;
  HeadlessMachine planner_; ///< repeats the computer's random draws
  Stage stage_ = Stage::Between;
  AskedShot asked_;
  KickCommand kick_{};
  bool kickWaits_ = false;
  bool played_ = false; ///< this frame already had a shot
  int framesLeft_ = 0;
};

/// Executes the settings before the first shot. Returns whether there is a shot.
bool ReadSettings(CommandReader &commands, HeadlessMachine &machine, Program &program) {
  while (const auto &next = commands.Peek()) {
    if (const auto *rounds = std::get_if<RoundsCommand>(&*next))
      program.Rounds = rounds->Rounds;
    else if (const auto *mode = std::get_if<ModeCommand>(&*next))
      program.GameMode = mode->GameMode;
    else if (const auto *skill = std::get_if<SkillCommand>(&*next))
      program.Skill = skill->Skill;
    else if (const auto *seed = std::get_if<SeedCommand>(&*next))
      machine.Seed = seed->Seed;
    else
      return true;
    commands.Next();
  }
  return false;
}

} // namespace

int main(int, char **argv) {
  constexpr int BadInputStatus = 2;
  HeadlessMachine machine(GameDirectory());
  Program program(machine);
  program.GameMode = "Human";
  program.SoundOn = False;
  CommandReader commands(std::cin);
  try {
    if (!ReadSettings(commands, machine, program)) return 0;
    Replay(machine, program, commands).Run();
  } catch (const ProgramEnd &) {
    return 0;
  } catch (const BadInput &error) {
    std::cerr << argv[0] << ": " << error.what() << std::endl;
    return BadInputStatus;
  } catch (const std::exception &error) {
    std::cerr << argv[0] << ": " << error.what() << std::endl;
    return 1;
  }
}

// The point-after: between a Touchdown and the turnover the side kicks at moving posts.

#include "match/frm_snapwedge.h"
#include "scene/places.h"

namespace {

// Where the kick is set up, scene units.
constexpr Vector PiecePlace{0.0f, 4.0f, 85.0f};
constexpr Vector KickCamera{0.0f, 15.0f, 120.0f};

// The computer kicks just after the posts turn at +x, so that they are in the middle of the field when the
// piece arrives.
constexpr float ComputerTriggerX = 80.0f;
constexpr float ComputerPower = 90.0f;

} // namespace

void frmSnapwedge::MPAT() {
  const auto &scene = RMCanvas1.SceneFrame;
  PostScore();
  Shots = AttemptsInPossession;
  ArrowFrame->AddVisual(ArrowMesh);
  Place(PieceFrame, scene, PiecePlace);
  Place(AimFrame, scene, Places::KickAim);
  Place(CameraFrame, scene, KickCamera);
  LookCam();
  RMCanvas1.Update();
  KickMode = True;
  ShotPending = False;
  PieceFrame->SetOrientation(scene, 0, 0, 1, 1, 0, 0);
  AimFrame->SetOrientation(scene, 0, 0, 1, 0, 1, 0);
  ProgressBar1.Ghost.reset();
  ScaleForKick();
  HintAim();
  RMCanvas1.Update();

  void (frmSnapwedge::*kickFrame)() = &frmSnapwedge::HumanKickFrame;
  if (!program.MyTurn && program.GameMode == "Computer") kickFrame = &frmSnapwedge::ComputerKickFrame;
  if (!program.MyTurn && program.GameMode == "INET") kickFrame = &frmSnapwedge::WaitingKickFrame;
  if (kickFrame != &frmSnapwedge::HumanKickFrame) NoShot = True;

  while (KickMode) {
    BeginStep(program.FlickMs);
    (this->*kickFrame)();
    // After an overcharged kick the button may still be held; its release must not start a flick.
    if (!KickMode) Busy = True;
    machine.Pump();
    machine.Show(*this);
    RMCanvas1.Update();
    WaitForStepEnd();
  }
  Busy = False;
}

void frmSnapwedge::HumanKickFrame() {
  MoveGoal();
  Wind();
  CheckMouse();
  SetMouse();
}

void frmSnapwedge::ComputerKickFrame() {
  SideCam();
  LookCam();
  MoveGoal();
  Vector goal;
  GoalFrame->GetPosition(RMCanvas1.SceneFrame, goal);
  if (goal.x > ComputerTriggerX && GoalSpeed < 0.0f) {
    GetFmain();
    float power = ComputerPower;
    KickFB(KickFrameX, KickFrameY, KickFrameZ, power, KickX1, KickY1, KickZ1, KickX2, KickY2, KickZ2);
  }
  Wind();
  SetMouse();
}

void frmSnapwedge::WaitingKickFrame() {
  SideCam();
  LookCam();
  MoveGoal();
  CheckMessages();
  Wind();
  SetMouse();
}

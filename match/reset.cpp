// The turnover.

#include "match/frm_snapwedge.h"
#include "scene/places.h"

namespace {

void FaceGoal(const Ref<Direct3DRMFrame3> &frame, const Ref<Direct3DRMFrame3> &scene) {
  frame->SetOrientation(scene, 0, 0, 1, 0, 1, 0);
}

} // namespace

void frmSnapwedge::Reset() {
  const auto &scene = RMCanvas1.SceneFrame;
  machine.Show(*this);
  program.MyTurn = Not(program.MyTurn);
  Player = program.MyTurn ? 1 : 2;
  FaceGoal(PieceFrame, scene);
  Shots = AttemptsInPossession;
  Force = 0;
  TurnColor();
  ProgressBar1.Value = 0;
  ProgressBar1.Ghost.reset();
  ProgressBar1.CapLit = false;
  ScaleForFlick();
  Place(PieceFrame, scene, Places::Start);
  Place(AimFrame, scene, Places::Start);
  Place(ArrowFrame, scene, Places::Start);
  Place(GoalFrame, scene, Places::Goal);
  PieceFrame->SetRotation(scene, 0, 0, 0, 0); // ends the tumble of a fall
  FaceGoal(PieceFrame, scene);
  FaceGoal(AimFrame, scene);
  FaceGoal(PieceFrame, scene);
  Place(CameraFrame, scene, Places::Camera);
  LookCam();
  if (program.GameMode == "INET" && Player == 2) {
    SideCam();
    LookCam();
  }
  HintAim();
  RMCanvas1.Update();
}

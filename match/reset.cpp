// The turnover.

#include "match/frm_snapwedge.h"

namespace {

// Where everything stands at the start of a possession, scene units.
constexpr Vector Start{0.0f, 0.0f, 85.0f};
constexpr Vector GoalPlace{0.0f, 20.0f, -95.0f};
constexpr Vector RestCamera{0.0f, 10.0f, 120.0f};
constexpr std::int16_t AttemptsInPossession = 3;

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
  PieceFrame->SetPosition(scene, Start.x, Start.y, Start.z);
  AimFrame->SetPosition(scene, Start.x, Start.y, Start.z);
  ArrowFrame->SetPosition(scene, Start.x, Start.y, Start.z);
  GoalFrame->SetPosition(scene, GoalPlace.x, GoalPlace.y, GoalPlace.z);
  PieceFrame->SetRotation(scene, 0, 0, 0, 0);
  FaceGoal(PieceFrame, scene);
  FaceGoal(AimFrame, scene);
  FaceGoal(PieceFrame, scene);
  CameraFrame->SetPosition(scene, RestCamera.x, RestCamera.y, RestCamera.z);
  LookCam();
  if (program.GameMode == "INET" && Player == 2) {
    SideCam();
    LookCam();
  }
  RMCanvas1.Update();
}

// The motion of a flick: a straight slide at constant height that loses speed at a fixed rate, with a spin
// proportional to the speed. Each step tests whether the table is below; match/judging.cpp interprets the
// result.

#include "match/arithmetic.h"
#include "match/frm_snapwedge.h"
#include "match/shot_power.h"
#include "shot/meter.h"

#include <algorithm>

namespace {

constexpr float TravelDivisor = 50.0f; ///< scene units per step = Power / TravelDivisor
constexpr float SpinDivisor = 200.0f;  ///< radians per step = Power / SpinDivisor

float Travel(float power) { return Quotient(power, TravelDivisor); }

float Slower(float power, float decay) { return std::max(Difference(power, decay), 0.0f); }

} // namespace

float FlickReach(float power, float decay) {
  float reach = 0.0f;
  for (; power != 0.0f; power = Slower(power, decay)) reach = Sum(reach, Travel(power));
  return reach;
}

void frmSnapwedge::Flick(float &ShotX, float &ShotY, float &ShotZ, float &Power, float &DirX, float &DirY,
                         float &DirZ, float &UpX, float &UpY, float &UpZ, std::int16_t &Side) {
  const auto &scene = RMCanvas1.SceneFrame;
  Shots = static_cast<std::int16_t>(Shots - 1);
  NoShot = True;
  Vector camera;
  CameraFrame->GetPosition(AimFrame, camera);
  CamOfsX = camera.x;
  CamOfsY = camera.y;
  CamOfsZ = camera.z;
  AimFrame->SetPosition(scene, ShotX, ShotY, ShotZ);
  AimFrame->SetOrientation(scene, DirX, DirY, DirZ, UpX, UpY, UpZ);
  ArrowFrame->DeleteVisual(ArrowMesh);
  ShotPower = Power;
  ShowShots();
  HintFlight();
  program.PlayOnce(program.SndSwoosh);

  while (Power != 0.0f) {
    BeginStep(program.FlickMs);
    AimFrame->SetPosition(AimFrame, 0, 0, -Travel(Power));
    PieceFrame->AddRotation(D3DRMCOMBINE_BEFORE, 0, 1, 0, Quotient(-Power, SpinDivisor));
    PieceFrame->SetPosition(AimFrame, 0, 0, 0);
    Power = Slower(Power, ForceDecay);
    if (ProgressBar1.Value > 0.0f) ProgressBar1.Value -= 1.0f;
    Wind();
    RMCanvas1.Update();
    machine.Pump();
    if (CheckRay() == "Fall") return;
    LookCam();
    WaitForStepEnd();
    SetMouse();
  }

  if (program.MyTurn || program.GameMode == "Human") {
    CameraFrame->SetPosition(AimFrame, CamOfsX, CamOfsY, CamOfsZ);
  }
  NoShot = False;
  std::int16_t sideCopy = Side;
  CheckScore(sideCopy);
  ArrowFrame->AddVisual(ArrowMesh);
  PostScore();
  LookCam();
  HintAim();
  ShotPending = False;
}

void frmSnapwedge::PrematureFlick() {
  NoShot = True;
  Force = OverchargedFlick;
  ProgressBar1.CapLit = true;
  ReadAim();
  ReadShotPlace();
  if (program.GameMode == "INET") SendFlick(FrameX, FrameY, FrameZ, Force, X1, Y1, Z1, X2, Y2, Z2, Player);
  Flick(FrameX, FrameY, FrameZ, Force, X1, Y1, Z1, X2, Y2, Z2, Player);
  Force = 0;
  ProgressBar1.Value = 0;
  MouseMode = 0;
}

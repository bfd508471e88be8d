// The field goal: the piece tumbles on a parabola toward posts that move from side to side. The table doesn't
// matter; the verdict depends on the position at which the piece reaches the posts.

#include "match/arithmetic.h"
#include "match/frm_snapwedge.h"
#include "match/results.h"
#include "match/shot_power.h"
#include "scene/places.h"
#include "shot/meter.h"

namespace {

constexpr float ForwardDivisor = 40.0f; ///< scene units per step = Power / ForwardDivisor
constexpr float RiseDivisor = 3.0f;     ///< initial rise per half step = forward step / RiseDivisor
// Loss of rise per step = forward step / DropDivisor / DropStepDivisor.
constexpr float DropDivisor = 20.0f;
constexpr float DropStepDivisor = 10.0f;
constexpr float TumbleDivisor = 7.0f;  ///< radians per step = forward step / TumbleDivisor
constexpr float HalfGoalWidth = 14.0f; ///< from the middle to either post, scene units
constexpr float GoalReach = 88.0f;     ///< the posts turn back beyond this, scene units

float Forward(float power) { return Quotient(-power, ForwardDivisor); }

float FirstRise(float forward) { return Quotient(-forward, RiseDivisor); }

float Drop(float forward) {
  return static_cast<float>(static_cast<double>(forward) / DropDivisor * -1.0 / DropStepDivisor);
}

/// Whether a kick at that place is still in flight.
bool Flies(const Vector &place, float drop) {
  // With a tiny force gravity rounds to 0, and the piece would never come down.
  return place.z > Places::Goal.z && !(place.y < 0.0f) && drop > 0.0f;
}

} // namespace

std::optional<float> KickHeightAtPosts(float power) {
  const float forward = Forward(power), drop = Drop(forward);
  float rise = FirstRise(forward);
  Vector aim = Places::KickAim, piece = aim;
  while (Flies(piece, drop)) {
    aim.y = Sum(aim.y, rise);
    aim.z = Sum(aim.z, forward);
    piece = aim;
    aim.y = Sum(aim.y, rise);
    rise = Difference(rise, drop);
  }
  if (piece.z > Places::Goal.z) return std::nullopt;
  return piece.y;
}

void frmSnapwedge::KickFB(float &ShotX, float &ShotY, float &ShotZ, float &Power, float &DirX, float &DirY,
                          float &DirZ, float &UpX, float &UpY, float &UpZ) {
  const auto &scene = RMCanvas1.SceneFrame;
  NoShot = True;
  AimFrame->SetPosition(scene, ShotX, ShotY, ShotZ);
  AimFrame->SetOrientation(scene, DirX, DirY, DirZ, UpX, UpY, UpZ);
  ShotPower = Power;
  HintFlight();
  Power = Forward(Power);
  KickRise = FirstRise(Power);
  KickDrop = Drop(Power);
  ArrowFrame->DeleteVisual(ArrowMesh);
  Vector place;
  AimFrame->GetPosition(scene, place);

  while (Flies(place, KickDrop)) {
    BeginStep(program.FlickMs);
    MoveGoal();
    SideCam();
    LookCam();
    PieceFrame->AddRotation(D3DRMCOMBINE_BEFORE, 0, 1, 0, Quotient(Power, TumbleDivisor));
    AimFrame->SetPosition(AimFrame, 0, KickRise, Power);
    AimFrame->GetPosition(scene, place);
    PieceFrame->SetPosition(AimFrame, 0, 0, 0);
    AimFrame->SetPosition(AimFrame, 0, KickRise, 0);
    KickRise = Difference(KickRise, KickDrop);
    RMCanvas1.Update();
    machine.Pump();
    WaitForStepEnd();
    SetMouse();
  }

  CheckFG();
  if (KickGood) {
    (program.MyTurn ? HomeScore : AwayScore) += 1;
    ShowMessage(Results::GoodKick);
    if (program.GameMode == "INET") SyncScore();
  } else {
    ShowMessage(Results::MissedKick);
  }
  KickGood = False;
  ShotPending = False;
  NoShot = False;
  KickMode = False;
}

void frmSnapwedge::CheckFG() {
  if (program.GameMode == "INET" && !program.MyTurn) return;
  if (KickGood) return;
  Vector piece, goal;
  PieceFrame->GetPosition(RMCanvas1.SceneFrame, piece);
  GoalFrame->GetPosition(RMCanvas1.SceneFrame, goal);
  if (goal.x - HalfGoalWidth < piece.x && piece.x < goal.x + HalfGoalWidth && piece.y > goal.y)
    KickGood = True;
}

void frmSnapwedge::MoveGoal() {
  GoalFrame->SetPosition(GoalFrame, GoalSpeed, 0, 0);
  Vector goal;
  GoalFrame->GetPosition(RMCanvas1.SceneFrame, goal);
  if (goal.x > GoalReach || goal.x < -GoalReach) GoalSpeed = -GoalSpeed;
}

void frmSnapwedge::PrematureKick() {
  NoShot = True;
  Force = OverchargedKick;
  ProgressBar1.CapLit = true;
  ReadAim();
  GetFmain();
  if (program.GameMode == "INET") SendFG(FrameX, FrameY, FrameZ, Force, X1, Y1, Z1, X2, Y2, Z2, Player);
  float power = OverchargedKick;
  KickFB(KickFrameX, KickFrameY, KickFrameZ, power, KickX1, KickY1, KickZ1, KickX2, KickY2, KickZ2);
  Force = 0;
  ProgressBar1.Value = 0;
  MouseMode = 0;
}

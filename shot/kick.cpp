// The field goal: the piece tumbles end over end on a parabola toward posts that walk from side to side. It
// ignores the table; what counts is where it comes level with the posts.

#include "match/arithmetic.h"
#include "match/frm_snapwedge.h"
#include "match/results.h"

namespace {

constexpr float ForwardDivisor = 40.0f;          ///< scene units a step = Power / ForwardDivisor
constexpr float RiseDivisor = 3.0f;              ///< first rise in half a step = forward step / RiseDivisor
constexpr float DropDivisors[] = {20.0f, 10.0f}; ///< loss of the rise in a step = forward step / both
constexpr float TumbleDivisor = 7.0f;            ///< radians a step = forward step / TumbleDivisor
constexpr float PostsZ = -95.0f;                 ///< the flight ends at or beyond it
constexpr float HalfGoalWidth = 14.0f;           ///< scene units from the middle of the posts to either
constexpr float GoalReach = 88.0f;               ///< beyond it, to either side, the posts turn
constexpr float OverchargePower = 30.0f;

} // namespace

void frmSnapwedge::KickFB(float &ShotX, float &ShotY, float &ShotZ, float &Power, float &DirX, float &DirY,
                          float &DirZ, float &UpX, float &UpY, float &UpZ) {
  const auto &scene = RMCanvas1.SceneFrame;
  NoShot = True;
  AimFrame->SetPosition(scene, ShotX, ShotY, ShotZ);
  AimFrame->SetOrientation(scene, DirX, DirY, DirZ, UpX, UpY, UpZ);
  Power = Quotient(-Power, ForwardDivisor);
  KickRise = Quotient(-Power, RiseDivisor);
  KickDrop = static_cast<float>(static_cast<double>(Power) / DropDivisors[0] * -1.0 / DropDivisors[1]);
  ArrowFrame->DeleteVisual(ArrowMesh);
  Vector place;
  AimFrame->GetPosition(scene, place);

  // A force so small that its gravity rounds to 0 would keep the piece in the air for ever.
  while (place.z > PostsZ && !(place.y < 0.0f) && KickDrop > 0.0f) {
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
  Force = OverchargePower;
  ReadAim();
  GetFmain();
  if (program.GameMode == "INET") SendFG(FrameX, FrameY, FrameZ, Force, X1, Y1, Z1, X2, Y2, Z2, Player);
  float power = OverchargePower;
  KickFB(KickFrameX, KickFrameY, KickFrameZ, power, KickX1, KickY1, KickZ1, KickX2, KickY2, KickZ2);
  Force = 0;
  ProgressBar1.Value = 0;
  MouseMode = 0;
}

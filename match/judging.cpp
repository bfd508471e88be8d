// The verdict on a resting piece. The game has no model of the table: it casts a ray straight down from a
// point of the piece and uses the name of the first mesh hit. No hit means that the point is past an edge.

#include "match/arithmetic.h"
#include "match/frm_snapwedge.h"
#include "match/results.h"
#include "scene/places.h"

#include <string>

namespace {

constexpr std::int16_t FirstAttempt = 2; ///< value of `Shots` during the first attempt
constexpr std::int16_t SecondAttempt = 1;
constexpr std::int32_t BonusPoints = 3;
constexpr std::int32_t TouchdownPoints = 6;

constexpr int FallSteps = 50;
constexpr float FallPerStep = 3.0f;    ///< scene units
constexpr float TumblePerStep = 0.45f; ///< radians
constexpr float FallCameraY = -10.0f;  ///< below the table's top

/// Points `ray` straight down from a frame's origin. Returns the frame's position in the scene.
Vector LookDownFrom(const Ref<Direct3DRMFrame3> &frame, const Ref<Direct3DRMFrame3> &scene, D3DRMRAY &ray) {
  Vector place;
  frame->GetPosition(scene, place);
  ray.Direction = {0.0f, -1.0f, 0.0f};
  ray.Origin = place;
  return place;
}

/// The name of the first mesh on the ray.
/// @throws SceneError  if there is none
std::string NameUnder(const Ref<Direct3DRMFrame3> &table, const Ref<Direct3DRMFrame3> &scene,
                      const D3DRMRAY &ray) {
  Ref<Direct3DRMPickArray> hits;
  table->RayPick(scene, ray, D3DRMRAYPICK_IGNOREFURTHERPRIMITIVES, hits);
  D3DRMPICKDESC description;
  return hits->GetPickVisual(0, description)->GetName();
}

} // namespace

std::string frmSnapwedge::CheckRay() {
  try {
    LookDownFrom(PieceFrame, RMCanvas1.SceneFrame, Ray);
    PieceSurface = NameUnder(TableFrame, RMCanvas1.SceneFrame, Ray);
    return "OK";
  } catch (const SceneError &) {
    PieceSurface.clear();
  }
  Fall();
  return "Fall";
}

void frmSnapwedge::Fall() {
  const auto &scene = RMCanvas1.SceneFrame;
  Vector camera;
  CameraFrame->GetPosition(scene, camera);
  CameraFrame->SetPosition(scene, camera.x, FallCameraY, camera.z);
  Vector piece;
  PieceFrame->GetPosition(scene, piece);
  PieceFrame->SetRotation(scene, 1, 1, 1, TumblePerStep);
  // The waiting computer of a network game gets the result from the other one.
  if (program.GameMode != "INET" || program.MyTurn) HintResult(Results::Turnover);
  for (int step = 0; step < FallSteps; ++step) {
    BeginStep(program.FlickMs);
    PieceFrame->SetPosition(scene, piece.x, piece.y, piece.z);
    LookCam();
    RMCanvas1.Update();
    piece.y = Difference(piece.y, FallPerStep);
    WaitForStepEnd();
    SetMouse();
  }
  NoShot = False;
  ShotPending = False;
  ArrowFrame->AddVisual(ArrowMesh);
  ShowMessage(Results::Turnover);
  Reset();
}

void frmSnapwedge::CheckScore(std::int16_t & /*Side*/) {
  const auto &scene = RMCanvas1.SceneFrame;
  float ZA = 0, ZB = 0, ZC = 0; // 0 for a corner that isn't tested
  Flag Bonus = False;
  OverSide = False;
  OnCircle = False;
  std::int32_t &score = program.MyTurn ? HomeScore : AwayScore;
  const auto lookUnder = [&](const Ref<Direct3DRMFrame3> &corner, float &z) {
    z = LookDownFrom(corner, scene, Ray).z;
    CornerSurface = NameUnder(TableFrame, scene, Ray);
    if (CornerSurface != "TableBon") return;
    OnCircle = True;
    if (Shots == FirstAttempt) Bonus = True;
  };

  try {
    lookUnder(CornerA, ZA);
    lookUnder(CornerB, ZB);
    lookUnder(CornerC, ZC);
    if (Bonus) {
      CloseUp();
      score += BonusPoints;
      ShowMessage(Results::Bonus);
    }
    if (Shots < SecondAttempt) FallShort();
    return;
  } catch (const SceneError &) {
    // Nothing is under the last tested corner: the piece hangs over an edge. A failure of the scene in the
    // close-up or the card above counts as that too.
  }

  const bool past = ZA < Places::FarEdgeZ || ZB < Places::FarEdgeZ || ZC < Places::FarEdgeZ;
  if (!past || !PieceSurface.starts_with("Table")) {
    OverSide = True;
    // Over a side edge the possession continues, unless no attempt is left.
    if (Shots < SecondAttempt) FallShort();
    return;
  }
  CloseUp();
  if (Shots == FirstAttempt || Shots == SecondAttempt) {
    WinCam();
    ShowMessage(Results::Penalty);
    Reset();
    return;
  }
  WinCam();
  score += TouchdownPoints;
  ShowMessage(Results::Touchdown);
  MPAT();
  Reset();
}

void frmSnapwedge::FallShort() {
  WinCam();
  ShowMessage(Results::Short);
  Reset();
}

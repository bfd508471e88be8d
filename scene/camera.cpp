// The camera's views, the drifting sky, and hiding of stadium and sky. The camera is moved first and then
// turned to the piece. `LookAt` keeps it upright.

#include "match/arithmetic.h"
#include "match/frm_snapwedge.h"
#include "scene/places.h"

namespace {

constexpr Vector SidePlace{100.0f, 20.0f, 0.0f};
constexpr Vector CloseUpPlace{0.0f, 20.0f, 20.0f}; ///< relative to the piece
constexpr float WinX = 88.0f;                      ///< on the piece's side of the field
constexpr float WinY = 30.0f;
constexpr float WinZ = -88.0f;
constexpr float SkyDrift = 0.0008f; ///< texture repeats per step, about 0.27 scene units

} // namespace

void frmSnapwedge::LookCam() { CameraFrame->LookAt(PieceFrame, RMCanvas1.SceneFrame, D3DRMCONSTRAIN_Z); }

void frmSnapwedge::SideCam() { Place(CameraFrame, RMCanvas1.SceneFrame, SidePlace); }

void frmSnapwedge::CloseUp() {
  Place(CameraFrame, PieceFrame, CloseUpPlace);
  LookCam();
  RMCanvas1.Update();
}

void frmSnapwedge::WinCam() {
  Vector piece;
  PieceFrame->GetPosition(RMCanvas1.SceneFrame, piece);
  CameraFrame->SetPosition(RMCanvas1.SceneFrame, piece.x < 0.0f ? -WinX : WinX, WinY, WinZ);
  LookCam();
  RMCanvas1.Update();
}

void frmSnapwedge::Wind() {
  Wrap = RMCanvas1.RootObject->CreateWrap(D3DRMWRAP_FLAT, TableFrame, 0, 0, 0, 0, 1, 0, 0, 0, 0, SkyU, SkyV,
                                          SkyRepeat, SkyRepeat);
  Wrap->Apply(SkyMesh);
  SkyU = Sum(SkyU, SkyDrift);
  SkyV = Sum(SkyV, SkyDrift);
}

void frmSnapwedge::ToggleStadium() {
  program.StadiumOn = Not(program.StadiumOn);
  if (program.StadiumOn) {
    StadiumFrame->AddVisual(StadiumMesh);
    StadiumFrame->AddVisual(LinesMesh);
    SkyFrame->AddVisual(SkyMesh);
  } else {
    StadiumFrame->DeleteVisual(StadiumMesh);
    StadiumFrame->DeleteVisual(LinesMesh);
    SkyFrame->DeleteVisual(SkyMesh);
  }
  RMCanvas1.Update();
}

// Builds the scene: loads models and textures, attaches them to a fixed tree of frames, and places them. The
// order matters: a wrap uses the current vertices, so it follows a mesh's scaling. On the bonus disc it
// precedes the translation, so that the disc's grass is centred on the disc.

#include "match/frm_snapwedge.h"
#include "scene/places.h"
#include "scene/scene_files.h"

namespace {

// Scene units per unit of the model file.
constexpr float PieceScale = 0.03f;
constexpr float BonusScale = 0.08f;
constexpr float TableScale = 0.5f;
constexpr float SkyScale = 5.0f;
constexpr float ArrowScale = 0.05f;
constexpr float GoalScale = 0.3f;
constexpr float LinesScale = 0.43f;
constexpr Vector StadiumScale{1.6f, 1.2f, 1.6f};

// Positions, scene units.
constexpr float BonusLift = 0.05f;  ///< of the disc above the table top
constexpr float ExtraLift = 0.3f;   ///< of the raised marking
constexpr float ArrowOffset = 5.0f; ///< of the arrow model, along its frame's +z
constexpr Vector LinesOffset{0.0f, -10.0f, 9.0f};
constexpr Vector SkyPlace{0.0f, 80.0f, 0.0f};
constexpr Vector TablePlace{0.0f, -0.5f, 0.0f};
constexpr Vector StadiumPlace{0.0f, 10.0f, 0.0f};
// Relative to the piece.
constexpr Vector CornerAPlace{5.0f, 0.0f, 2.5f};
constexpr Vector CornerBPlace{-5.0f, 0.0f, 2.5f};
constexpr Vector CornerCPlace{0.0f, 0.0f, -2.5f};

// Texture repeats per scene unit.
constexpr float PieceRepeat = 0.19f;
constexpr float GrassRepeat = 0.03f;
constexpr float CrowdRepeat = 0.01f;

} // namespace

void CheckSceneFiles(const std::filesystem::path &directory) {
  for (const char *model : {"fb.dax", "bonus.dax", "extra.dax", "table.dax", "dir.dax", "goal.dax",
                            "stadium4.dax", "lines.dax"}) {
    CheckMeshFile(directory / model);
  }
  for (const char *texture : {"loose.dab", "grass.dab", "sky.dab", "crowd2.dab"}) {
    CheckImageFile(directory / texture);
  }
}

void frmSnapwedge::LoadScene() {
  const auto directory = machine.AppPath();
  Direct3DRM3 &rm = *RMCanvas1.RootObject;
  const auto load = [&](const char *file) {
    auto mesh = rm.CreateMeshBuilder();
    mesh->LoadFromFile(directory / file, 0, 0);
    return mesh;
  };
  const auto topDown = [&](const Ref<Direct3DRMFrame3> &reference, float repeat) {
    return rm.CreateWrap(D3DRMWRAP_FLAT, reference, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, repeat, repeat);
  };

  LooseTexture = rm.LoadTexture(directory / "loose.dab");
  Wrap = rm.CreateWrap(D3DRMWRAP_FLAT, nullptr, 0, 0, 0, 1, 1, 1, 0, 1, 0, 0, 0, PieceRepeat, PieceRepeat);
  PieceFrame = rm.CreateFrame(RMCanvas1.SceneFrame);
  AimFrame = rm.CreateFrame(RMCanvas1.SceneFrame);
  PieceMesh = load("fb.dax");
  PieceMesh->ScaleMesh(PieceScale, PieceScale, PieceScale);
  Wrap->Apply(PieceMesh);
  PieceMesh->SetTexture(LooseTexture);
  PieceFrame->AddVisual(PieceMesh);

  BonusMesh = load("bonus.dax");
  ExtraMesh = load("extra.dax");
  Wrap = topDown(nullptr, GrassRepeat);
  GrassTexture = rm.LoadTexture(directory / "grass.dab");
  SkyTexture = rm.LoadTexture(directory / "sky.dab");

  SkyFrame = rm.CreateFrame(RMCanvas1.SceneFrame);
  SkyMesh = load("table.dax");
  SkyMesh->ScaleMesh(SkyScale, SkyScale, SkyScale);
  if (program.StadiumOn) SkyFrame->AddVisual(SkyMesh);
  Place(SkyFrame, RMCanvas1.SceneFrame, SkyPlace);

  TableFrame = rm.CreateFrame(RMCanvas1.SceneFrame);
  TableMesh = load("table.dax");
  TableMesh->ScaleMesh(TableScale, TableScale, TableScale);
  ExtraMesh->ScaleMesh(BonusScale, BonusScale, BonusScale);
  BonusMesh->ScaleMesh(BonusScale, BonusScale, BonusScale);
  Wrap->Apply(TableMesh);
  Wrap->Apply(BonusMesh);
  TableMesh->SetTexture(GrassTexture);
  SkyMesh->SetTexture(SkyTexture);
  BonusMesh->SetTexture(GrassTexture);
  TableFrame->AddVisual(TableMesh);
  TableFrame->AddVisual(ExtraMesh);
  TableFrame->AddVisual(BonusMesh);
  ExtraMesh->Translate(0, ExtraLift, Places::CircleZ);
  BonusMesh->Translate(0, BonusLift, Places::CircleZ);
  Place(TableFrame, RMCanvas1.SceneFrame, TablePlace);
  TableMesh->SetName("Table");
  BonusMesh->SetName("TableBon");
  ExtraMesh->SetName("TableBon");

  ArrowFrame = rm.CreateFrame(AimFrame);
  ArrowMesh = load("dir.dax");
  ArrowMesh->ScaleMesh(ArrowScale, ArrowScale, ArrowScale);
  ArrowFrame->AddVisual(ArrowMesh);
  ArrowFrame->SetPosition(RMCanvas1.SceneFrame, 0, 0, 0);
  ArrowMesh->SetColorRGB(1, 1, 0);
  ArrowMesh->Translate(0, 0, ArrowOffset);

  YellowMaterial = rm.CreateMaterial(1.0f);
  WhiteMaterial = rm.CreateMaterial(2.0f);

  GoalFrame = rm.CreateFrame(RMCanvas1.SceneFrame);
  GoalMesh = load("goal.dax");
  GoalMesh->SetColorRGB(1, 1, 0);
  GoalMesh->ScaleMesh(GoalScale, GoalScale, GoalScale);
  Place(GoalFrame, RMCanvas1.SceneFrame, Places::Goal);

  YellowMaterial->SetEmissive(1, 1, 0);
  WhiteMaterial->SetAmbient(1, 1, 1);
  WhiteMaterial->SetEmissive(1, 1, 1);
  WhiteMaterial->SetPower(0.05f);
  WhiteMaterial->SetSpecular(0.2f, 0.2f, 0.2f);
  PieceMesh->SetMaterial(WhiteMaterial);
  ArrowMesh->SetMaterial(YellowMaterial);
  GoalMesh->SetMaterial(YellowMaterial);
  ExtraMesh->SetMaterial(YellowMaterial);
  GoalFrame->AddVisual(GoalMesh);

  CameraFrame = RMCanvas1.CameraFrame;

  CornerA = rm.CreateFrame(PieceFrame);
  CornerB = rm.CreateFrame(PieceFrame);
  CornerC = rm.CreateFrame(PieceFrame);
  Place(CornerA, PieceFrame, CornerAPlace);
  Place(CornerB, PieceFrame, CornerBPlace);
  Place(CornerC, PieceFrame, CornerCPlace);

  Wrap = topDown(TableFrame, SkyRepeat);
  Wrap->Apply(SkyMesh);
  SkyMesh->SetMaterial(WhiteMaterial);

  StadiumFrame = rm.CreateFrame(RMCanvas1.SceneFrame);
  StadiumMesh = load("stadium4.dax");
  LinesMesh = load("lines.dax");
  LinesMesh->SetName("TableLines");
  if (program.StadiumOn) {
    StadiumFrame->AddVisual(StadiumMesh);
    StadiumFrame->AddVisual(LinesMesh);
  }
  StadiumMesh->ScaleMesh(StadiumScale.x, StadiumScale.y, StadiumScale.z);
  LinesMesh->ScaleMesh(LinesScale, LinesScale, LinesScale);
  LinesMesh->Translate(LinesOffset.x, LinesOffset.y, LinesOffset.z);
  StadiumTexture = rm.LoadTexture(directory / "crowd2.dab");
  Wrap = topDown(TableFrame, CrowdRepeat);
  Wrap->Apply(StadiumMesh);
  StadiumMesh->SetTexture(StadiumTexture);
  Place(StadiumFrame, RMCanvas1.SceneFrame, StadiumPlace);
  LinesMesh->SetMaterial(YellowMaterial);

  Place(PieceFrame, RMCanvas1.SceneFrame, Places::Start);
  Place(AimFrame, RMCanvas1.SceneFrame, Places::Start);
  Place(ArrowFrame, RMCanvas1.SceneFrame, Places::Start);
  Place(CameraFrame, RMCanvas1.SceneFrame, Places::Camera);
  CameraFrame->LookAt(PieceFrame, RMCanvas1.SceneFrame, D3DRMCONSTRAIN_Z);
}

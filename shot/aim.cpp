// From the mouse to a shot. Every frame moves the pointer back to a home point, so that the mouse only yields
// offsets: they turn the aim or move the camera. The left button charges the meter, and its release shoots.

#include "match/arithmetic.h"
#include "match/frm_snapwedge.h"
#include "match/shot_power.h"

namespace {

constexpr std::int32_t HomePoint = 30000; ///< on the absolute pointer grid of 0 to 65535, both axes
constexpr std::int32_t AllFlags = -1;

constexpr float AimDivisor = 300.0f;   ///< pixels per radian
constexpr float CameraDivisor = 10.0f; ///< pixels per scene unit, zoom and orbit

// Limits of the camera when moved by the mouse, scene units.
constexpr float CameraReach = 130.0f; ///< in x and z, both directions
constexpr float CameraLow = 5.0f;
constexpr float CameraHigh = 30.0f;

constexpr std::int16_t LeftButton = 1;
constexpr std::int16_t RightButton = 2;

std::int16_t Without(std::int16_t buttons, std::int16_t button) {
  return static_cast<std::int16_t>(buttons & ~button);
}

} // namespace

void frmSnapwedge::InitMouse() {
  SetMouse();
  machine.GetCursorPos(CursorX, CursorY);
  MouseHomeX = static_cast<std::int16_t>(CursorX);
  MouseHomeY = static_cast<std::int16_t>(CursorY);
}

void frmSnapwedge::SetMouse() { machine.mouse_event(AllFlags, HomePoint, HomePoint, 1, 1); }

void frmSnapwedge::CheckMouse() {
  const auto &scene = RMCanvas1.SceneFrame;
  machine.GetCursorPos(CursorX, CursorY);
  const auto OffsetX = static_cast<float>(MouseHomeX - CursorX);
  const auto OffsetY = static_cast<float>(MouseHomeY - CursorY);

  if (MouseMode == 1) {
    Force = Sum(Force, MeterRise);
    if (Force > MeterLimit) {
      if (KickMode) {
        PrematureKick();
      } else {
        PrematureFlick();
      }
      return;
    }
    ProgressBar1.Value = Force;
  }

  // A camera step that fails must not stop the match, so it is skipped.
  const auto attempt = [](const auto &step) {
    try {
      step();
    } catch (const SceneError &) {
    }
  };
  const auto step = [&](float x, float y, float z) {
    attempt([&] { CameraFrame->SetPosition(CameraFrame, x, y, z); });
  };
  if (ShiftDown) {
    step(0, 0, Quotient(OffsetY, CameraDivisor));
  } else if (MouseMode == 0) {
    attempt([&] { AimFrame->AddRotation(D3DRMCOMBINE_BEFORE, 0, 1, 0, Quotient(OffsetX, AimDivisor)); });
  } else if (MouseMode == 2) {
    step(Quotient(OffsetX, CameraDivisor), 0, 0);
    step(0, Quotient(OffsetY, CameraDivisor), 0);
  }

  attempt([&] {
    Vector camera;
    CameraFrame->GetPosition(scene, camera);
    CamX = camera.x;
    CamY = camera.y;
    CamZ = camera.z;
  });
  const auto place = [&](float x, float y, float z) {
    attempt([&] { CameraFrame->SetPosition(scene, x, y, z); });
  };
  if (CamZ > CameraReach) place(CamX, CamY, CameraReach);
  if (CamZ < -CameraReach) place(CamX, CamY, -CameraReach);
  if (CamX > CameraReach) place(CameraReach, CamY, CamZ);
  if (CamX < -CameraReach) place(-CameraReach, CamY, CamZ);
  if (CamY < CameraLow) place(CamX, CameraLow, CamZ);
  if (CamY > CameraHigh) place(CamX, CameraHigh, CamZ);
  attempt([&] { LookCam(); });
}

void frmSnapwedge::GetFmain() {
  Vector place, direction, up;
  AimFrame->GetPosition(RMCanvas1.SceneFrame, place);
  AimFrame->GetOrientation(RMCanvas1.SceneFrame, direction, up);
  KickFrameX = place.x;
  KickFrameY = place.y;
  KickFrameZ = place.z;
  KickX1 = direction.x;
  KickY1 = direction.y;
  KickZ1 = direction.z;
  KickX2 = up.x;
  KickY2 = up.y;
  KickZ2 = up.z;
}

void frmSnapwedge::ReadAim() {
  Vector direction, up;
  AimFrame->GetOrientation(RMCanvas1.SceneFrame, direction, up);
  X1 = direction.x;
  Y1 = direction.y;
  Z1 = direction.z;
  X2 = up.x;
  Y2 = up.y;
  Z2 = up.z;
}

void frmSnapwedge::ReadShotPlace() {
  Vector place;
  AimFrame->GetPosition(RMCanvas1.SceneFrame, place);
  FrameX = place.x;
  FrameY = place.y;
  FrameZ = place.z;
}

Flag frmSnapwedge::MouseGate() {
  const bool open =
      !AnyPictures() && !Busy && (program.GameMode == "Human" || program.MyTurn) && !NoShot && !LastWait;
  return open ? True : False;
}

void frmSnapwedge::RMCanvas1_MouseDown(std::int16_t Button, std::int16_t /*Shift*/, float /*X*/,
                                       float /*Y*/) {
  IgnoredButtons = Without(IgnoredButtons, Button); // the release of this press counts
  if (Writing) {                                    // this press goes from the message back to the game
    HintWritten();
    IgnoredButtons = static_cast<std::int16_t>(IgnoredButtons | Button);
    return;
  }
  if (!MouseGate()) return;
  if (Button == LeftButton) {
    ShotPending = True;
    MouseMode = 1;
    ProgressBar1.CapLit = false;
  }
  if (Button == RightButton) MouseMode = 2;
}

void frmSnapwedge::RMCanvas1_MouseUp(std::int16_t Button, std::int16_t /*Shift*/, float /*X*/, float /*Y*/) {
  const bool ignored = (IgnoredButtons & Button) != 0;
  IgnoredButtons = Without(IgnoredButtons, Button);
  if (ignored || !MouseGate()) return;
  MouseMode = 0;
  if (Button != LeftButton) return;
  ReadAim();
  if (Force > 0.0f) ProgressBar1.Ghost = Force;
  if (!KickMode) {
    ReadShotPlace();
    if (program.GameMode == "INET") SendFlick(FrameX, FrameY, FrameZ, Force, X1, Y1, Z1, X2, Y2, Z2, Player);
    Flick(FrameX, FrameY, FrameZ, Force, X1, Y1, Z1, X2, Y2, Z2, Player);
    return;
  }
  if (Force == 0.0f) {
    // A click shorter than a frame has no force, and a kick without force would never come down.
    ResetMeter();
    HintNoKick();
    return;
  }
  if (program.GameMode == "INET") SendFG(FrameX, FrameY, FrameZ, Force, X1, Y1, Z1, X2, Y2, Z2, Player);
  GetFmain();
  KickFB(KickFrameX, KickFrameY, KickFrameZ, Force, KickX1, KickY1, KickZ1, KickX2, KickY2, KickZ2);
}

void frmSnapwedge::ResetMeter() {
  ShotPending = False;
  Force = 0;
  ProgressBar1.Value = 0;
}

void frmSnapwedge::ReleaseButtons() {
  IgnoredButtons = LeftButton | RightButton;
  if (NoShot) return; // a running shot continues
  MouseMode = 0;
  if (ShotPending) ResetMeter();
}

void frmSnapwedge::LetGo() {
  ShiftDown = False;
  ReleaseButtons();
}

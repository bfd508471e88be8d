#include "tools/played_windows.h"

#include "match/frm_snapwedge.h"
#include "match/results.h"
#include "platform/headless/headless_machine.h"
#include "tools/built_game.h"

#include <functional>

namespace {

using Images = std::vector<std::pair<std::string, QImage>>;

/// A match on the headless machine, whose window is shown on the desktop machine for each screenshot.
class Match {
public:
  Match(DesktopMachine &screen, Images &images, const std::filesystem::path &game, const std::string &mode)
      : screen_(screen), images_(images), machine_(game), program_(machine_), window(machine_, program_) {
    program_.GameMode = mode;
    program_.SoundOn = False;
    window.SetUp();
    window.Round = 1;
    window.PostScore();
    machine_.OnRepaint = [this] {
      if (!onCard_.empty()) Take(std::exchange(onCard_, {}));
    };
    machine_.OnDraw = [this](Canvas &) {
      if (onDraw_ > 0 && --onDraw_ == 0) Take(drawn_);
    };
    machine_.Player = [this] {
      if (atPump_) atPump_();
    };
  }

  void Frames(int count) {
    for (int i = 0; i < count; ++i) window.Frame(program_.MyTurn ? "A" : mode() == "Computer" ? "B" : "D");
  }

  /// Holds the left button for a number of frames and releases it; runs the shot to its end.
  void Shoot(int frames) {
    machine_.PressMouse(1);
    Frames(frames);
    machine_.ReleaseMouse(1);
    Frames(1);
  }

  /// Takes a screenshot at that frame of the flight or kick.
  void TakeAtDraw(int number, const std::string &name) {
    onDraw_ = number;
    drawn_ = name;
  }

  void TakeAtCard(const std::string &name) { onCard_ = name; }

  /// Plays the next point-after: waits, moves the mouse by some pixels, holds the button for some frames.
  void KickWith(int pixels, int frames, const std::string &name) {
    atPump_ = [this, pixels, frames, name, pumps = 0]() mutable {
      constexpr int Look = 40; // pumps, two per frame
      if (!window.KickMode || window.NoShot) return;
      ++pumps;
      if (pumps == Look) Take(name);
      if (pumps == Look + 2) machine_.MoveMouse(pixels, 0);
      if (pumps == Look + 6) machine_.PressMouse(1);
      if (pumps == Look + 6 + 2 * frames) {
        TakeAtDraw(40, name + ", kick");
        TakeAtCard(name + ", card");
        machine_.ReleaseMouse(1);
      }
    };
  }

  void PutPiece(float x, float z, std::int16_t shots, float turn = 0.0f) {
    for (const auto &frame : {window.PieceFrame, window.AimFrame})
      frame->SetPosition(window.RMCanvas1.SceneFrame, x, 0, z);
    window.AimFrame->AddRotation(D3DRMCOMBINE_BEFORE, 0, 1, 0, turn);
    window.CameraFrame->SetPosition(window.RMCanvas1.SceneFrame, x, 10, z + 35);
    window.Shots = shots;
    window.TurnColor();
    Frames(1);
  }

  /// Shows the window in its current state on the desktop machine.
  void Take(const std::string &name) {
    window.Visible = false;
    screen_.Show(window);
    images_.emplace_back(name, ShownWindow(window.Name)->grab().toImage());
    screen_.Hide(window);
    window.Visible = true;
  }

  /// The view of the waiting computer in a network game.
  void Wait() {
    program_.GameMode = "INET";
    window.Reset();
    window.VersionSlip.Visible = window.MessageKey.Visible = window.Text1.Enabled = window.Text2.Enabled =
        true;
    window.Label5.Caption = "OV:SW:1";
    window.Text1.Text = "Bet you can't do that twice!";
  }

private:
  const std::string &mode() const { return program_.GameMode; }

  DesktopMachine &screen_;
  Images &images_;
  HeadlessMachine machine_;
  Program program_;
  int onDraw_ = 0;
  std::string drawn_, onCard_;
  std::function<void()> atPump_;

public:
  frmSnapwedge window;
};

} // namespace

Images PlayWindows(DesktopMachine &screen, const std::filesystem::path &game) {
  Images images;
  {
    Match match(screen, images, game, "Human");
    match.Frames(2);
    match.Take("start");
    match.TakeAtDraw(30, "flight");
    match.Shoot(12);
    match.Take("second try");
    match.Shoot(3);
    match.Take("third try");
    match.TakeAtCard("Touchdown");
    match.KickWith(-30, 10, "point-after");
    match.Shoot(2);
    match.Take("the other side's turn, a point counted");
    match.TakeAtDraw(30, "overcharge");
    match.TakeAtCard("overcharge, card");
    match.Shoot(13);
  }
  {
    Match match(screen, images, game, "Human");
    match.PutPiece(0, -60.5f, 3);
    match.TakeAtCard("penalty");
    match.Shoot(5);
    match.PutPiece(60, 0, 2, -1.2f);
    match.TakeAtCard("off the side");
    match.Shoot(8);
    match.PutPiece(0, -40, 1);
    match.TakeAtCard("short");
    match.Shoot(5);
    match.Shoot(0);
    match.Take("no power");
    match.PutPiece(-3, -62, 3);
    match.TakeAtCard("bonus");
    match.Shoot(4);
  }
  {
    Match match(screen, images, game, "Computer");
    match.PutPiece(0, -40, 1);
    match.Shoot(5);
    match.TakeAtDraw(30, "the computer");
    match.Frames(1);
  }
  Match match(screen, images, game, "Human");
  match.Wait();
  match.Take("waiting for the other player");
  return images;
}

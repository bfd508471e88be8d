#pragma once

// A play window on the headless machine, for tests. A test runs the frames itself and acts as the player
// between them.

#include "match/frm_snapwedge.h"
#include "platform/headless/headless_machine.h"
#include "tools/fnv_hash.h"

#include <string>
#include <utility>
#include <vector>

class Game {
public:
  explicit Game(const std::string &mode = "Human", std::int16_t rounds = 1)
      : machine(SNAPWEDGE_GAME_DIR), program(machine), window(machine, program) {
    program.GameMode = mode;
    program.Rounds = rounds;
    program.DX = machine.CreateDirectX();
    program.DS = program.DX->DirectSoundCreate("");
    for (const SoundFile &sound : SoundFiles)
      program.*sound.Buffer = program.DS->CreateSoundBufferFromFile(sound.Name, {}, {});
    // A card is repainted when shown, and may be gone by the next pump.
    machine.OnRepaint = [this] {
      for (std::int16_t code = 1; code <= 7; ++code) {
        if (window.Card(code).Visible) Cards.push_back(code);
      }
    };
    machine.Player = [this] {
      if (OnPump && !window.AnyPictures()) OnPump();
    };
  }

  /// Runs the match up to the first frame of the first possession.
  void SetUp() {
    window.SetUp();
    window.Round = 1;
    window.PostScore();
  }

  /// The letter of the current turn loop.
  std::string Letter() const {
    if (program.MyTurn) return "A";
    return program.GameMode == "Computer" ? "B" : program.GameMode == "Human" ? "D" : "C";
  }

  void Frames(int count = 1) {
    for (int i = 0; i < count; ++i) window.Frame(Letter());
  }

  /// Presses the left button for a number of frames, releases it, and plays the shot to its end.
  void Shoot(int frames) {
    machine.PressMouse(1);
    Frames(1);
    if (frames == 0) {
      machine.ReleaseMouse(1);
      machine.Pump();
      return;
    }
    Frames(frames - 1);
    machine.ReleaseMouse(1);
    Frames(1);
  }

  /// Shoots with any force, which a player at the mouse can't.
  void Flick(float force, float turn = 0.0f) {
    window.AimFrame->AddRotation(D3DRMCOMBINE_BEFORE, 0, 1, 0, turn);
    window.ShotPending = True;
    window.Force = force;
    window.RMCanvas1_MouseUp(1, 0, 0.0f, 0.0f);
  }

  /// Puts the piece and its aim at a position, with a number of attempts left.
  void PutPiece(float x, float z, std::int16_t shots, float pieceTurn = 0.0f) {
    const auto &scene = window.RMCanvas1.SceneFrame;
    for (const auto &frame : {window.PieceFrame, window.AimFrame}) {
      frame->SetOrientation(scene, 0, 0, 1, 0, 1, 0);
      frame->SetPosition(scene, x, 0, z);
    }
    window.PieceFrame->AddRotation(D3DRMCOMBINE_BEFORE, 0, 1, 0, pieceTurn);
    window.Shots = shots;
  }

  /// Plays a Touchdown with the weakest flick, and on to the end of its kick.
  void ScoreTouchdown(float turn = 0.0f) {
    PutPiece(0, -86.5f, 1);
    window.AimFrame->AddRotation(D3DRMCOMBINE_BEFORE, 0, 1, 0, turn);
    Shoot(1);
  }

  Vector Place(const Ref<Direct3DRMFrame3> &frame) const {
    Vector place;
    frame->GetPosition(window.RMCanvas1.SceneFrame, place);
    return place;
  }

  /// The sounds since the last call.
  std::string SoundsSince() {
    std::string all;
    for (const std::string &sound : std::exchange(machine.Sounds, {}))
      all += (all.empty() ? "" : ", ") + sound;
    return all;
  }

  std::vector<std::int16_t> Cards; ///< cards shown so far
  std::function<void()> OnPump;    ///< called at each pump without a card

  HeadlessMachine machine;
  Program program;
  frmSnapwedge window;
};

/// A 64-bit FNV-1a hash of a sequence of floats, by their bits.
class PathHash {
public:
  void Add(float value) { AddToHash(hash_, value); }
  void Add(const Vector &v) {
    Add(v.x);
    Add(v.y);
    Add(v.z);
  }
  std::uint64_t Value() const { return hash_; }

private:
  std::uint64_t hash_ = FnvStart;
};

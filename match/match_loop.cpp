// The match: set-up, rounds with one possession for each side, idle frames, waits, and the end.

#include "match/frm_snapwedge.h"
#include "platform/network_times.h"

#include <string>

namespace {

constexpr std::int16_t ShotStepMs = 20;
constexpr std::int16_t IdleFrameMs = 25;
constexpr float LossPerStep = 0.6f; ///< of `Force`
constexpr float GoalStep = 1.0f;    ///< of the posts, scene units
constexpr float FarPlane = 5000.0f; ///< scene units from the camera
constexpr std::int32_t CardMs = 3000;
constexpr std::int32_t PauseMs = 1000; ///< after a result without a card, and on the waiting computer

} // namespace

void frmSnapwedge::Load() {
  SetUp();
  PlayRounds();
  EndMatch();
}

void frmSnapwedge::SetUp() {
  program.Stop(program.SndCrowd2);
  program.Stop(program.SndCrowd);
  program.Stop(program.SndYeah2);
  program.Stop(program.SndTheme);
  program.PlayOnce(program.SndWis2);
  program.PlayOnce(program.SndGuit2);
  Label1.Caption = "Round: 1 of " + std::to_string(program.Rounds);
  GoalSpeed = GoalStep;
  Shots = AttemptsInPossession;
  program.FlickMs = ShotStepMs;
  program.FrameMs = IdleFrameMs;
  ForceDecay = LossPerStep;
  RMCanvas1.Start();
  RMCanvas1.Viewport->SetBack(FarPlane);
  LoadScene();
  RMCanvas1.Update();
  InitMouse();
  Round = 0;
  Reset();
  if (program.GameMode == "INET") {
    VersionSlip.Visible = MessageKey.Visible = true;
    Text1.Enabled = true;
    Text2.Enabled = true;
    LineWatch = machine.OnPump([this] { ShowLine(); });
  }
  machine.ShowCursor(0);
  program.PlayLoop(program.SndCrowd);
  program.PlayLoop(program.SndCrowd2);
  if (program.GameMode == "INET") SendVersion();
}

void frmSnapwedge::PlayRounds() {
  const bool network = program.GameMode == "INET";
  while (Round < program.Rounds) {
    if (!network) Round = static_cast<std::int16_t>(Round + 1);
    ShowRound();
    if (network) SyncScore();
    if (program.IsHost) Round = static_cast<std::int16_t>(Round + 1);
    PostScore();
    while (program.MyTurn) Frame("A");
    if (network) SyncScore();
    if (program.GameMode == "Computer") {
      while (Player == 2) Frame("B");
    }
    if (network) {
      Busy = True;
      if (!program.IsHost) Round = static_cast<std::int16_t>(Round + 1);
      PostScore();
      if (program.IsHost && Round >= program.Rounds) LastWait = True;
      while (!program.MyTurn) Frame("C");
    }
    if (program.GameMode == "Human") {
      while (Player == 2) Frame("D");
    }
  }
  // The joiner counts a round when the host's possession begins, so its own last possession is still to come.
  if (network && !program.IsHost) {
    while (program.MyTurn) Frame("A");
    SendOver();
  }
  // The result of the other side's last possession may still be in transit.
  if (network) {
    HintOver();
    AwaitOver();
  }
}

void frmSnapwedge::EndMatch() {
  program.PlayOnce(program.SndWis3);
  NoShot = True;
  EndLineWatch();
  HintWritten();
  HintOver();
  CloseBoards();
  machine.ShowCursor(-1);
  program.PlayOnce(program.SndGuit2);
  program.PlayLoop(program.SndTheme);
  if (HomeScore > AwayScore) {
    program.PlayOnce(program.SndYeah2);
    ShowHome();
  } else if (AwayScore > HomeScore) {
    program.PlayOnce(program.SndBoo);
    ShowAway();
  } else {
    program.PlayOnce(program.SndYeah);
    ShowTie();
  }
  if (program.GameMode == "INET") {
    // The other computer may still be waiting for our last messages, over a line that is down. The windows
    // close meanwhile: for the player the program has ended.
    program.StopSounds();
    machine.Hide(*this);
    if (program.LaunchWindow) machine.Hide(*program.LaunchWindow);
    const std::int32_t end = machine.ClockIn(FinalDeliveryMs);
    while (!program.DP->Delivered() && !machine.ClockReached(end))
      machine.WaitUntil(machine.ClockIn(NetworkPollMs));
  }
  throw ProgramEnd{};
}

void frmSnapwedge::Frame(const std::string &WMOD) {
  WhatPlayer(WMOD);
  if (WMOD == "A" && program.GameMode == "INET") CheckMessages();
  BeginStep(program.FrameMs);
  Wind();
  if (WMOD == "A" || WMOD == "D") {
    CheckMouse();
    SetMouse();
  } else if (WMOD == "B") {
    CompShot1();
  } else {
    SideCam();
    LookCam();
    CheckMessages();
  }
  machine.Pump();
  machine.Show(*this);
  if (!ShotPending) RMCanvas1.Update();
  WaitForStepEnd();
}

void frmSnapwedge::WhatPlayer(const std::string & /*WMOD*/) {}

void frmSnapwedge::BeginStep(std::int32_t milliseconds) {
  FrameStart = machine.timeGetTime();
  FrameEnd = ClockAfter(FrameStart, milliseconds);
  StepBoards();
}

void frmSnapwedge::WaitForStepEnd() {
  while (!machine.ClockReached(FrameEnd)) machine.WaitUntil(FrameEnd);
}

void frmSnapwedge::MyDelay() {
  Busy = True;
  BeginStep(CardMs);
  WaitForStepEnd();
  Busy = False;
}

void frmSnapwedge::MyDelayNoCard() {
  Busy = True;
  BeginStep(PauseMs);
  WaitForStepEnd();
  Busy = False;
}

void frmSnapwedge::MyDelay2() {
  Busy = True;
  BeginStep(PauseMs);
  while (!machine.ClockReached(FrameEnd)) {
    CheckMessages();
    machine.WaitUntil(machine.ClockIn(NetworkPollMs));
  }
  Busy = False;
}

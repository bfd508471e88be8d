#include "tools/netsim/scripted_player.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr float TouchdownPlan[] = {96, 24, 16};
constexpr std::uint64_t HashStart = 0xCBF29CE484222325ULL;
constexpr std::uint64_t HashPrime = 0x100000001B3ULL;
constexpr int ThinkMs = 120; ///< shortest pause between two acts

void AddToHash(std::uint64_t &hash, float value) {
  unsigned char bytes[sizeof value];
  std::memcpy(bytes, &value, sizeof value);
  for (const unsigned char byte : bytes) hash = (hash ^ byte) * HashPrime;
}

} // namespace

void ScriptedPlayer::Look() {
  if (machine_.Shown.empty()) return;
  if (!machine_.Boxes.empty() && machine_.Boxes.back().Title == "Game Over:") seen_.LeftBy = "Game Over:";
  Window &top = *machine_.Shown.back();
  if (top.Name == "frmHome" || top.Name == "frmAway" || top.Name == "frmTie") {
    if (seen_.EndCard.empty()) actAt_ = machine_.ClockIn(Between(300, 4000));
    seen_.EndCard = top.Name;
    if (auto *table = dynamic_cast<frmSnapwedge *>(machine_.FindWindow("frmSnapwedge"))) {
      seen_.Rounds = table->Round;
      seen_.Home = table->HomeScore;
      seen_.Away = table->AwayScore;
      seen_.Shots = static_cast<int>(std::ranges::count(machine_.Sounds, "play swoosh.daw"));
    }
    if (machine_.ClockReached(actAt_)) machine_.ClickOn(top);
    return;
  }
  const bool holds = holding_; // a hand on the button watches the meter all the time
  if (!holds && !machine_.ClockReached(actAt_)) return;
  if (!holds) actAt_ = machine_.ClockIn(Between(ThinkMs, 6 * ThinkMs));
  if (auto *table = dynamic_cast<frmSnapwedge *>(&top)) {
    Play(*table);
  } else if (auto *lobby = dynamic_cast<frmNewNet *>(&top)) {
    UseLobby(*lobby);
  } else {
    // The dialog that asks for an address: left blank, or the host's name.
    for (Control *control : top.Controls) {
      if (auto *box = dynamic_cast<TextBox *>(control)) box->Text = host_ || Between(0, 1) ? "" : "10.0.0.1";
    }
    for (Control *control : top.Controls) {
      auto *button = dynamic_cast<CommandButton *>(control);
      if (button && button->Default) machine_.Press(*button);
    }
  }
}

void ScriptedPlayer::UseLobby(frmNewNet &lobby) {
  lobby.Text1.Text = std::to_string(rounds_);
  if (lobby.cmdConnect.Enabled) {
    machine_.Press(lobby.cmdConnect);
  } else if (host_ && lobby.cmdCreate.Enabled) {
    machine_.Press(lobby.cmdCreate);
  } else if (!host_ && lobby.cmdJoin.Enabled) {
    if (lobby.lstSessions.List.empty()) {
      machine_.Press(lobby.Command4);
    } else {
      machine_.Select(lobby.lstSessions, 0);
      machine_.Press(lobby.cmdJoin);
    }
  }
}

void ScriptedPlayer::Play(frmSnapwedge &table) {
  if (holding_) {
    // The meter may have passed its end meanwhile, and the shot be gone.
    if (table.MouseMode == 1 && table.ProgressBar1.Value < release_) return;
    holding_ = false;
    machine_.ReleaseMouse(1);
    return;
  }
  switch (Between(0, 19)) {
  case 0:
    machine_.PressKey(KeyCodes::S);
    return;
  case 1:
    machine_.PressKey(KeyCodes::Shift);
    machine_.ReleaseKey(KeyCodes::Shift);
    return;
  case 2:
    machine_.PressKey(KeyCodes::Tilde);
    return;
  default:
    break;
  }
  if (machine_.Focus == &table.Text2) {
    machine_.Type(Between(0, 3) ? "well played\r" : "\r");
    return;
  }
  if (!table.MouseGate()) return;
  if (table.Shots == 3 && !table.KickMode) {
    attempt_ = 0;
    planned_ = Between(0, 2) > 0;
  }
  if (table.KickMode) {
    release_ = static_cast<float>(8 * Between(0, 13));
    machine_.MoveMouse(Between(-40, 40), 0);
  } else if (planned_) {
    release_ = TouchdownPlan[std::min(attempt_, 2)];
  } else {
    release_ = static_cast<float>(8 * Between(0, 13));
    machine_.MoveMouse(Between(-30, 30), Between(-20, 20));
  }
  if (!table.KickMode) ++attempt_;
  machine_.PressMouse(1);
  if (release_ == 0.0f) {
    machine_.ReleaseMouse(1); // a click shorter than a frame
  } else {
    holding_ = true;
  }
}

void ScriptedPlayer::SeePicture() {
  auto *table = dynamic_cast<frmSnapwedge *>(machine_.FindWindow("frmSnapwedge"));
  if (!table) return;
  const bool flies = table->NoShot && !table->KickMode;
  if (flies) {
    Vector place;
    table->PieceFrame->GetPosition(table->RMCanvas1.SceneFrame, place);
    // The S key draws pictures of its own, in which the piece hasn't moved.
    if (!wasFlying_ || !(place == lastPlace_)) {
      if (seen_.PathHash == 0) seen_.PathHash = HashStart;
      for (const float part : {place.x, place.y, place.z}) AddToHash(seen_.PathHash, part);
    }
    lastPlace_ = place;
  }
  wasFlying_ = flies;
}

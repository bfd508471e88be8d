#include "tools/netsim/scripted_player.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr float TouchdownPlan[] = {96, 24, 16};
constexpr std::uint64_t HashStart = 0xCBF29CE484222325ULL;
constexpr std::uint64_t HashPrime = 0x100000001B3ULL;
constexpr float KickFrom = 80.0f; ///< place of the posts, scene units
constexpr int ThinkMs = 120;      ///< shortest pause between two acts

void AddToHash(std::uint64_t &hash, float value) {
  unsigned char bytes[sizeof value];
  std::memcpy(bytes, &value, sizeof value);
  for (const unsigned char byte : bytes) hash = (hash ^ byte) * HashPrime;
}

} // namespace

void ScriptedPlayer::Look() {
  if (machine_.Shown.empty()) return;
  Listen();
  if (!machine_.Boxes.empty() && machine_.Boxes.back().Title == "Game Over:")
    seen_.Box = machine_.Boxes.back().Text;
  Window &top = *machine_.Shown.back();
  if (top.Name == "frmHome" || top.Name == "frmAway" || top.Name == "frmTie") {
    if (seen_.EndCard.empty()) actAt_ = machine_.ClockIn(Between(300, 4000));
    seen_.EndCard = top.Name;
    if (auto *table = dynamic_cast<frmSnapwedge *>(machine_.FindWindow("frmSnapwedge"))) {
      seen_.Rounds = table->Round;
      seen_.Home = table->HomeScore;
      seen_.Away = table->AwayScore;
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
  if (quitAt_ && machine_.ClockReached(*quitAt_) && machine_.Focus == &table.RMCanvas1) {
    seen_.Quit = true;
    const bool inFlight = table.NoShot && !table.KickMode;
    if (inFlight && !seen_.Flicks.empty()) seen_.Flicks.pop_back(); // seen to its end over there alone
    machine_.PressKey(KeyCodes::Escape);
    return;
  }
  if (Fidget(table)) return;
  if (machine_.Focus == &table.Text2) {
    machine_.Type(Between(0, 3) ? "well played\r" : "\r");
    return;
  }
  if (!table.MouseGate()) return;
  if (!aimed_) {
    aimed_ = true;
    Aim(table);
    return;
  }
  if (table.KickMode && planned_) {
    // The posts are in the middle when the piece arrives, if they turned at +x when it left.
    Vector goal;
    table.GoalFrame->GetPosition(table.RMCanvas1.SceneFrame, goal);
    actAt_ = machine_.Now();
    if (table.GoalSpeed < 0.0f || goal.x < KickFrom) return;
    release_ = 88;
  } else if (planned_) {
    release_ = TouchdownPlan[std::min(attempt_, 2)];
  } else {
    release_ = static_cast<float>(8 * Between(0, 13));
  }
  if (!table.KickMode) ++attempt_;
  aimed_ = false;
  machine_.PressMouse(1);
  if (release_ == 0.0f) {
    machine_.ReleaseMouse(1); // a click shorter than a frame
  } else {
    holding_ = true;
  }
}

/// Does something now and then that is no part of a shot. Returns whether it has.
bool ScriptedPlayer::Fidget(frmSnapwedge &table) {
  switch (Between(0, 19)) {
  case 0:
    machine_.PressKey(KeyCodes::S);
    return true;
  case 1:
    machine_.PressKey(KeyCodes::Shift);
    machine_.ReleaseKey(KeyCodes::Shift);
    return true;
  case 2:
    machine_.PressKey(KeyCodes::Tilde);
    return true;
  case 3:
    if (!orbits_ && !table.MouseGate()) return false;
    orbits_ = !orbits_;
    if (orbits_) {
      machine_.PressMouse(2);
      machine_.MoveMouse(Between(-60, 60), Between(-30, 30));
    } else {
      machine_.ReleaseMouse(2);
    }
    return true;
  case 4:
    if (table.MouseGate()) return false;
    machine_.PressMouse(1); // out of turn, and maybe let go in turn
    holding_ = true;
    return true;
  default:
    return false;
  }
}

/// Moves the mouse, which turns the aim in the frames until the shot.
void ScriptedPlayer::Aim(const frmSnapwedge &table) {
  if (table.Shots == 3 && !table.KickMode) {
    attempt_ = 0;
    planned_ = Between(0, 2) > 0;
    if (planned_) machine_.MoveMouse(Between(-4, 8), 0); // a little to the right it touches the bonus area
  }
  if (table.KickMode) planned_ = Between(0, 2) > 0;
  if (planned_) return;
  const int reach = Between(0, 9) == 0 ? 500 : 40;
  machine_.MoveMouse(Between(-reach, reach), Between(-20, 20));
}

void ScriptedPlayer::Listen() {
  for (; heard_ < machine_.Sounds.size(); ++heard_) {
    if (machine_.Sounds[heard_] == "play swoosh.daw") seen_.Flicks.push_back(HashStart);
  }
}

void ScriptedPlayer::SeePicture() {
  auto *table = dynamic_cast<frmSnapwedge *>(machine_.FindWindow("frmSnapwedge"));
  if (!table) return;
  Listen();
  Vector place;
  table->PieceFrame->GetPosition(table->RMCanvas1.SceneFrame, place);
  if (table->KickMode) {
    if (!tee_) tee_ = place;
    const bool first = !kicked_ && place.y != tee_->y;
    if (first) seen_.Kicks.push_back(place.y);
    kicked_ = kicked_ || first;
    return;
  }
  tee_.reset();
  kicked_ = false;
  // The S key draws pictures of its own, in which the piece hasn't moved.
  if (!table->NoShot || seen_.Flicks.empty() || place == lastPlace_) return;
  for (const float part : {place.x, place.y, place.z}) AddToHash(seen_.Flicks.back(), part);
  lastPlace_ = place;
}

#include "tools/netsim/scripted_player.h"

#include "match/shot_power.h"
#include "tools/fnv_hash.h"

#include <algorithm>
#include <cstdlib>
#include <string>

namespace {

constexpr float TouchdownPlan[] = {96, 24, 16};
constexpr float KickFrom = 80.0f; ///< position of the posts, scene units
constexpr int ThinkMs = 120;      ///< minimum pause between two actions
constexpr int LongestHoldMs = 3000;
const std::string ChatBegins = "well played ";
const std::string LineIsBroken = "waiting for the other computer ...";

} // namespace

void ScriptedPlayer::Look() {
  releasing_ = false;
  if (machine_.Shown.empty()) return;
  Listen();
  if (!machine_.Boxes.empty() && machine_.Boxes.back().Title == "Game Over:")
    seen_.Box = machine_.Boxes.back().Text;
  if (const auto *table = dynamic_cast<frmSnapwedge *>(machine_.FindWindow("frmSnapwedge"))) Read(*table);
  Window &top = *machine_.Shown.back();
  if (top.Name == "frmHome" || top.Name == "frmAway" || top.Name == "frmTie") {
    if (seen_.EndCard.empty()) actAt_ = machine_.ClockIn(Between(300, 4000));
    seen_.EndCard = top.Name;
    if (machine_.ClockReached(actAt_)) machine_.ClickOn(top);
    return;
  }
  auto *table = dynamic_cast<frmSnapwedge *>(&top);
  if (table && hand_ != Hand::Open)
    return Hold(*table); // while holding the button, watch the meter at every pump
  if (!machine_.ClockReached(actAt_)) return;
  actAt_ = machine_.ClockIn(Between(ThinkMs, 6 * ThinkMs));
  if (table) {
    Play(*table);
  } else if (auto *lobby = dynamic_cast<frmNewNet *>(&top)) {
    UseLobby(*lobby);
  } else {
    // The search dialog: blank, or the address of the host.
    for (Control *control : top.Controls) {
      if (auto *box = dynamic_cast<TextBox *>(control)) box->Text = host_ || Between(0, 1) ? "" : "10.0.0.1";
    }
    for (Control *control : top.Controls) {
      auto *button = dynamic_cast<CommandButton *>(control);
      if (button && button->Default) machine_.Press(*button);
    }
  }
}

/// Reads the controls of the play window.
void ScriptedPlayer::Read(const frmSnapwedge &table) {
  atTable_ = true;
  seen_.Rounds = table.Round;
  seen_.Home = table.HomeScore;
  seen_.Away = table.AwayScore;
  seen_.Dropped = table.DroppedMessages;
  if (table.Caption.ends_with(LineIsBroken)) seen_.ToldOfBreak = true;
  const std::string &line = table.Text1.Text;
  if (!line.starts_with(ChatBegins)) return;
  const int number = std::atoi(line.c_str() + ChatBegins.size());
  if (number != seen_.LinesHeard && number != seen_.LinesHeard + 1) seen_.LineMissing = true;
  seen_.LinesHeard = number;
}

void ScriptedPlayer::UseLobby(frmNewNet &lobby) {
  if (goHome_) return machine_.CloseBox(lobby);
  lobby.Text1.Text = std::to_string(rounds_);
  if (lobby.cmdConnect.Enabled) {
    machine_.Press(lobby.cmdConnect);
  } else if (host_ && lobby.cmdCreate.Enabled) {
    machine_.Press(lobby.cmdCreate);
  } else if (!host_ && lobby.cmdJoin.Enabled) {
    const auto &rows = lobby.lstSessions.List;
    const auto row = std::ranges::find_if(rows, [&](const auto &each) { return each.starts_with(wanted_); });
    if (row == rows.end()) {
      machine_.Press(lobby.Command4);
    } else {
      machine_.Select(lobby.lstSessions, static_cast<int>(row - rows.begin()));
      machine_.Press(lobby.cmdJoin);
    }
  }
}

void ScriptedPlayer::Press() {
  hand_ = Hand::Pressing;
  releaseAt_.reset();
  leaveAt_.reset();
  machine_.PressMouse(1);
}

void ScriptedPlayer::Release() {
  releasing_ = true;
  machine_.ReleaseMouse(1);
}

/// Acts while the left button is down.
void ScriptedPlayer::Hold(frmSnapwedge &table) {
  if (releaseAt_ || hand_ == Hand::Stale) {
    if (!releaseAt_) releaseAt_ = machine_.ClockIn(Between(0, LongestHoldMs));
    if (!machine_.ClockReached(*releaseAt_)) return;
  } else if (table.MouseMode == 1) {
    if (leaveAt_ && table.ProgressBar1.Value >= *leaveAt_) {
      ++seen_.SwitchesWhileCharging;
      machine_.LoseFocus();
      hand_ = Between(0, 1) == 1 ? Hand::Stale : Hand::Open; // released here later, or in the other window
      return;
    }
    if (table.ProgressBar1.Value < release_) return;
  }
  // Either the level is reached, or the shot has fired by itself.
  Release();
  if (hand_ == Hand::Stale) releasing_ = false;
  hand_ = Hand::Open;
}

void ScriptedPlayer::SeeShotSent(float force) {
  ++seen_.ShotsSent;
  const bool overcharged = force == OverchargedFlick || force == OverchargedKick;
  if (!releasing_ && !(overcharged && hand_ == Hand::Pressing)) ++seen_.ShotsNotReleased;
}

/// Called when the window is repainted, which means that a card is up.
void ScriptedPlayer::SeeCard() {
  const auto *table = dynamic_cast<frmSnapwedge *>(machine_.FindWindow("frmSnapwedge"));
  if (!table || table->ResultSent || hand_ != Hand::Pressing) return;
  if (!releaseAt_) ++seen_.CardsWhileCharging;
  hand_ = Hand::Stale;
}

void ScriptedPlayer::Play(frmSnapwedge &table) {
  if (quitAt_ && machine_.ClockReached(*quitAt_) && machine_.Focus == &table.RMCanvas1) {
    seen_.Quit = true;
    const bool inFlight = table.NoShot && !table.KickMode;
    if (inFlight && !seen_.Flicks.empty()) seen_.Flicks.pop_back(); // only the other side sees its end
    machine_.PressKey(KeyCodes::Escape);
    return;
  }
  if (Fidget(table)) return;
  if (machine_.Focus == &table.Text2) {
    machine_.Type(Between(0, 3) ? ChatBegins + std::to_string(++seen_.LinesSaid) + "\r" : "\r");
    return;
  }
  if (!table.MouseGate()) return;
  if (!aimed_) {
    aimed_ = true;
    Aim(table);
    return;
  }
  if (table.KickMode && planned_) {
    // If the posts are just turning at +x, they are in the middle when the piece arrives.
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
  Press();
  if (release_ == 0.0f) {
    Release(); // a click shorter than a frame
    hand_ = Hand::Open;
  } else if (Between(0, 11) == 0) {
    leaveAt_ = static_cast<float>(8 * Between(1, 11));
  }
}

/// Sometimes does something unrelated to a shot. Returns whether it did.
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
      MoveMouse(60, 30);
    } else {
      machine_.ReleaseMouse(2);
    }
    return true;
  case 4:
    if (table.MouseGate()) return false;
    Press(); // not its turn; it may be by the time of the release
    releaseAt_ = machine_.ClockIn(Between(0, LongestHoldMs));
    return true;
  case 5:
    machine_.LoseFocus();
    return true;
  default:
    return false;
  }
}

/// Moves the mouse; the following frames turn the aim.
void ScriptedPlayer::Aim(const frmSnapwedge &table) {
  if (table.Shots == 3 && !table.KickMode) {
    attempt_ = 0;
    planned_ = Between(0, 2) > 0;
    if (planned_)
      machine_.MoveMouse(Between(-4, 8), 0); // slightly to the right the piece touches the bonus area
  }
  if (table.KickMode) planned_ = Between(0, 2) > 0;
  if (planned_) return;
  const int reach = Between(0, 9) == 0 ? 500 : 40;
  MoveMouse(reach, 20);
}

/// Moves the mouse by a random offset within these limits, in pixels.
void ScriptedPlayer::MoveMouse(int reachX, int reachY) {
  // Two statements, since the order of evaluation of arguments is unspecified.
  const int dx = Between(-reachX, reachX);
  const int dy = Between(-reachY, reachY);
  machine_.MoveMouse(dx, dy);
}

void ScriptedPlayer::Listen() {
  for (; heard_ < machine_.Sounds.size(); ++heard_) {
    if (machine_.Sounds[heard_] == "play swoosh.daw") seen_.Flicks.push_back(FnvStart);
  }
}

void ScriptedPlayer::SeeFrame() {
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
  // The S key causes extra frames, in which the piece hasn't moved.
  if (!table->NoShot || seen_.Flicks.empty() || place == lastPlace_) return;
  for (const float part : {place.x, place.y, place.z}) AddToHash(seen_.Flicks.back(), part);
  lastPlace_ = place;
}

#include "tools/replay/watcher.h"

#include "match/results.h"

void Watcher::Look(SeenShot &shot) const {
  const auto &scene = window_.RMCanvas1.SceneFrame;
  window_.PieceFrame->GetPosition(scene, shot.Place);
  Vector up;
  window_.AimFrame->GetOrientation(scene, shot.Direction, up);
  window_.CornerA->GetPosition(scene, shot.Corners[0]);
  window_.CornerB->GetPosition(scene, shot.Corners[1]);
  window_.CornerC->GetPosition(scene, shot.Corners[2]);
  Vector goal;
  window_.GoalFrame->GetPosition(scene, goal);
  shot.PostsX = goal.x;
}

void Watcher::Begin() {
  flick_ = {};
  kick_ = {};
  Look(flick_);
}

void Watcher::SeeFrame() {
  // The sky moves in every step of a flick and stands still in a fall. The rise changes in every step of a
  // kick and at no other time.
  if (window_.NoShot && !window_.KickMode && window_.SkyU != lastSkyU_) {
    ++flick_.Steps;
    Look(flick_);
  }
  if (window_.KickMode) {
    if (window_.NoShot && window_.KickRise != lastKickRise_) ++kick_.Steps;
    Look(kick_);
  }
  lastSkyU_ = window_.SkyU;
  lastKickRise_ = window_.KickRise;
}

void Watcher::SeeCards() {
  for (std::int16_t code = Results::First; code <= Results::Last; ++code) {
    const bool ofKick = code == Results::GoodKick || code == Results::MissedKick;
    if (window_.Card(code).Visible) (ofKick ? kick_ : flick_).Card = code;
  }
}

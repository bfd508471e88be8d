#pragma once

// Watches a match from outside, as somebody would who sees every picture: which flight runs, where its steps
// take the piece, which card comes up.

#include "match/frm_snapwedge.h"

/// What was seen of one shot.
struct SeenShot {
  int Steps = 0;         ///< steps of the flight
  Vector Place;          ///< of the piece when it ended, in the scene
  Vector Direction;      ///< of the aim
  Vector Corners[3];     ///< of the piece
  float PostsX = 0;      ///< the middle of the posts
  std::int16_t Card = 0; ///< card that came up, 0 for none
};

class Watcher {
public:
  explicit Watcher(frmSnapwedge &window) : window_(window) {}

  /// Forgets the last shot and looks at the piece where it lies.
  void Begin();

  void SeePicture(); ///< to be called with every picture
  void SeeCards();   ///< to be called at every pump: a card comes and goes without a picture of the scene

  const SeenShot &Flick() const { return flick_; }
  const SeenShot &Kick() const { return kick_; }

private:
  void Look(SeenShot &shot) const;

  frmSnapwedge &window_;
  SeenShot flick_;
  SeenShot kick_;
  float lastSkyU_ = 0;
  float lastKickRise_ = 0;
};

#pragma once

// Observes a match from outside, frame by frame: the kind of flight, the positions of the piece, the cards.

#include "match/frm_snapwedge.h"

/// Observations of one shot.
struct SeenShot {
  int Steps = 0;         ///< steps of the flight
  Vector Place;          ///< final position of the piece, in the scene
  Vector Direction;      ///< of the aim
  Vector Corners[3];     ///< of the piece
  float PostsX = 0;      ///< middle of the posts
  std::int16_t Card = 0; ///< the card shown, 0 for none
};

class Watcher {
public:
  explicit Watcher(frmSnapwedge &window) : window_(window) {}

  /// Resets the observations and records the position of the piece.
  void Begin();

  void SeeFrame(); ///< call at every frame
  void SeeCards(); ///< call at every pump: a card needs no frame of the scene

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

#pragma once

// The camera's lens: chooses the angle of view and where in the frame the piece lies, as a camera operator
// would. The game sets the camera's place and target. The lens reads the graph and changes nothing in it.

#include "platform/desktop/renderer/placed.h"

#include <QVector3D>

#include <span>
#include <vector>

/// The view of a frame.
struct View {
  Transform Camera; ///< looks along its z
  float Height = 1; ///< of the picture at a distance of 1: twice the tangent of half the vertical angle
};

/// A mesh of the scene.
struct Seen {
  const Direct3DRMFrame3 *Frame;
  Transform Place; ///< of the frame, in the scene
  Bounds Box;      ///< of the mesh, in the frame
};

class Lens {
public:
  /// The view of the next frame. It eases toward the wanted framing, and cuts to it where the camera or its
  /// target jumps.
  ///
  /// The target of the camera's last `LookAt` is in every frame, in the lower third; far away it is smaller,
  /// but by less than its distance alone would make it. With it, as far as the widest angle allows, the frame
  /// holds whatever else moves, the place at which a sliding target will stop, and the edge of the table near
  /// the target.
  ///
  /// @param aspect  width of the picture by its height
  View Next(const Direct3DRMFrame3 &camera, std::span<const Seen> scene, float aspect);

  /// Whether the view stays until something in the scene moves.
  bool Settled() const { return settled_; }

private:
  /// The framing relative to the direction of the camera.
  struct Framing {
    float Yaw = 0, Pitch = 0; ///< of the picture's middle, radians to the right and up
    float Height = 1;         ///< as in `View`
  };
  /// A mesh that isn't the target's.
  struct Mover {
    const Direct3DRMFrame3 *Frame;
    Vector Origin;  ///< in the last frame
    bool Moves;     ///< it has moved since the last cut
    Bounds Covered; ///< what of the scene it covers; while the target lies still, what it has covered since
                    ///< the cut
  };

  /// Whether two framings are so close that easing to the other isn't worth it.
  static bool Near(const Framing &a, const Framing &b);
  static bool Ease(Framing &framing, const Framing &to);
  void FollowMovers(std::span<const Seen> scene, const Direct3DRMFrame3 *target, bool cut, bool targetMoves);
  std::vector<Vector> Held(const Transform &camera, std::span<const Seen> scene, const Seen &subject,
                           const QVector3D &step) const;
  Framing Wanted(const Transform &camera, const Seen &subject, std::span<const Vector> held, bool swings,
                 float aspect) const;

  bool started_ = false;
  bool settled_ = false;
  Transform from_; ///< the camera at the last frame
  Vector target_;  ///< its place at the last frame
  QVector3D step_; ///< of the target, to the last frame
  std::vector<Mover> movers_;
  Framing wanted_;
  Framing approached_; ///< follows the wanted framing
  Framing framing_;    ///< follows that
};

#pragma once

// The camera's lens. The game sets the position and direction of the camera; the lens chooses the field of
// view and which part of the view the frame shows, as a camera operator would. It reads the scene graph and
// changes nothing in it.

#include "platform/desktop/renderer/draw_list.h"

#include <optional>
#include <span>
#include <vector>

constexpr float NearPlane = 1.0f; ///< distance of the near clipping plane, scene units

/// The view that a frame shows.
struct CameraView {
  Transform Camera; ///< in the scene; looks along its +z
  float Height = 1; ///< height of the frame at distance 1: 2 tan(vertical field of view / 2)
};

class Lens {
public:
  /// Returns the view of the next frame. It eases to the framing wanted for the scene. When the camera or its
  /// target jumps, it cuts to that framing.
  ///
  /// The target is the scene frame of the camera's last `LookAt`. It is always in the frame, in the lower
  /// third unless it is high above the camera or falls, and appears smaller with distance, but by less than
  /// perspective alone makes it. The frame also contains, as far as the widest field of view allows:
  /// - the other meshes that move; those without room for their path only once the target has moved too,
  /// - the aim, while it lies at the target,
  /// - the point where a sliding target will stop,
  /// - the nearest point of the table's edge, if the target is close to it and doesn't move away from it,
  /// - the shadow of a flying target.
  ///
  /// @param aspect  width / height of the frame
  CameraView Next(const Direct3DRMFrame3 &camera, std::span<const Item> scene, float aspect);

  /// Whether the view stays the same until something in the scene moves.
  bool Settled() const { return settled_; }

private:
  /// A view relative to the direction of the camera.
  struct Framing {
    float Yaw = 0, Pitch = 0; ///< of the frame's centre, radians to the right and up
    float Height = 1;         ///< as in `CameraView`
  };
  /// A mesh other than the target.
  struct Mover {
    const Direct3DRMFrame3 *Frame;
    QVector3D Origin; ///< in the previous frame
    float Step;       ///< distance that it has just moved, scene units
    bool Moves;       ///< has moved since the last cut
    bool Shown;       ///< to be in the frame
    Bounds Covered;   ///< its bounding box in the scene; while the target rests, all that it may pass
  };

  /// Whether two framings differ so little that the view stays.
  static bool Near(const Framing &a, const Framing &b);
  /// Moves a framing one step toward another. Returns whether it has arrived.
  static bool Ease(Framing &framing, const Framing &to);
  void FollowMovers(std::span<const Item> scene, const Direct3DRMFrame3 *target, bool targetMoves);
  std::vector<QVector3D> MoverPoints(const Transform &camera, const QVector3D &target) const;
  std::vector<QVector3D> PointsToShow(const Transform &camera, std::span<const Item> scene,
                                      const Item &subject, const std::optional<Bounds> &table,
                                      const QVector3D &step) const;
  Framing Wanted(const Transform &camera, const Item &subject, std::span<const QVector3D> points,
                 bool symmetric, bool falls, float aspect) const;

  bool started_ = false;
  bool settled_ = false;
  Transform from_;   ///< the camera in the previous frame
  QVector3D target_; ///< position of the target in the previous frame
  QVector3D step_;   ///< motion of the target from the frame before that one
  std::vector<Mover> movers_;
  Framing wanted_;
  Framing approached_; ///< eases to `wanted_`
  Framing framing_;    ///< eases to `approached_`
};

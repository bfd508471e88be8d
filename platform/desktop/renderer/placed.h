#pragma once

// The meshes of a graph, each where it hangs.

#include "scene/graph/frame.h"

#include <QMatrix4x4>
#include <QRect>

#include <optional>
#include <vector>

constexpr float NearPlane = 1.0f; ///< scene units from the camera to the nearest that shows

constexpr float LargestThing = 60.0f;   ///< scene units: a mesh of a larger extent is a place
constexpr float LargestGround = 260.0f; ///< and of a yet larger one no ground to stand on

/// A box around vertices.
struct Bounds {
  Vector Low, High;

  explicit Bounds(const Vector &v = {}) : Low(v), High(v) {}
  void Widen(const Vector &v);
  Vector Corner(int number) const; ///< 0 to 7
  float Extent() const;            ///< its longest side
};

/// One mesh where it hangs.
struct Placed {
  const Ref<Direct3DRMMeshBuilder3> *Mesh;
  const Direct3DRMFrame3 *Frame;
  Transform Place; ///< of the frame, in the scene
  QMatrix4x4 ToWorld;
};

/// Everything that hangs under a frame.
std::vector<Placed> Collect(const Direct3DRMFrame3 &frame);

QMatrix4x4 MatrixOf(const Transform &t);

/// A box around a box that is moved and turned.
Bounds Moved(const Bounds &box, const Transform &t);

/// Whether the box of a mesh, in its own frame, is flat and wide as the table is: no thing, and no place as
/// large as the stadium.
bool IsWide(const Bounds &box);

/// Whether a box lies outside what shows: all of its corners beyond one plane.
bool Outside(const Bounds &box, const QMatrix4x4 &toClip);

/// The pixels of a picture that a box covers at most; none if it lies outside.
std::optional<QRect> Covered(const Bounds &box, const QMatrix4x4 &toClip, QSize size);

/// From the clip space of a picture to that of a part of it.
QMatrix4x4 ToPart(const QRect &part, QSize whole);

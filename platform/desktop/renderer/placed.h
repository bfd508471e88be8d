#pragma once

// The meshes of a graph with their transforms in the scene.

#include "scene/graph/frame.h"

#include <QMatrix4x4>
#include <QVector3D>

#include <vector>

constexpr float NearPlane = 1.0f; ///< distance of the near clipping plane, scene units

constexpr float LargestThing = 60.0f;   ///< scene units: a larger mesh casts no shadow
constexpr float LargestGround = 260.0f; ///< scene units: a larger mesh isn't ground

/// A box around vertices.
struct Bounds {
  Vector Low, High;

  explicit Bounds(const Vector &v = {}) : Low(v), High(v) {}
  void Widen(const Vector &v);
  Vector Corner(int number) const; ///< 0 to 7
  float Extent() const;            ///< its longest side
};

/// A mesh with its transform.
struct Placed {
  const Ref<Direct3DRMMeshBuilder3> *Mesh;
  const Direct3DRMFrame3 *Frame;
  Transform Place; ///< of the frame, in the scene
  QMatrix4x4 ToWorld;
};

/// Every mesh below a frame.
std::vector<Placed> Collect(const Direct3DRMFrame3 &frame);

inline QVector3D ToQt(const Vector &v) { return {v.x, v.y, v.z}; }
QMatrix4x4 MatrixOf(const Transform &t);

/// The bounding box of a transformed box.
Bounds Moved(const Bounds &box, const Transform &t);

/// Whether a mesh is flat and wide like the table, neither a small thing nor as large as the stadium.
/// @param box  of the mesh, in its own frame
bool IsWide(const Bounds &box);

/// Whether a box lies outside the view: all of its corners beyond one clipping plane.
bool Outside(const Bounds &box, const QMatrix4x4 &toClip);

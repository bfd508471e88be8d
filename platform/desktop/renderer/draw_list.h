#pragma once

// The draw list of a frame: the meshes of a graph with their bounds, and which of them move.

#include "scene/graph/frame.h"

#include <QMatrix4x4>
#include <QVector3D>

#include <array>
#include <limits>
#include <set>
#include <span>
#include <vector>

class GpuMesh;

constexpr float LargestThing = 60.0f;   ///< scene units: a larger mesh casts no shadow
constexpr float LargestGround = 260.0f; ///< scene units: a larger mesh isn't ground

inline QVector3D ToQt(const Vector &v) { return {v.x, v.y, v.z}; }
QMatrix4x4 MatrixOf(const Transform &t);

/// A box around points; around none until it is widened.
struct Bounds {
  static constexpr float Infinity = std::numeric_limits<float>::infinity();
  QVector3D Low{Infinity, Infinity, Infinity};
  QVector3D High{-Infinity, -Infinity, -Infinity};

  static Bounds Of(const MeshData &mesh);
  void Widen(const QVector3D &point);
  std::array<QVector3D, 8> Corners() const;
  Bounds Moved(const QMatrix4x4 &by) const; ///< around the transformed box
  float Extent() const;                     ///< its longest side
  /// Whether it is flat and wide like the table, neither a small thing nor as large as the stadium.
  bool IsWide() const;
  bool operator==(const Bounds &) const = default;
};

/// A mesh of the scene.
struct Item {
  const Ref<Direct3DRMMeshBuilder3> *Mesh;
  const Direct3DRMFrame3 *Frame; ///< the scene frame that the mesh belongs to
  QMatrix4x4 ToWorld;            ///< from the scene frame into the scene
  Bounds Own{};                  ///< of the mesh, in its scene frame
  Bounds Box{};                  ///< of the mesh, in the scene
  GpuMesh *Drawn = nullptr;
  bool Changed = false; ///< since the last frame
  bool Ground = false;  ///< takes shadows
  bool Moves = true;    ///< drawn in every frame, even while the camera rests

  QVector3D Origin() const { return ToWorld.column(3).toVector3D(); } ///< of the scene frame, in the scene
  void SetBounds(const Bounds &own);
};

/// Lists the meshes below a frame, without bounds.
std::vector<Item> Collect(const Direct3DRMFrame3 &frame);

/// Marks wide meshes, and the small ones of the same frame, as ground.
void MarkGround(std::span<Item> items);

/// Finds which meshes move while the camera rests. While a player aims only the hand turns and the clouds
/// drift; the rest is drawn once and kept.
class Motion {
public:
  enum class Change {
    None,   ///< the frame looks like the last one
    Moving, ///< the kept still meshes remain valid
    Still   ///< the still meshes must be redrawn
  };

  /// Marks the items that move: all of them when the camera does, or when a mesh has come or gone.
  Change Next(std::span<Item> items, bool shadowsMoved, const QMatrix4x4 &toClip);

  /// Treats everything as moved in the next frame.
  void Reset() { last_.clear(); }

private:
  std::set<const GpuMesh *> last_;
  std::set<const GpuMesh *> moving_; ///< all that have moved since the camera did
  QMatrix4x4 toClip_;
};

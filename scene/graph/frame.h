#pragma once

// Frames: the tree of positions and orientations, the meshes attached to it, and ray picking.

#include "scene/graph/mesh_builder.h"
#include "scene/graph/ref.h"
#include "scene/graph/scene_error.h"
#include "scene/graph/vector.h"

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

constexpr std::int32_t D3DRMCOMBINE_BEFORE = 1;
constexpr std::int32_t D3DRMCONSTRAIN_Z = 0;
constexpr std::int32_t D3DRMRAYPICK_IGNOREFURTHERPRIMITIVES = 2;

/// Details of a hit besides its visual. The game never reads them.
struct D3DRMPICKDESC {
  Vector Position; ///< of the hit, in the scene
};

/// The hits of a ray, nearest first.
class Direct3DRMPickArray {
public:
  /// The visual of a hit.
  /// @throws SceneError  if there is no such hit
  Ref<Direct3DRMVisual> GetPickVisual(std::int32_t index, D3DRMPICKDESC &description) const;

  struct Hit {
    double Distance; ///< in lengths of the ray's direction
    Ref<Direct3DRMVisual> Visual;
  };
  std::vector<Hit> Hits;
  D3DRMRAY Ray; ///< in the scene
};

/// Origin and axes of one frame in the coordinates of another.
struct Transform {
  Vector Origin;
  Vector Right{1, 0, 0};     ///< +x
  Vector Up{0, 1, 0};        ///< +y
  Vector Direction{0, 0, 1}; ///< +z
  bool operator==(const Transform &) const = default;
};

/// A node of the tree. In all operations `ref` is the frame in whose current coordinates positions and
/// vectors are given; it may be the frame itself.
/// @throws SceneError  if an operation fails, for example on an argument that isn't finite
class Direct3DRMFrame3 {
public:
  explicit Direct3DRMFrame3(GraphRevision revision) : revision_(std::move(revision)) {}
  ~Direct3DRMFrame3() {
    for (const auto &child : children_) child->parent_ = nullptr;
  }
  Direct3DRMFrame3(const Direct3DRMFrame3 &) = delete;
  Direct3DRMFrame3 &operator=(const Direct3DRMFrame3 &) = delete;

  void AddVisual(const Ref<Direct3DRMMeshBuilder3> &visual);
  void DeleteVisual(const Ref<Direct3DRMMeshBuilder3> &visual);

  /// Moves the frame's origin to (x, y, z) of ref. Keeps orientation and parent.
  void SetPosition(const Ref<Direct3DRMFrame3> &ref, float x, float y, float z);
  void GetPosition(const Ref<Direct3DRMFrame3> &ref, Vector &position) const;

  /// Turns the frame's +z along the direction and its +y along the up vector.
  void SetOrientation(const Ref<Direct3DRMFrame3> &ref, float dx, float dy, float dz, float ux, float uy,
                      float uz);
  void GetOrientation(const Ref<Direct3DRMFrame3> &ref, Vector &direction, Vector &up) const;

  /// Turns the frame about its origin so that its +z points at the target's origin, without roll against ref.
  void LookAt(const Ref<Direct3DRMFrame3> &target, const Ref<Direct3DRMFrame3> &ref, std::int32_t constraint);

  /// Rotates the frame about one of its own axes through its origin, radians.
  void AddRotation(std::int32_t combine, float x, float y, float z, float theta);

  /// Sets a continuous rotation: radians per update, about an axis of ref. (0, 0, 0, 0) stops it.
  void SetRotation(const Ref<Direct3DRMFrame3> &ref, float x, float y, float z, float theta);

  /// Tests the faces of all visuals below this frame. No hit gives an empty array.
  void RayPick(const Ref<Direct3DRMFrame3> &ref, const D3DRMRAY &ray, std::int32_t flags,
               Ref<Direct3DRMPickArray> &picked);

  // For the renderer.
  std::span<const Ref<Direct3DRMFrame3>> Children() const { return children_; }
  std::span<const Ref<Direct3DRMMeshBuilder3>> Visuals() const { return visuals_; }
  Transform World() const; ///< this frame in the scene
  /// The target of the last `LookAt`, or null.
  Ref<Direct3DRMFrame3> LookedAt() const { return lookedAt_.lock(); }

private:
  friend class Direct3DRM3;
  friend class RMCanvas;

  void Turn(const Transform &axes);
  void StepRotation();
  void Pick(const D3DRMRAY &ray, std::vector<Direct3DRMPickArray::Hit> &hits);

  GraphRevision revision_;
  Direct3DRMFrame3 *parent_ = nullptr; ///< null for the root, and when the parent is gone
  std::vector<Ref<Direct3DRMFrame3>> children_;
  std::vector<Ref<Direct3DRMMeshBuilder3>> visuals_;
  Transform local_; ///< in the parent

  std::weak_ptr<Direct3DRMFrame3> lookedAt_;
  std::weak_ptr<Direct3DRMFrame3> rotationRef_;
  Vector rotationAxis_;
  float rotationTheta_ = 0;
};

#include "scene/graph/frame.h"

#include "scene/graph/trigonometry.h"

#include <algorithm>
#include <cmath>

namespace {

/// A vector in double precision, before it is rounded into the state.
struct Wide {
  double x = 0, y = 0, z = 0;
};

Wide Widen(const Vector &v) { return {v.x, v.y, v.z}; }
Vector Round(const Wide &v) {
  return {static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z)};
}
double Dot(const Wide &a, const Wide &b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
Wide Minus(const Wide &a, const Wide &b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
Wide Cross(const Wide &a, const Wide &b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

/// An origin and three axes, not yet rounded.
struct WideTransform {
  Wide Origin, Right, Up, Direction;
};

WideTransform Widen(const Transform &t) {
  return {Widen(t.Origin), Widen(t.Right), Widen(t.Up), Widen(t.Direction)};
}

/// Transforms a vector from a frame's axes to those of its reference.
Wide Out(const WideTransform &t, const Wide &v) {
  return {t.Right.x * v.x + t.Up.x * v.y + t.Direction.x * v.z,
          t.Right.y * v.x + t.Up.y * v.y + t.Direction.y * v.z,
          t.Right.z * v.x + t.Up.z * v.y + t.Direction.z * v.z};
}

/// The inverse; the axes are orthonormal.
Wide In(const WideTransform &t, const Wide &v) {
  return {Dot(t.Right, v), Dot(t.Up, v), Dot(t.Direction, v)};
}

Wide PointOut(const WideTransform &t, const Wide &v) {
  const Wide turned = Out(t, v);
  return {t.Origin.x + turned.x, t.Origin.y + turned.y, t.Origin.z + turned.z};
}

Wide PointIn(const WideTransform &t, const Wide &v) { return In(t, Minus(v, t.Origin)); }

void RequireFinite(std::initializer_list<float> values) {
  for (const float value : values) {
    if (!std::isfinite(value)) throw SceneError("a frame operation has an argument that isn't finite");
  }
}

constexpr double UnitTolerance = 1e-6; ///< deviation from orthonormal due to 32-bit rounding

/// Normalises a vector. A vector of unit length within rounding is returned unchanged, to the bit.
Wide Unit(const Wide &v) {
  const double square = Dot(v, v);
  if (!(square > 0.0) || !std::isfinite(square)) throw SceneError("a direction of zero length");
  if (std::abs(square - 1.0) <= UnitTolerance) return v;
  const double length = std::sqrt(square);
  return {v.x / length, v.y / length, v.z / length};
}

/// Axes from a direction and an up vector; the up vector is made orthogonal to the direction.
WideTransform AxesFrom(const Wide &direction, const Wide &up) {
  WideTransform axes;
  axes.Direction = Unit(direction);
  Wide upright = Unit(up);
  const double lean = Dot(upright, axes.Direction);
  if (std::abs(lean) > UnitTolerance) {
    upright = Minus(upright, {axes.Direction.x * lean, axes.Direction.y * lean, axes.Direction.z * lean});
    if (Dot(upright, upright) < UnitTolerance) throw SceneError("the up vector is parallel to the direction");
  }
  axes.Up = Unit(upright);
  axes.Right = Unit(Cross(axes.Up, axes.Direction));
  return axes;
}

/// Re-orthonormalises the axes after a product, so that errors don't accumulate.
Transform Straighten(const WideTransform &axes) {
  const auto exactUnit = [](const Wide &v) {
    const double length = std::sqrt(Dot(v, v));
    return Wide{v.x / length, v.y / length, v.z / length};
  };
  const Wide up = exactUnit(axes.Up);
  const double lean = Dot(axes.Direction, up);
  const Wide direction = exactUnit(Minus(axes.Direction, {up.x * lean, up.y * lean, up.z * lean}));
  return {{}, Round(Cross(up, direction)), Round(up), Round(direction)};
}

/// Rotation by theta about an axis. A positive rotation about +y turns +z toward +x.
WideTransform Rotation(const Wide &axis, double theta) {
  const Wide a = Unit(axis);
  const auto [sine, cosine] = graph::SineAndCosine(theta);
  const double rest = 1.0 - cosine;
  return {{},
          {cosine + a.x * a.x * rest, a.x * a.y * rest + a.z * sine, a.x * a.z * rest - a.y * sine},
          {a.x * a.y * rest - a.z * sine, cosine + a.y * a.y * rest, a.y * a.z * rest + a.x * sine},
          {a.x * a.z * rest + a.y * sine, a.y * a.z * rest - a.x * sine, cosine + a.z * a.z * rest}};
}

} // namespace

Ref<Direct3DRMVisual> Direct3DRMPickArray::GetPickVisual(std::int32_t index,
                                                         D3DRMPICKDESC &description) const {
  if (index < 0 || static_cast<std::size_t>(index) >= Hits.size())
    throw SceneError("the ray has no such hit");
  const Hit &hit = Hits[static_cast<std::size_t>(index)];
  const Wide direction = Widen(Ray.Direction);
  const Wide origin = Widen(Ray.Origin);
  description.Position = Round({origin.x + direction.x * hit.Distance, origin.y + direction.y * hit.Distance,
                                origin.z + direction.z * hit.Distance});
  return hit.Visual;
}

void Direct3DRMFrame3::AddVisual(const Ref<Direct3DRMMeshBuilder3> &visual) {
  if (!visual) throw SceneError("no visual to attach");
  // A visual is attached to a frame at most once.
  if (std::ranges::find(visuals_, visual) != visuals_.end()) return;
  visuals_.push_back(visual);
  visual->CountFrames(1);
  revision_.Raise();
}

void Direct3DRMFrame3::DeleteVisual(const Ref<Direct3DRMMeshBuilder3> &visual) {
  const auto found = std::ranges::find(visuals_, visual);
  if (found == visuals_.end()) throw SceneError("the visual isn't attached to this frame");
  (*found)->CountFrames(-1);
  visuals_.erase(found);
  revision_.Raise();
}

Transform Direct3DRMFrame3::World() const {
  if (!parent_) return local_;
  if (!parent_->parent_ && parent_->local_ == Transform{}) return local_;
  const WideTransform parent = Widen(parent_->World());
  const WideTransform own = Widen(local_);
  return {Round(PointOut(parent, own.Origin)), Round(Out(parent, own.Right)), Round(Out(parent, own.Up)),
          Round(Out(parent, own.Direction))};
}

void Direct3DRMFrame3::SetPosition(const Ref<Direct3DRMFrame3> &ref, float x, float y, float z) {
  RequireFinite({x, y, z});
  Vector place{x, y, z};
  if (ref.get() == this) {
    place = Round(PointOut(Widen(local_), Widen(place)));
  } else if (ref.get() != parent_) {
    const Wide world = PointOut(Widen(ref->World()), Widen(place));
    place = Round(parent_ ? PointIn(Widen(parent_->World()), world) : world);
  }
  if (place == local_.Origin) return;
  local_.Origin = place;
  revision_.Raise();
}

void Direct3DRMFrame3::GetPosition(const Ref<Direct3DRMFrame3> &ref, Vector &position) const {
  if (ref.get() == parent_) {
    position = local_.Origin;
  } else if (ref.get() == this) {
    position = {};
  } else {
    position = Round(PointIn(Widen(ref->World()), Widen(World().Origin)));
  }
}

void Direct3DRMFrame3::Turn(const Transform &axes) {
  Transform turned = axes;
  turned.Origin = local_.Origin;
  if (turned == local_) return;
  local_ = turned;
  revision_.Raise();
}

void Direct3DRMFrame3::SetOrientation(const Ref<Direct3DRMFrame3> &ref, float dx, float dy, float dz,
                                      float ux, float uy, float uz) {
  RequireFinite({dx, dy, dz, ux, uy, uz});
  WideTransform axes = AxesFrom({dx, dy, dz}, {ux, uy, uz});
  if (ref.get() != parent_) {
    const WideTransform from = Widen(ref->World());
    const WideTransform to =
        parent_ ? Widen(parent_->World()) : WideTransform{{}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    for (Wide *axis : {&axes.Right, &axes.Up, &axes.Direction}) *axis = In(to, Out(from, *axis));
  }
  Turn({{}, Round(axes.Right), Round(axes.Up), Round(axes.Direction)});
}

void Direct3DRMFrame3::GetOrientation(const Ref<Direct3DRMFrame3> &ref, Vector &direction, Vector &up) const {
  if (ref.get() == parent_) {
    direction = local_.Direction;
    up = local_.Up;
    return;
  }
  const Transform world = World();
  const WideTransform to = Widen(ref->World());
  direction = Round(In(to, Widen(world.Direction)));
  up = Round(In(to, Widen(world.Up)));
}

void Direct3DRMFrame3::LookAt(const Ref<Direct3DRMFrame3> &target, const Ref<Direct3DRMFrame3> &ref,
                              std::int32_t constraint) {
  if (constraint != D3DRMCONSTRAIN_Z) throw SceneError("LookAt supports only D3DRMCONSTRAIN_Z");
  lookedAt_ = target;
  const Wide toTarget = Minus(Widen(target->World().Origin), Widen(World().Origin));
  const double distance = std::sqrt(Dot(toTarget, toTarget));
  if (!(distance > 0.0)) return; // no direction
  WideTransform axes;
  axes.Direction = {toTarget.x / distance, toTarget.y / distance, toTarget.z / distance};
  Wide right = Cross(Widen(ref->World().Up), axes.Direction);
  if (Dot(right, right) < UnitTolerance) {
    // Straight up or down the roll is undefined: the frame keeps its own, unless its up axis is parallel to
    // the new direction.
    right = Widen(World().Right);
    if (std::abs(Dot(right, axes.Direction)) > 0.5) right = Widen(World().Up);
  }
  const Wide up = Cross(axes.Direction, right);
  const double length = std::sqrt(Dot(up, up));
  axes.Up = {up.x / length, up.y / length, up.z / length};
  if (parent_ && parent_->World() != Transform{}) {
    const WideTransform to = Widen(parent_->World());
    axes.Direction = In(to, axes.Direction);
    axes.Up = In(to, axes.Up);
  }
  Turn({{}, Round(Cross(axes.Up, axes.Direction)), Round(axes.Up), Round(axes.Direction)});
}

void Direct3DRMFrame3::AddRotation(std::int32_t combine, float x, float y, float z, float theta) {
  if (combine != D3DRMCOMBINE_BEFORE) throw SceneError("AddRotation supports only D3DRMCOMBINE_BEFORE");
  RequireFinite({x, y, z, theta});
  if (theta == 0.0f) return;
  const WideTransform own = Widen(local_);
  const WideTransform turn = Rotation({x, y, z}, theta);
  Turn(Straighten({{}, Out(own, turn.Right), Out(own, turn.Up), Out(own, turn.Direction)}));
}

void Direct3DRMFrame3::SetRotation(const Ref<Direct3DRMFrame3> &ref, float x, float y, float z, float theta) {
  RequireFinite({x, y, z, theta});
  rotationRef_ = ref;
  rotationAxis_ = {x, y, z};
  rotationTheta_ = rotationAxis_ == Vector{} ? 0.0f : theta;
}

void Direct3DRMFrame3::StepRotation() {
  const auto ref = rotationRef_.lock();
  if (rotationTheta_ != 0.0f && ref) {
    Wide axis = Out(Widen(ref->World()), Widen(rotationAxis_));
    if (parent_) axis = In(Widen(parent_->World()), axis);
    const WideTransform own = Widen(local_);
    const WideTransform turn = Rotation(axis, rotationTheta_);
    Turn(Straighten({{}, Out(turn, own.Right), Out(turn, own.Up), Out(turn, own.Direction)}));
  }
  for (const auto &child : children_) child->StepRotation();
}

void Direct3DRMFrame3::RayPick(const Ref<Direct3DRMFrame3> &ref, const D3DRMRAY &ray, std::int32_t flags,
                               Ref<Direct3DRMPickArray> &picked) {
  RequireFinite(
      {ray.Direction.x, ray.Direction.y, ray.Direction.z, ray.Origin.x, ray.Origin.y, ray.Origin.z});
  picked = std::make_shared<Direct3DRMPickArray>();
  picked->Ray = ray;
  if (ref->parent_ || ref->local_ != Transform{}) {
    const WideTransform from = Widen(ref->World());
    picked->Ray = {Round(Out(from, Widen(ray.Direction))), Round(PointOut(from, Widen(ray.Origin)))};
  }
  Pick(picked->Ray, picked->Hits);
  std::ranges::stable_sort(picked->Hits, {}, &Direct3DRMPickArray::Hit::Distance);
  if ((flags & D3DRMRAYPICK_IGNOREFURTHERPRIMITIVES) && picked->Hits.size() > 1) picked->Hits.resize(1);
}

void Direct3DRMFrame3::Pick(const D3DRMRAY &ray, std::vector<Direct3DRMPickArray::Hit> &hits) {
  const WideTransform world = Widen(World());
  const D3DRMRAY inside{Round(In(world, Widen(ray.Direction))), Round(PointIn(world, Widen(ray.Origin)))};
  for (const auto &visual : visuals_) {
    if (const auto distance = visual->Intersect(inside)) hits.push_back({*distance, visual});
  }
  for (const auto &child : children_) child->Pick(ray, hits);
}

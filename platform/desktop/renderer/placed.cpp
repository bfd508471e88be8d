#include "platform/desktop/renderer/placed.h"

#include <algorithm>

namespace {

void CollectInto(std::vector<Placed> &placed, const Direct3DRMFrame3 &frame) {
  if (!frame.Visuals().empty()) {
    const Transform place = frame.World();
    for (const auto &mesh : frame.Visuals()) placed.push_back({&mesh, &frame, place, MatrixOf(place)});
  }
  for (const auto &child : frame.Children()) CollectInto(placed, *child);
}

} // namespace

void Bounds::Widen(const Vector &v) {
  Low = {std::min(Low.x, v.x), std::min(Low.y, v.y), std::min(Low.z, v.z)};
  High = {std::max(High.x, v.x), std::max(High.y, v.y), std::max(High.z, v.z)};
}

Vector Bounds::Corner(int number) const {
  return {number & 1 ? High.x : Low.x, number & 2 ? High.y : Low.y, number & 4 ? High.z : Low.z};
}

float Bounds::Extent() const { return std::max({High.x - Low.x, High.y - Low.y, High.z - Low.z}); }

std::vector<Placed> Collect(const Direct3DRMFrame3 &frame) {
  std::vector<Placed> placed;
  CollectInto(placed, frame);
  return placed;
}

QMatrix4x4 MatrixOf(const Transform &t) {
  return {t.Right.x,  t.Up.x,    t.Direction.x, t.Origin.x,    t.Right.y,  t.Up.y, t.Direction.y,
          t.Origin.y, t.Right.z, t.Up.z,        t.Direction.z, t.Origin.z, 0,      0,
          0,          1};
}

Bounds Moved(const Bounds &box, const Transform &t) {
  const QMatrix4x4 matrix = MatrixOf(t);
  const auto moved = [&](int corner) {
    const QVector3D to = matrix.map(ToQt(box.Corner(corner)));
    return Vector{to.x(), to.y(), to.z()};
  };
  Bounds around(moved(0));
  for (int corner = 1; corner < 8; ++corner) around.Widen(moved(corner));
  return around;
}

bool IsWide(const Bounds &box) {
  const float x = box.High.x - box.Low.x, z = box.High.z - box.Low.z;
  return std::min(x, z) > LargestThing && box.Extent() < LargestGround &&
         box.High.y - box.Low.y < LargestThing;
}

bool Outside(const Bounds &box, const QMatrix4x4 &toClip) {
  int beyond[6] = {};
  for (int corner = 0; corner < 8; ++corner) {
    const QVector4D p = toClip * QVector4D(ToQt(box.Corner(corner)), 1.0f);
    for (int axis = 0; axis < 3; ++axis) {
      if (p[axis] < -p.w()) ++beyond[2 * axis];
      if (p[axis] > p.w()) ++beyond[2 * axis + 1];
    }
  }
  return std::ranges::find(beyond, 8) != std::end(beyond);
}

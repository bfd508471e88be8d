#include "platform/desktop/renderer/draw_list.h"

#include <algorithm>
#include <utility>

namespace {

void CollectInto(std::vector<Item> &items, const Direct3DRMFrame3 &frame) {
  for (const auto &mesh : frame.Visuals()) items.push_back({&mesh, &frame, MatrixOf(frame.World())});
  for (const auto &child : frame.Children()) CollectInto(items, *child);
}

} // namespace

QMatrix4x4 MatrixOf(const Transform &t) {
  return {t.Right.x,  t.Up.x,    t.Direction.x, t.Origin.x,    t.Right.y,  t.Up.y, t.Direction.y,
          t.Origin.y, t.Right.z, t.Up.z,        t.Direction.z, t.Origin.z, 0,      0,
          0,          1};
}

Bounds Bounds::Of(const MeshData &mesh) {
  Bounds box;
  for (const Vector &position : mesh.Positions) box.Widen(ToQt(position));
  return box;
}

void Bounds::Widen(const QVector3D &point) {
  for (int axis = 0; axis < 3; ++axis) {
    Low[axis] = std::min(Low[axis], point[axis]);
    High[axis] = std::max(High[axis], point[axis]);
  }
}

std::array<QVector3D, 8> Bounds::Corners() const {
  std::array<QVector3D, 8> corners;
  for (std::size_t i = 0; i < 8; ++i)
    corners[i] = {i & 1 ? High.x() : Low.x(), i & 2 ? High.y() : Low.y(), i & 4 ? High.z() : Low.z()};
  return corners;
}

Bounds Bounds::Moved(const QMatrix4x4 &by) const {
  Bounds around;
  for (const QVector3D &corner : Corners()) around.Widen(by.map(corner));
  return around;
}

float Bounds::Extent() const {
  const QVector3D size = High - Low;
  return std::max({size.x(), size.y(), size.z()});
}

bool Bounds::IsWide() const {
  const QVector3D size = High - Low;
  return std::min(size.x(), size.z()) > LargestThing && Extent() < LargestGround && size.y() < LargestThing;
}

void Item::SetBounds(const Bounds &own) {
  Own = own;
  Box = own.Moved(ToWorld);
}

std::vector<Item> Collect(const Direct3DRMFrame3 &frame) {
  std::vector<Item> items;
  CollectInto(items, frame);
  return items;
}

void MarkGround(std::span<Item> items) {
  for (Item &item : items) {
    const auto carries = [&](const Item &each) { return each.Own.IsWide() && each.Frame == item.Frame; };
    item.Ground =
        item.Own.IsWide() || (item.Box.Extent() <= LargestThing && std::ranges::any_of(items, carries));
  }
}

Motion::Change Motion::Next(std::span<Item> items, bool shadowsMoved, const QMatrix4x4 &toClip) {
  std::set<const GpuMesh *> now;
  for (const Item &item : items) now.insert(item.Drawn);
  const bool viewMoved = std::exchange(toClip_, toClip) != toClip;
  if (std::exchange(last_, now) != now || viewMoved) {
    moving_.clear();
    return Change::Still; // all items move, as they do when collected
  }

  // Paint is blended with the ground under it, so all grounds are redrawn together.
  const bool groundMoved = shadowsMoved || std::ranges::any_of(items, [](const Item &item) {
                             return item.Ground && item.Changed;
                           });
  bool any = false, others = false;
  for (Item &item : items) {
    const bool moves = item.Changed || (groundMoved && item.Ground);
    any = any || moves;
    if (moves && moving_.insert(item.Drawn).second) others = true;
    item.Moves = moving_.contains(item.Drawn);
  }
  return !any ? Change::None : others ? Change::Still : Change::Moving;
}

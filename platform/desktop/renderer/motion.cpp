#include "platform/desktop/renderer/motion.h"

#include <algorithm>
#include <utility>

const Motion::Seen *Motion::Last(const Seen &now) const {
  const auto last = std::ranges::find_if(
      last_, [&](const Seen &each) { return each.Mesh == now.Mesh && each.Frame == now.Frame; });
  return last == last_.end() ? nullptr : &*last;
}

Motion::Change Motion::Next(std::span<Item> items, bool shadowsMoved, const QMatrix4x4 &toClip) {
  std::vector<Seen> now;
  for (const Item &item : items) {
    const Direct3DRMMeshBuilder3 &mesh = **item.Where.Mesh;
    now.push_back({&mesh, item.Where.Frame, mesh.GeometryRevision(), mesh.TextureCoordinateRevision(),
                   mesh.Texture().get(), mesh.Material().get(), item.Where.ToWorld});
  }
  const bool cameraRests = toClip == toClip_ && now.size() == last_.size() &&
                           std::ranges::all_of(now, [&](const Seen &each) { return Last(each); });
  if (!cameraRests) {
    for (Item &item : items) item.Moves = true;
    moving_.clear();
    last_ = std::move(now);
    toClip_ = toClip;
    return Change::Still;
  }

  bool groundMoved = shadowsMoved;
  for (std::size_t i = 0; i < items.size(); ++i) {
    items[i].Moves = now[i] != *Last(now[i]);
    groundMoved = groundMoved || (items[i].Moves && items[i].Ground);
  }
  bool any = false, others = false;
  for (Item &item : items) {
    // Paint is blended with the ground under it, so grounds move together.
    item.Moves = item.Moves || (groundMoved && item.Ground);
    any = any || item.Moves;
    const Direct3DRMMeshBuilder3 *mesh = item.Where.Mesh->get();
    const bool known = std::ranges::find(moving_, mesh) != moving_.end();
    if (item.Moves && !known) {
      others = true;
      moving_.push_back(mesh);
    }
    item.Moves = item.Moves || known;
  }
  last_ = std::move(now);
  return !any ? Change::None : others ? Change::Still : Change::Moving;
}

#include "platform/desktop/renderer/motion.h"

#include <algorithm>
#include <utility>

Motion::Change Motion::Next(std::span<Item> items, bool shadowsMoved, const QMatrix4x4 &toClip) {
  std::vector<const GpuMesh *> now;
  for (const Item &item : items) now.push_back(item.Mesh);
  if (toClip != toClip_ || !std::ranges::is_permutation(now, last_)) {
    for (Item &item : items) item.Moves = true;
    moving_.clear();
    last_ = std::move(now);
    toClip_ = toClip;
    return Change::Still;
  }

  // Paint is blended with the ground under it, so grounds move together.
  const bool groundMoved = shadowsMoved || std::ranges::any_of(items, [](const Item &item) {
                             return item.Ground && item.Changed;
                           });
  bool any = false, others = false;
  for (Item &item : items) {
    const bool moves = item.Changed || (groundMoved && item.Ground);
    any = any || moves;
    if (moves && moving_.insert(item.Mesh).second) others = true;
    item.Moves = moving_.contains(item.Mesh);
  }
  return !any ? Change::None : others ? Change::Still : Change::Moving;
}

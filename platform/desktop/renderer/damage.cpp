#include "platform/desktop/renderer/damage.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int WorthWhole =
    2; ///< from one in so many pixels on, the whole picture is no dearer than its parts

/// Adds a part; parts that overlap become one.
void Add(std::vector<QRect> &parts, QRect part) {
  for (auto other = parts.begin(); other != parts.end();) {
    if (other->intersects(part)) {
      part = part.united(*other);
      parts.erase(other);
      other = parts.begin();
    } else {
      ++other;
    }
  }
  parts.push_back(part);
}

} // namespace

std::vector<QRect> Damage::Parts(std::span<const Item> items, std::span<const ShadowRegion> shadows,
                                 bool shadowsMoved, const QMatrix4x4 &toClip, QSize size) {
  std::vector<Drawn> now;
  for (const Item &item : items) {
    const Direct3DRMMeshBuilder3 &mesh = **item.Where.Mesh;
    now.push_back({{&mesh, mesh.GeometryRevision(), mesh.TextureCoordinateRevision(), mesh.Texture().get(),
                    mesh.Material().get(), item.Where.Place},
                   item.Box});
  }
  std::vector<QRect> parts;
  const auto add = [&](const Bounds &box) {
    if (const auto covered = Covered(box, toClip, size)) Add(parts, *covered);
  };
  const auto addMissing = [&](const std::vector<Drawn> &of, const std::vector<Drawn> &in) {
    for (const Drawn &each : of) {
      if (std::ranges::find(in, each.As, &Drawn::As) == in.end()) add(each.Box);
    }
  };
  bool whole = drawn_.empty() || toClip != toClip_;
  if (!whole) {
    addMissing(now, drawn_);
    addMissing(drawn_, now);
    if (shadowsMoved) {
      for (const ShadowRegion &region : shadows_) add(region.Ground);
      for (const ShadowRegion &region : shadows) add(region.Ground);
    }
    int pixels = 0;
    for (const QRect &part : parts) pixels += part.width() * part.height();
    whole = pixels > size.width() * size.height() / WorthWhole;
  }
  if (whole) parts = {QRect(QPoint(0, 0), size)};
  drawn_ = std::move(now);
  shadows_.assign(shadows.begin(), shadows.end());
  toClip_ = toClip;
  return parts;
}

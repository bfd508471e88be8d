#include "platform/desktop/renderer/damage.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace {

constexpr int TileSize = 16; ///< pixels: damage is found in squares of this size

/// Pixels that could be drawn in the time that it takes to begin one rectangle more.
constexpr int PixelsPerRectangle = 2500;

int Area(const QRect &rectangle) { return rectangle.width() * rectangle.height(); }

/// The damaged squares of a frame.
class Tiles {
public:
  explicit Tiles(QSize size)
      : size_(size), across_((size.width() + TileSize - 1) / TileSize),
        down_((size.height() + TileSize - 1) / TileSize),
        damaged_(static_cast<std::size_t>(across_) * static_cast<std::size_t>(down_)) {}

  void Mark(const QRect &pixels) {
    const QRect inside = pixels.intersected(QRect(QPoint(0, 0), size_));
    if (inside.isEmpty()) return;
    for (int y = inside.top() / TileSize; y <= inside.bottom() / TileSize; ++y) {
      for (int x = inside.left() / TileSize; x <= inside.right() / TileSize; ++x) At(x, y) = 1;
    }
  }

  void Mark(const Bounds &box, const QMatrix4x4 &boxToClip) {
    if (const auto covered = Covered(box, boxToClip, size_)) Mark(*covered);
  }

  /// Marks what the faces of a mesh cover, each by a rectangle.
  void Mark(const MeshData &mesh, const QMatrix4x4 &meshToClip) {
    struct Pixel {
      float X, Y;
      bool InFront;
    };
    std::vector<Pixel> pixels;
    pixels.reserve(mesh.Positions.size());
    for (const Vector &v : mesh.Positions) {
      const QVector4D p = meshToClip * QVector4D(v.x, v.y, v.z, 1.0f);
      pixels.push_back({(p.x() / p.w() * 0.5f + 0.5f) * static_cast<float>(size_.width()),
                        (p.y() / p.w() * 0.5f + 0.5f) * static_cast<float>(size_.height()),
                        p.w() >= NearPlane});
    }
    for (std::size_t i = 0; i + 2 < mesh.Indices.size(); i += 3) {
      const Pixel corners[] = {pixels[mesh.Indices[i]], pixels[mesh.Indices[i + 1]],
                               pixels[mesh.Indices[i + 2]]};
      if (!std::ranges::all_of(corners, &Pixel::InFront)) {
        Bounds box(mesh.Positions[mesh.Indices[i]]);
        box.Widen(mesh.Positions[mesh.Indices[i + 1]]);
        box.Widen(mesh.Positions[mesh.Indices[i + 2]]);
        Mark(box, meshToClip);
        continue;
      }
      const auto [left, right] = std::ranges::minmax(corners, {}, &Pixel::X);
      const auto [top, bottom] = std::ranges::minmax(corners, {}, &Pixel::Y);
      Mark(Around(left.X, top.Y, right.X, bottom.Y));
    }
  }

  std::vector<QRect> Rectangles();

private:
  /// The pixels that a face touches, and one more on each side.
  QRect Around(float left, float top, float right, float bottom) const {
    const auto inside = [](float at, int end) {
      return static_cast<int>(std::clamp(at, -2.0f, static_cast<float>(end) + 2.0f));
    };
    return {QPoint(inside(left, size_.width()) - 1, inside(top, size_.height()) - 1),
            QPoint(inside(right, size_.width()) + 1, inside(bottom, size_.height()) + 1)};
  }
  char &At(int x, int y) {
    return damaged_[static_cast<std::size_t>(y) * static_cast<std::size_t>(across_) +
                    static_cast<std::size_t>(x)];
  }

  QSize size_;
  int across_, down_;
  std::vector<char> damaged_; ///< row by row
};

/// Adds a rectangle, united with others where that is cheaper than drawing both.
void Add(std::vector<QRect> &rectangles, QRect rectangle) {
  for (auto other = rectangles.begin(); other != rectangles.end();) {
    const QRect both = rectangle.united(*other);
    if (Area(both) <= Area(rectangle) + Area(*other) + PixelsPerRectangle) {
      rectangle = both;
      rectangles.erase(other);
      other = rectangles.begin();
    } else {
      ++other;
    }
  }
  rectangles.push_back(rectangle);
}

std::vector<QRect> Tiles::Rectangles() {
  std::vector<QRect> rectangles;
  for (int y = 0; y < down_; ++y) {
    for (int x = 0; x < across_; ++x) {
      if (!At(x, y)) continue;
      const int first = x;
      while (x + 1 < across_ && At(x + 1, y)) ++x;
      const QRect run(first * TileSize, y * TileSize, (x + 1 - first) * TileSize, TileSize);
      Add(rectangles, run.intersected(QRect(QPoint(0, 0), size_)));
    }
  }
  return rectangles;
}

} // namespace

std::vector<QRect> Damage::Rectangles(std::span<const Item> items, std::span<const ShadowRegion> shadows,
                                      bool shadowsMoved, const QMatrix4x4 &toClip, QSize size) {
  std::vector<Drawn> now;
  for (const Item &item : items) {
    const Direct3DRMMeshBuilder3 &mesh = **item.Where.Mesh;
    now.push_back({{&mesh, mesh.GeometryRevision(), mesh.TextureCoordinateRevision(), mesh.Texture().get(),
                    mesh.Material().get(), item.Where.Place},
                   item.Where.ToWorld,
                   item.Box});
  }
  Tiles tiles(size);
  const auto same = [](const Drawn &a) {
    return [&a](const Drawn &b) { return a.As.Mesh == b.As.Mesh && a.As.Geometry == b.As.Geometry; };
  };
  const auto markMissing = [&](const std::vector<Drawn> &of, const std::vector<Drawn> &in) {
    for (const Drawn &each : of) {
      if (std::ranges::find(in, each.As, &Drawn::As) != in.end()) continue;
      // A mesh that isn't drawn any more may be gone; where it was its box still tells.
      if (std::ranges::any_of(now, same(each))) {
        tiles.Mark(each.As.Mesh->Data(), toClip * each.ToWorld);
      } else {
        tiles.Mark(each.Box, toClip);
      }
    }
  };
  std::vector<QRect> rectangles{QRect(QPoint(0, 0), size)};
  if (!drawn_.empty() && toClip == toClip_) {
    markMissing(now, drawn_);
    markMissing(drawn_, now);
    if (shadowsMoved) {
      for (const ShadowRegion &region : shadows_) tiles.Mark(region.Ground, toClip);
      for (const ShadowRegion &region : shadows) tiles.Mark(region.Ground, toClip);
    }
    std::vector<QRect> damaged = tiles.Rectangles();
    int pixels = 0;
    for (const QRect &rectangle : damaged) pixels += Area(rectangle) + PixelsPerRectangle;
    if (pixels < Area(rectangles.front())) rectangles = std::move(damaged);
  }
  drawn_ = std::move(now);
  shadows_.assign(shadows.begin(), shadows.end());
  toClip_ = toClip;
  return rectangles;
}

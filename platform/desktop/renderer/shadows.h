#pragma once

// Shadows on the ground: the depths that the key light sees, and the regions of the ground in which a shadow
// can lie. Only those are looked up, so that shadows cost what they cover.

#include "platform/desktop/renderer/gpu_mesh.h"
#include "platform/desktop/renderer/placed.h"

#include <QOpenGLShaderProgram>
#include <QRect>

#include <span>
#include <vector>

/// A mesh of a picture with what is on the graphics card of it.
struct Item {
  Placed Where;
  GpuMesh *Mesh;
  Bounds Box;          ///< in the scene
  bool Ground = false; ///< takes shadows
  bool Moves = true;   ///< while the camera rests
};

/// Where on the ground the shadow of one thing lies.
struct ShadowRegion {
  Bounds Ground;  ///< in the scene
  float Softness; ///< radius of the soft edge, scene units: a thing's shadow blurs as it rises
  float Halo;     ///< radius of the dimness around the shadow
};

class Shadows {
public:
  /// @param size  of the map's sides, pixels
  /// @throws RendererError
  Shadows(Gl &gl, int size);
  ~Shadows();
  Shadows(const Shadows &) = delete;
  Shadows &operator=(const Shadows &) = delete;

  /// Finds what throws shadows on these grounds, and draws the map again if any of it has moved.
  /// Returns whether it has.
  bool Update(std::span<const Item> items, std::span<const Item> grounds);

  std::span<const ShadowRegion> Regions() const { return regions_; }
  GLuint Map() const { return map_; }

  /// From the scene into the map, 0 to 1.
  static QMatrix4x4 ToMap();
  /// A length of the scene in parts of the map.
  static float InMap(float length);

private:
  struct Caster {
    GpuMesh *Mesh;
    QMatrix4x4 ToWorld;
    std::uint64_t Geometry; ///< its revision
    bool operator==(const Caster &) const = default;
  };
  void DrawMap(const std::vector<Caster> &casters);
  QRect InPixels(const Bounds &ground) const;

  Gl &gl_;
  int size_;
  GLuint buffer_ = 0, map_ = 0;
  QOpenGLShaderProgram program_;
  std::vector<ShadowRegion> regions_;
  std::vector<Caster> drawn_;
  std::vector<QRect> used_; ///< parts of the map that hold more than the greatest depth
};

/// Marks what is wide, and what lies on it in the same frame.
void MarkGround(std::span<Item> items);

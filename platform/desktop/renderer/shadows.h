#pragma once

// A shadow map of the key light, and the regions of the ground that shadows can reach. Only these sample the
// map, so the cost grows with the area in shadow.

#include "platform/desktop/renderer/item.h"

#include <QOpenGLShaderProgram>
#include <QRect>

#include <span>
#include <vector>

/// The region of the ground that one mesh can shade.
struct ShadowRegion {
  Bounds Ground;  ///< in the scene
  float Softness; ///< radius of the penumbra, scene units; grows with the height of the mesh
  float Halo;     ///< radius of the ambient occlusion around the shadow, scene units

  bool Reaches(const Bounds &ground) const;
};

class Shadows {
public:
  /// @param size  of the map's sides, pixels
  /// @throws RendererError
  Shadows(Gl &gl, int size);
  ~Shadows();
  Shadows(const Shadows &) = delete;
  Shadows &operator=(const Shadows &) = delete;

  /// Finds the meshes that cast shadows on these grounds, and redraws the map if one has moved.
  /// @return whether one has
  bool Update(std::span<const Item> items, std::span<const Item> grounds);

  std::span<const ShadowRegion> Regions() const { return regions_; }
  GLuint Map() const { return map_; }

  /// From the scene into the map, 0 to 1.
  static QMatrix4x4 ToMap();
  /// A length in the scene as a share of the map.
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
  std::vector<QRect> used_; ///< parts of the map that aren't clear
};

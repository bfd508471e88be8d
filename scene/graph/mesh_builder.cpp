#include "scene/graph/mesh_builder.h"

#include "scene/graph/scene_error.h"

#include <cmath>

namespace {

void RequireFinite(float a, float b, float c) {
  if (!std::isfinite(a) || !std::isfinite(b) || !std::isfinite(c)) {
    throw SceneError("a mesh operation has an argument that isn't finite");
  }
}

} // namespace

void Direct3DRMMeshBuilder3::LoadFromFile(const std::filesystem::path &file, std::int16_t id,
                                          std::int32_t flags) {
  if (id != 0 || flags != 0) throw SceneError("only a whole file can be loaded");
  data_ = *ReadMeshFile(file);
  ++coordinateRevision_;
  ChangedGeometry();
}

void Direct3DRMMeshBuilder3::ChangedGeometry() {
  treeFits_ = false;
  ++geometryRevision_;
  Changed();
}

void Direct3DRMMeshBuilder3::ScaleMesh(float sx, float sy, float sz) {
  RequireFinite(sx, sy, sz);
  for (Vector &v : data_.Positions) v = {v.x * sx, v.y * sy, v.z * sz};
  // Normals scale by the inverse.
  if (sx != 0.0f && sy != 0.0f && sz != 0.0f && !(sx == sy && sy == sz)) {
    for (Vector &n : data_.Normals) {
      const double x = static_cast<double>(n.x) / sx, y = static_cast<double>(n.y) / sy,
                   z = static_cast<double>(n.z) / sz;
      const double length = std::sqrt(x * x + y * y + z * z);
      if (length > 0.0) {
        n = {static_cast<float>(x / length), static_cast<float>(y / length), static_cast<float>(z / length)};
      }
    }
  }
  ChangedGeometry();
}

void Direct3DRMMeshBuilder3::Translate(float x, float y, float z) {
  RequireFinite(x, y, z);
  for (Vector &v : data_.Positions) v = {v.x + x, v.y + y, v.z + z};
  ChangedGeometry();
}

void Direct3DRMMeshBuilder3::SetColorRGB(float r, float g, float b) {
  RequireFinite(r, g, b);
  for (FaceColor &color : data_.FaceColors) color = {r, g, b};
  ChangedGeometry();
}

void Direct3DRMMeshBuilder3::SetMaterial(const Ref<Direct3DRMMaterial2> &material) {
  material_ = material;
  Changed();
}

void Direct3DRMMeshBuilder3::SetTexture(const Ref<Direct3DRMTexture> &texture) {
  texture_ = texture;
  Changed();
}

void Direct3DRMMeshBuilder3::SetTextureCoordinates(std::vector<TextureCoordinate> coordinates) {
  if (coordinates == data_.TextureCoordinates) return;
  data_.TextureCoordinates = std::move(coordinates);
  ++coordinateRevision_;
  Changed();
}

std::optional<double> Direct3DRMMeshBuilder3::Intersect(const D3DRMRAY &ray) {
  if (!treeFits_) {
    tree_.Build(data_.Positions, data_.Indices);
    treeFits_ = true;
  }
  return tree_.Intersect(data_.Positions, ray);
}

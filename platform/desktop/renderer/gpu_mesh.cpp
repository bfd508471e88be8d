#include "platform/desktop/renderer/gpu_mesh.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>

namespace {

constexpr GLuint PositionSlot = 0, NormalSlot = 1, CoordinateSlot = 2, FillSlot = 3, KeySlot = 4;
constexpr GLenum AnisotropyParameter = 0x84FE; ///< of EXT_texture_filter_anisotropic
constexpr std::size_t FacesInCluster = 192;

struct GpuVertex {
  Vector Position;
  Vector Normal;
};

const void *Offset(std::size_t bytes) { return reinterpret_cast<const void *>(bytes); }

void Widen(Bounds &box, const Vector &v) {
  box.Low = {std::min(box.Low.x, v.x), std::min(box.Low.y, v.y), std::min(box.Low.z, v.z)};
  box.High = {std::max(box.High.x, v.x), std::max(box.High.y, v.y), std::max(box.High.z, v.z)};
}

/// Faces in an order in which neighbours follow each other: halved again and again across the longer side.
void SortByPlace(std::vector<std::uint32_t> &faces, std::size_t first, std::size_t count,
                 const std::vector<Vector> &middles) {
  if (count <= FacesInCluster) return;
  Bounds box{middles[faces[first]], middles[faces[first]]};
  for (std::size_t i = first; i < first + count; ++i) Widen(box, middles[faces[i]]);
  const float x = box.High.x - box.Low.x, y = box.High.y - box.Low.y, z = box.High.z - box.Low.z;
  const auto key = [&](std::uint32_t face) {
    const Vector &m = middles[face];
    return x >= y && x >= z ? m.x : z >= y ? m.z : m.y;
  };
  // Halves are whole clusters, so that none is left half empty.
  const std::size_t clusters = (count + FacesInCluster - 1) / FacesInCluster;
  const std::size_t half = clusters / 2 * FacesInCluster;
  const auto begin = faces.begin() + static_cast<std::ptrdiff_t>(first);
  std::nth_element(begin, begin + static_cast<std::ptrdiff_t>(half),
                   begin + static_cast<std::ptrdiff_t>(count),
                   [&](std::uint32_t a, std::uint32_t b) { return key(a) < key(b); });
  SortByPlace(faces, first, half, middles);
  SortByPlace(faces, first + half, count - half, middles);
}

bool SameTurn(const Transform &a, const Transform &b) {
  return a.Right == b.Right && a.Up == b.Up && a.Direction == b.Direction;
}

} // namespace

bool Outside(const Bounds &box, const QMatrix4x4 &toClip) {
  int beyond[6] = {};
  for (int corner = 0; corner < 8; ++corner) {
    const QVector4D p =
        toClip * QVector4D(corner & 1 ? box.High.x : box.Low.x, corner & 2 ? box.High.y : box.Low.y,
                           corner & 4 ? box.High.z : box.Low.z, 1.0f);
    const float parts[] = {p.x(), p.y(), p.z()};
    for (int axis = 0; axis < 3; ++axis) {
      if (parts[axis] < -p.w()) ++beyond[2 * axis];
      if (parts[axis] > p.w()) ++beyond[2 * axis + 1];
    }
  }
  return std::ranges::find(beyond, 8) != std::end(beyond);
}

GpuMesh::GpuMesh(Gl &gl) : gl_(gl) {
  gl_.glGenVertexArrays(1, &array_);
  for (GLuint *buffer : {&positions_, &coordinates_, &light_, &indices_}) gl_.glGenBuffers(1, buffer);
  gl_.glBindVertexArray(array_);
  gl_.glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, indices_);
  gl_.glBindBuffer(GL_ARRAY_BUFFER, positions_);
  constexpr GLsizei Stride = sizeof(GpuVertex);
  gl_.glVertexAttribPointer(PositionSlot, 3, GL_FLOAT, GL_FALSE, Stride,
                            Offset(offsetof(GpuVertex, Position)));
  gl_.glVertexAttribPointer(NormalSlot, 3, GL_FLOAT, GL_FALSE, Stride, Offset(offsetof(GpuVertex, Normal)));
  gl_.glBindBuffer(GL_ARRAY_BUFFER, coordinates_);
  gl_.glVertexAttribPointer(CoordinateSlot, 2, GL_FLOAT, GL_FALSE, 0, nullptr);
  gl_.glBindBuffer(GL_ARRAY_BUFFER, light_);
  constexpr GLsizei LightStride = sizeof(VertexLight);
  gl_.glVertexAttribPointer(FillSlot, 4, GL_FLOAT, GL_FALSE, LightStride,
                            Offset(offsetof(VertexLight, Fill)));
  gl_.glVertexAttribPointer(KeySlot, 3, GL_FLOAT, GL_FALSE, LightStride, Offset(offsetof(VertexLight, Key)));
  for (const GLuint slot : {PositionSlot, NormalSlot, CoordinateSlot, FillSlot, KeySlot}) {
    gl_.glEnableVertexAttribArray(slot);
  }
}

GpuMesh::~GpuMesh() {
  for (const GLuint *buffer : {&positions_, &coordinates_, &light_, &indices_})
    gl_.glDeleteBuffers(1, buffer);
  gl_.glDeleteVertexArrays(1, &array_);
}

void GpuMesh::Upload(const Direct3DRMMeshBuilder3 &mesh, const Transform &place) {
  const bool reshaped = geometryRevision_ != mesh.GeometryRevision();
  if (reshaped) {
    geometryRevision_ = mesh.GeometryRevision();
    UploadGeometry(mesh.Data());
  }
  if (reshaped || coordinateRevision_ != mesh.TextureCoordinateRevision()) {
    coordinateRevision_ = mesh.TextureCoordinateRevision();
    UploadCoordinates(mesh.Data());
  }
  if (reshaped || litWith_ != mesh.Material().get() || !SameTurn(litAt_, place)) {
    litAt_ = place;
    litWith_ = mesh.Material().get();
    UploadLight(mesh.Data(), place, litWith_ ? litWith_->Emissive : ColorValue{});
  }
}

void GpuMesh::UploadGeometry(const MeshData &data) {
  const std::size_t faceCount = data.Indices.size() / 3;
  std::vector<std::uint32_t> faces(faceCount);
  std::iota(faces.begin(), faces.end(), 0U);
  std::vector<Vector> middles;
  middles.reserve(faceCount);
  for (std::size_t face = 0; face < faceCount; ++face) {
    Vector sum;
    for (std::size_t corner = 0; corner < 3; ++corner) {
      const Vector &v = data.Positions[data.Indices[3 * face + corner]];
      sum = {sum.x + v.x, sum.y + v.y, sum.z + v.z};
    }
    middles.push_back(sum);
  }
  SortByPlace(faces, 0, faceCount, middles);

  corners_.clear();
  clusters_.clear();
  std::map<std::tuple<std::uint32_t, float, float, float>, std::uint32_t> known;
  std::vector<GpuVertex> vertices;
  std::vector<std::uint32_t> indices;
  box_ = {data.Positions[data.Indices.front()], data.Positions[data.Indices.front()]};
  for (std::size_t i = 0; i < faceCount; ++i) {
    if (i % FacesInCluster == 0) {
      const Vector &first = data.Positions[data.Indices[3 * faces[i]]];
      clusters_.push_back({{first, first}, static_cast<GLsizei>(indices.size()), 0});
    }
    const FaceColor &color = data.FaceColors[faces[i]];
    for (std::size_t corner = 0; corner < 3; ++corner) {
      const std::uint32_t index = data.Indices[3 * faces[i] + corner];
      const auto [entry, isNew] = known.try_emplace({index, color.Red, color.Green, color.Blue},
                                                    static_cast<std::uint32_t>(vertices.size()));
      if (isNew) {
        corners_.push_back({index, color});
        vertices.push_back({data.Positions[index], data.Normals[index]});
      }
      indices.push_back(entry->second);
      Widen(clusters_.back().Box, data.Positions[index]);
    }
    clusters_.back().Count += 3;
  }
  for (const Cluster &cluster : clusters_) {
    Widen(box_, cluster.Box.Low);
    Widen(box_, cluster.Box.High);
  }
  gl_.glBindVertexArray(array_);
  gl_.glBindBuffer(GL_ARRAY_BUFFER, positions_);
  gl_.glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(vertices.size() * sizeof(GpuVertex)),
                   vertices.data(), GL_STATIC_DRAW);
  gl_.glBufferData(GL_ELEMENT_ARRAY_BUFFER, static_cast<GLsizeiptr>(indices.size() * sizeof(std::uint32_t)),
                   indices.data(), GL_STATIC_DRAW);
}

void GpuMesh::UploadCoordinates(const MeshData &data) {
  std::vector<TextureCoordinate> coordinates;
  coordinates.reserve(corners_.size());
  for (const Corner &corner : corners_) coordinates.push_back(data.TextureCoordinates[corner.Index]);
  gl_.glBindBuffer(GL_ARRAY_BUFFER, coordinates_);
  gl_.glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(coordinates.size() * sizeof(TextureCoordinate)),
                   coordinates.data(), GL_DYNAMIC_DRAW);
}

void GpuMesh::UploadLight(const MeshData &data, const Transform &place, const ColorValue &emissive) {
  std::vector<VertexLight> light;
  light.reserve(corners_.size());
  for (const Corner &corner : corners_) {
    const Vector &n = data.Normals[corner.Index];
    const Vector normal{place.Right.x * n.x + place.Up.x * n.y + place.Direction.x * n.z,
                        place.Right.y * n.x + place.Up.y * n.y + place.Direction.y * n.z,
                        place.Right.z * n.x + place.Up.z * n.y + place.Direction.z * n.z};
    FaceColor color = corner.Color;
    if (!data.VertexColors.empty()) {
      const FaceColor &own = data.VertexColors[corner.Index];
      color = {color.Red * own.Red, color.Green * own.Green, color.Blue * own.Blue, own.Alpha};
    }
    light.push_back(LightOf(normal, color, emissive));
  }
  gl_.glBindBuffer(GL_ARRAY_BUFFER, light_);
  gl_.glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(light.size() * sizeof(VertexLight)), light.data(),
                   GL_DYNAMIC_DRAW);
}

void GpuMesh::Draw(const QMatrix4x4 &toClip) {
  gl_.glBindVertexArray(array_);
  // Neighbours that show are drawn together.
  GLsizei first = 0, count = 0;
  const auto flush = [&] {
    if (count > 0) {
      gl_.glDrawElements(GL_TRIANGLES, count, GL_UNSIGNED_INT,
                         Offset(static_cast<std::size_t>(first) * sizeof(std::uint32_t)));
    }
    count = 0;
  };
  for (const Cluster &cluster : clusters_) {
    if (Outside(cluster.Box, toClip)) {
      flush();
      continue;
    }
    if (count == 0) first = cluster.First;
    count += cluster.Count;
  }
  flush();
}

GpuStore::~GpuStore() {
  for (const auto &[texture, name] : textures_) gl_.glDeleteTextures(1, &name);
}

GpuMesh &GpuStore::Mesh(const Ref<Direct3DRMMeshBuilder3> &mesh) {
  auto &entry = meshes_[mesh];
  if (!entry) entry = std::make_unique<GpuMesh>(gl_);
  return *entry;
}

GLuint GpuStore::Texture(const Ref<Direct3DRMTexture> &texture) {
  auto &name = textures_[texture];
  if (name != 0) return name;
  const ImageData &image = texture->Image();
  gl_.glGenTextures(1, &name);
  gl_.glBindTexture(GL_TEXTURE_2D, name);
  gl_.glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, image.Width, image.Height, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                   image.Pixels.data());
  gl_.glGenerateMipmap(GL_TEXTURE_2D);
  gl_.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR);
  gl_.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
  if (anisotropy_ > 1.0f) gl_.glTexParameterf(GL_TEXTURE_2D, AnisotropyParameter, anisotropy_);
  return name;
}

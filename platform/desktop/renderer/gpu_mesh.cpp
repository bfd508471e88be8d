#include "platform/desktop/renderer/gpu_mesh.h"

#include <algorithm>
#include <map>
#include <numeric>

namespace {

constexpr GLuint PositionSlot = 0, NormalSlot = 1, CoordinateSlot = 2, ShadeSlot = 3, LitSlot = 4,
                 AcrossSlot = 5;
constexpr std::size_t FacesInCluster = 192;

struct GpuVertex {
  Vector Position;
  Vector Normal;
};

const void *Offset(std::size_t bytes) { return reinterpret_cast<const void *>(bytes); }

/// Faces in an order in which neighbours follow each other: halved again and again across the longer side.
void SortByPlace(std::vector<std::uint32_t> &faces, std::size_t first, std::size_t count,
                 const std::vector<Vector> &middles) {
  if (count <= FacesInCluster) return;
  Bounds box(middles[faces[first]]);
  for (std::size_t i = first; i < first + count; ++i) box.Widen(middles[faces[i]]);
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

/// For each vertex of strokes of paint the way across its stroke, to the other side.
///
/// A stroke is a strip of quads, and its vertices have more than three edges but for those at its ends. The
/// way across is the shortest edge that two faces share; at an end, and in a stroke of a single quad, the
/// shortest of all.
std::vector<Vector> WaysAcross(const MeshData &data) {
  struct Edge {
    std::uint32_t To;
    bool Shared;
  };
  std::vector<std::vector<Edge>> edges(data.Positions.size());
  for (std::size_t i = 0; i < data.Indices.size(); ++i) {
    const std::size_t next = i % 3 == 2 ? i - 2 : i + 1;
    for (const auto &[from, to] :
         {std::pair(data.Indices[i], data.Indices[next]), std::pair(data.Indices[next], data.Indices[i])}) {
      const auto known = std::ranges::find(edges[from], to, &Edge::To);
      if (known == edges[from].end()) {
        edges[from].push_back({to, false});
      } else {
        known->Shared = true;
      }
    }
  }
  std::vector<Vector> across(data.Positions.size());
  for (std::size_t vertex = 0; vertex < edges.size(); ++vertex) {
    const Vector &at = data.Positions[vertex];
    const bool inside = edges[vertex].size() > 3;
    QVector3D shortest;
    for (const Edge &edge : edges[vertex]) {
      const Vector &to = data.Positions[edge.To];
      const QVector3D way(to.x - at.x, to.y - at.y, to.z - at.z);
      if ((edge.Shared || !inside) && (shortest.isNull() || way.length() < shortest.length())) shortest = way;
    }
    across[vertex] = {shortest.x(), shortest.y(), shortest.z()};
  }
  return across;
}

} // namespace

GpuMesh::GpuMesh(Gl &gl) : gl_(gl) {
  gl_.glGenVertexArrays(1, &array_);
  for (GLuint *buffer : {&positions_, &coordinates_, &light_, &indices_, &across_})
    gl_.glGenBuffers(1, buffer);
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
  gl_.glVertexAttribPointer(ShadeSlot, 4, GL_FLOAT, GL_FALSE, LightStride,
                            Offset(offsetof(VertexLight, Shade)));
  gl_.glVertexAttribPointer(LitSlot, 3, GL_FLOAT, GL_FALSE, LightStride, Offset(offsetof(VertexLight, Lit)));
  for (const GLuint slot : {PositionSlot, NormalSlot, CoordinateSlot, ShadeSlot, LitSlot}) {
    gl_.glEnableVertexAttribArray(slot);
  }
}

GpuMesh::~GpuMesh() {
  for (const GLuint *buffer : {&positions_, &coordinates_, &light_, &indices_, &across_})
    gl_.glDeleteBuffers(1, buffer);
  gl_.glDeleteVertexArrays(1, &array_);
}

void GpuMesh::Upload(const Direct3DRMMeshBuilder3 &mesh, const Transform &place) {
  const bool reshaped = geometryRevision_ != mesh.GeometryRevision();
  if (reshaped) {
    geometryRevision_ = mesh.GeometryRevision();
    UploadGeometry(mesh.Data());
    if (IsPaint(mesh)) UploadWaysAcross(mesh.Data());
  }
  if (reshaped || coordinateRevision_ != mesh.TextureCoordinateRevision()) {
    coordinateRevision_ = mesh.TextureCoordinateRevision();
    UploadCoordinates(mesh.Data());
  }
  if (reshaped || litWith_ != mesh.Material().get() || litAt_ != place) {
    litAt_ = place;
    litWith_ = mesh.Material().get();
    UploadLight(mesh, place);
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
  box_ = Bounds(data.Positions[data.Indices.front()]);
  for (std::size_t i = 0; i < faceCount; ++i) {
    if (i % FacesInCluster == 0) {
      const Vector &first = data.Positions[data.Indices[3 * faces[i]]];
      clusters_.push_back({Bounds(first), static_cast<GLsizei>(indices.size()), 0});
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
      clusters_.back().Box.Widen(data.Positions[index]);
    }
    clusters_.back().Count += 3;
  }
  for (const Cluster &cluster : clusters_) {
    box_.Widen(cluster.Box.Low);
    box_.Widen(cluster.Box.High);
  }
  gl_.glBindVertexArray(array_);
  gl_.glBindBuffer(GL_ARRAY_BUFFER, positions_);
  gl_.glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(vertices.size() * sizeof(GpuVertex)),
                   vertices.data(), GL_STATIC_DRAW);
  gl_.glBufferData(GL_ELEMENT_ARRAY_BUFFER, static_cast<GLsizeiptr>(indices.size() * sizeof(std::uint32_t)),
                   indices.data(), GL_STATIC_DRAW);
}

bool GpuMesh::IsPaint(const Direct3DRMMeshBuilder3 &mesh) const { return !mesh.Texture() && IsWide(box_); }

void GpuMesh::UploadWaysAcross(const MeshData &data) {
  const std::vector<Vector> all = WaysAcross(data);
  std::vector<Vector> across;
  for (const Corner &corner : corners_) across.push_back(all[corner.Index]);
  gl_.glBindVertexArray(array_);
  gl_.glBindBuffer(GL_ARRAY_BUFFER, across_);
  gl_.glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(across.size() * sizeof(Vector)), across.data(),
                   GL_STATIC_DRAW);
  gl_.glVertexAttribPointer(AcrossSlot, 3, GL_FLOAT, GL_FALSE, 0, nullptr);
  gl_.glEnableVertexAttribArray(AcrossSlot);
}

void GpuMesh::UploadCoordinates(const MeshData &data) {
  std::vector<TextureCoordinate> coordinates;
  coordinates.reserve(corners_.size());
  for (const Corner &corner : corners_) coordinates.push_back(data.TextureCoordinates[corner.Index]);
  gl_.glBindBuffer(GL_ARRAY_BUFFER, coordinates_);
  gl_.glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(coordinates.size() * sizeof(TextureCoordinate)),
                   coordinates.data(), GL_DYNAMIC_DRAW);
}

void GpuMesh::UploadLight(const Direct3DRMMeshBuilder3 &mesh, const Transform &place) {
  const MeshData &data = mesh.Data();
  const ColorValue emissive = mesh.Material() ? mesh.Material()->Emissive : ColorValue{};
  const bool pictured = mesh.Texture() != nullptr;
  const QMatrix4x4 toWorld = MatrixOf(place);
  const auto turned = [&](const Vector &v) {
    const QVector3D to = toWorld.mapVector(QVector3D(v.x, v.y, v.z));
    return Vector{to.x(), to.y(), to.z()};
  };
  std::vector<VertexLight> light;
  light.reserve(corners_.size());
  for (const Corner &corner : corners_) {
    FaceColor color = corner.Color;
    if (!data.VertexColors.empty()) {
      const FaceColor &own = data.VertexColors[corner.Index];
      color = {color.Red * own.Red, color.Green * own.Green, color.Blue * own.Blue, own.Alpha};
    }
    const Vector from = turned(data.Positions[corner.Index]);
    const Vector at{from.x + place.Origin.x, from.y + place.Origin.y, from.z + place.Origin.z};
    light.push_back(LightOf(at, turned(data.Normals[corner.Index]), color, emissive, pictured));
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

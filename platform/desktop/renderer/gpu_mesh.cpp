#include "platform/desktop/renderer/gpu_mesh.h"

#include <algorithm>

namespace {

struct GpuVertex {
  float Position[3];
  float Normal[3];
  float Color[3];
};

constexpr GLuint PositionSlot = 0, NormalSlot = 1, CoordinateSlot = 2, ColorSlot = 3;
constexpr GLenum AnisotropyParameter = 0x84FE; ///< of EXT_texture_filter_anisotropic

const void *Offset(std::size_t bytes) { return reinterpret_cast<const void *>(bytes); }

} // namespace

GpuMesh::GpuMesh(Gl &gl) : gl_(gl) {
  gl_.glGenVertexArrays(1, &array_);
  gl_.glGenBuffers(1, &geometry_);
  gl_.glGenBuffers(1, &coordinates_);
  gl_.glBindVertexArray(array_);
  gl_.glBindBuffer(GL_ARRAY_BUFFER, geometry_);
  constexpr GLsizei Stride = sizeof(GpuVertex);
  gl_.glVertexAttribPointer(PositionSlot, 3, GL_FLOAT, GL_FALSE, Stride,
                            Offset(offsetof(GpuVertex, Position)));
  gl_.glVertexAttribPointer(NormalSlot, 3, GL_FLOAT, GL_FALSE, Stride, Offset(offsetof(GpuVertex, Normal)));
  gl_.glVertexAttribPointer(ColorSlot, 3, GL_FLOAT, GL_FALSE, Stride, Offset(offsetof(GpuVertex, Color)));
  gl_.glBindBuffer(GL_ARRAY_BUFFER, coordinates_);
  gl_.glVertexAttribPointer(CoordinateSlot, 2, GL_FLOAT, GL_FALSE, 0, nullptr);
  for (const GLuint slot : {PositionSlot, NormalSlot, CoordinateSlot, ColorSlot})
    gl_.glEnableVertexAttribArray(slot);
}

GpuMesh::~GpuMesh() {
  gl_.glDeleteBuffers(1, &coordinates_);
  gl_.glDeleteBuffers(1, &geometry_);
  gl_.glDeleteVertexArrays(1, &array_);
}

void GpuMesh::Upload(const Direct3DRMMeshBuilder3 &mesh) {
  if (geometryRevision_ != mesh.GeometryRevision()) {
    geometryRevision_ = mesh.GeometryRevision();
    UploadGeometry(mesh.Data());
  }
  if (coordinateRevision_ != mesh.TextureCoordinateRevision()) {
    coordinateRevision_ = mesh.TextureCoordinateRevision();
    UploadCoordinates(mesh.Data());
  }
}

void GpuMesh::UploadGeometry(const MeshData &data) {
  std::vector<GpuVertex> vertices;
  vertices.reserve(data.Indices.size());
  box_ = {data.Positions.front(), data.Positions.front()};
  for (std::size_t i = 0; i < data.Indices.size(); ++i) {
    const std::uint32_t index = data.Indices[i];
    const Vector &p = data.Positions[index];
    const Vector &n = data.Normals[index];
    FaceColor color = data.FaceColors[i / 3];
    if (!data.VertexColors.empty()) {
      const FaceColor &own = data.VertexColors[index];
      color = {color.Red * own.Red, color.Green * own.Green, color.Blue * own.Blue};
    }
    vertices.push_back({{p.x, p.y, p.z}, {n.x, n.y, n.z}, {color.Red, color.Green, color.Blue}});
    box_.Low = {std::min(box_.Low.x, p.x), std::min(box_.Low.y, p.y), std::min(box_.Low.z, p.z)};
    box_.High = {std::max(box_.High.x, p.x), std::max(box_.High.y, p.y), std::max(box_.High.z, p.z)};
  }
  count_ = static_cast<GLsizei>(vertices.size());
  gl_.glBindBuffer(GL_ARRAY_BUFFER, geometry_);
  gl_.glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(vertices.size() * sizeof(GpuVertex)),
                   vertices.data(), GL_STATIC_DRAW);
}

void GpuMesh::UploadCoordinates(const MeshData &data) {
  std::vector<TextureCoordinate> coordinates;
  coordinates.reserve(data.Indices.size());
  for (const std::uint32_t index : data.Indices) coordinates.push_back(data.TextureCoordinates[index]);
  gl_.glBindBuffer(GL_ARRAY_BUFFER, coordinates_);
  gl_.glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(coordinates.size() * sizeof(TextureCoordinate)),
                   coordinates.data(), GL_DYNAMIC_DRAW);
}

void GpuMesh::Draw() {
  gl_.glBindVertexArray(array_);
  gl_.glDrawArrays(GL_TRIANGLES, 0, count_);
}

GpuStore::~GpuStore() {
  for (const auto &[texture, name] : textures_) gl_.glDeleteTextures(1, &name);
}

GpuMesh &GpuStore::Mesh(const Ref<Direct3DRMMeshBuilder3> &mesh) {
  auto &entry = meshes_[mesh];
  if (!entry) entry = std::make_unique<GpuMesh>(gl_);
  entry->Upload(*mesh);
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

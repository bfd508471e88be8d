#include "platform/desktop/renderer/gpu_mesh.h"

#include "platform/desktop/renderer/light.h"

#include <algorithm>
#include <span>
#include <utility>
#include <vector>

namespace {

constexpr GLuint PositionSlot = 0, NormalSlot = 1, CoordinateSlot = 2, LightSlot = 3;

/// Replaces what a buffer holds.
template <class T> void Fill(QOpenGLBuffer &buffer, const std::vector<T> &values) {
  buffer.bind();
  buffer.allocate(values.data(), static_cast<int>(values.size() * sizeof(T)));
}

/// Sets a variable and returns whether it has changed.
template <class T> bool Replace(T &variable, const T &value) {
  return std::exchange(variable, value) != value;
}

FaceColor ColorOf(const MeshData &data, std::size_t vertex) {
  const FaceColor &color = data.FaceColors[vertex];
  if (data.VertexColors.empty()) return color;
  const FaceColor &own = data.VertexColors[vertex];
  return {color.Red * own.Red, color.Green * own.Green, color.Blue * own.Blue, own.Alpha};
}

} // namespace

GpuMesh::GpuMesh(Gl &gl) : gl_(gl) {
  array_.create();
  for (QOpenGLBuffer *buffer : {&positions_, &normals_, &coordinates_, &light_, &indices_}) buffer->create();
  array_.bind();
  const auto attribute = [&](QOpenGLBuffer &buffer, GLuint slot, GLint size) {
    buffer.bind();
    gl_.glVertexAttribPointer(slot, size, GL_FLOAT, GL_FALSE, 0, nullptr);
    gl_.glEnableVertexAttribArray(slot);
  };
  indices_.bind();
  attribute(positions_, PositionSlot, 3);
  attribute(normals_, NormalSlot, 3);
  attribute(coordinates_, CoordinateSlot, 2);
  attribute(light_, LightSlot, 4);
}

bool GpuMesh::Upload(const Direct3DRMMeshBuilder3 &mesh, const QMatrix4x4 &toWorld) {
  const bool reshaped = Replace(geometry_, mesh.GeometryRevision());
  const bool remapped = Replace(mapping_, mesh.TextureCoordinateRevision()) || reshaped;
  const bool relit = Replace(litBy_, {mesh.Texture().get(), mesh.Material().get(), toWorld}) || reshaped;
  if (reshaped) UploadGeometry(mesh.Data());
  if (remapped) Fill(coordinates_, mesh.Data().TextureCoordinates);
  if (relit) UploadLight(mesh, toWorld);
  paint_ = !mesh.Texture() && box_.IsWide();
  return remapped || relit;
}

void GpuMesh::UploadGeometry(const MeshData &data) {
  box_ = Bounds::Of(data);
  std::vector<std::uint32_t> plain, indices;
  for (std::size_t i = 0; i < data.Indices.size(); i += 3) {
    const std::span face(&data.Indices[i], 3);
    const bool isPlain =
        std::ranges::all_of(face, [&](std::uint32_t index) { return ColorOf(data, index).Alpha == 0.0f; });
    std::vector<std::uint32_t> &to = isPlain ? plain : indices;
    to.insert(to.end(), face.begin(), face.end());
  }
  plainCount_ = static_cast<GLsizei>(plain.size());
  indices.insert(indices.begin(), plain.begin(), plain.end());
  indexCount_ = static_cast<GLsizei>(indices.size());
  array_.bind(); // stores the index buffer's binding
  Fill(positions_, data.Positions);
  Fill(normals_, data.Normals);
  Fill(indices_, indices);
}

void GpuMesh::UploadLight(const Direct3DRMMeshBuilder3 &mesh, const QMatrix4x4 &toWorld) {
  const MeshData &data = mesh.Data();
  const ColorValue emissive = mesh.Material() ? mesh.Material()->Emissive : ColorValue{};
  const bool textured = mesh.Texture() != nullptr;
  std::vector<QVector4D> light;
  for (std::size_t vertex = 0; vertex < data.Positions.size(); ++vertex) {
    light.push_back(LightOf(toWorld.map(ToQt(data.Positions[vertex])),
                            toWorld.mapVector(ToQt(data.Normals[vertex])), ColorOf(data, vertex), emissive,
                            textured));
  }
  Fill(light_, light);
}

void GpuMesh::Draw(Faces faces) {
  const GLsizei first = faces == Faces::Textured ? plainCount_ : 0;
  const GLsizei end = faces == Faces::Plain ? plainCount_ : indexCount_;
  if (first == end) return;
  array_.bind();
  gl_.glDrawElements(GL_TRIANGLES, end - first, GL_UNSIGNED_INT,
                     reinterpret_cast<const void *>(static_cast<std::size_t>(first) * sizeof(std::uint32_t)));
}

#pragma once

// Meshes: vertices and faces that are changed in place, with colour, texture, material, texture coordinates
// and a name.

#include "scene/graph/ref.h"
#include "scene/graph/surface.h"
#include "scene/graph/triangle_tree.h"
#include "scene/graph/vector.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

/// Counts the changes of a graph that can show. All objects of a graph share one.
class GraphRevision {
public:
  void Raise() const { ++*count_; }
  std::uint64_t Count() const { return *count_; }

private:
  Ref<std::uint64_t> count_ = std::make_shared<std::uint64_t>(0);
};

class Direct3DRMVisual {
public:
  virtual ~Direct3DRMVisual() = default;
  const std::string &GetName() const { return name_; }

protected:
  std::string name_;
};

struct FaceColor {
  float Red = 1, Green = 1, Blue = 1;
  float Alpha = 1; ///< how much of the texture shows: 1 all of it, 0 the plain colour
  bool operator==(const FaceColor &) const = default;
};

struct TextureCoordinate {
  float u = 0;
  float v = 0;
  bool operator==(const TextureCoordinate &) const = default;
};

/// What a mesh file holds, in the file's units.
struct MeshData {
  std::vector<Vector> Positions;
  std::vector<Vector> Normals;                       ///< unit length, one a vertex
  std::vector<TextureCoordinate> TextureCoordinates; ///< one a vertex
  std::vector<FaceColor> VertexColors;               ///< one a vertex, or none at all
  std::vector<std::uint32_t> Indices;                ///< three a face
  std::vector<FaceColor> FaceColors;                 ///< one a face
};

/// Reads a DirectX mesh file. Files are read once, until `ForgetFiles`.
/// @throws SceneError  that names the file and says why
Ref<const MeshData> ReadMeshFile(const std::filesystem::path &file);

/// Makes sure that a mesh file could be read, for less than reading it costs.
/// @throws FileError  that names the file and says why
void CheckMeshFile(const std::filesystem::path &file);

class Direct3DRMMeshBuilder3 : public Direct3DRMVisual {
public:
  explicit Direct3DRMMeshBuilder3(GraphRevision revision) : revision_(std::move(revision)) {}

  /// Fills the empty mesh from a file.
  /// @throws SceneError  if it can't be read
  void LoadFromFile(const std::filesystem::path &file, std::int16_t id = 0, std::int32_t flags = 0);

  void ScaleMesh(float sx, float sy, float sz); ///< multiplies every vertex, in place
  void Translate(float x, float y, float z);    ///< adds to every vertex, in place
  void SetColorRGB(float r, float g, float b);  ///< colours all faces, 0 to 1
  void SetMaterial(const Ref<Direct3DRMMaterial2> &material);
  void SetTexture(const Ref<Direct3DRMTexture> &texture);
  void SetName(const std::string &name) { name_ = name; }

  // For whoever draws, wraps or picks.
  const MeshData &Data() const { return data_; }
  const Ref<Direct3DRMMaterial2> &Material() const { return material_; }
  const Ref<Direct3DRMTexture> &Texture() const { return texture_; }
  std::uint64_t GeometryRevision() const { return geometryRevision_; } ///< of vertices, faces and colours
  std::uint64_t TextureCoordinateRevision() const { return coordinateRevision_; }

  void SetTextureCoordinates(std::vector<TextureCoordinate> coordinates);

  /// Where a ray told in the mesh's coordinates meets the nearest face, in lengths of its direction.
  std::optional<double> Intersect(const D3DRMRAY &ray);

  /// Counts the frames in which the mesh hangs: what hangs nowhere doesn't show.
  void Attached(int frames) { attached_ += frames; }

private:
  void Changed() const {
    if (attached_ > 0) revision_.Raise();
  }
  void ChangedGeometry();

  GraphRevision revision_;
  MeshData data_;
  TriangleTree tree_;
  bool treeFits_ = false;
  Ref<Direct3DRMMaterial2> material_;
  Ref<Direct3DRMTexture> texture_;
  std::uint64_t geometryRevision_ = 0;
  std::uint64_t coordinateRevision_ = 0;
  int attached_ = 0;
};

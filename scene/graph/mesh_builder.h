#pragma once

// Meshes: vertices and faces that can be modified, with colour, texture, material, texture coordinates and a
// name.

#include "scene/graph/ref.h"
#include "scene/graph/surface.h"
#include "scene/graph/triangle_tree.h"
#include "scene/graph/vector.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

/// Counts the visible changes of a graph. All objects of a graph share one.
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
  float Alpha = 1; ///< weight of the texture: 1 full texture, 0 plain colour
  bool operator==(const FaceColor &) const = default;
};

struct TextureCoordinate {
  float u = 0;
  float v = 0;
  bool operator==(const TextureCoordinate &) const = default;
};

/// The contents of a mesh file, in its units.
struct MeshData {
  std::vector<Vector> Positions;
  std::vector<Vector> Normals;                       ///< unit length, one per vertex
  std::vector<TextureCoordinate> TextureCoordinates; ///< one per vertex
  std::vector<FaceColor> VertexColors;               ///< one per vertex, or none
  std::vector<FaceColor> FaceColors;                 ///< of the faces around a vertex, one per vertex
  std::vector<std::uint32_t> Indices;                ///< three per face
};

/// Reads a DirectX mesh file. Cached until `ClearFileCache`.
/// @throws SceneError  if it can't be read; names the file and says why
Ref<const MeshData> ReadMeshFile(const std::filesystem::path &file);

/// Checks that a mesh file is readable, without fully reading it.
/// @throws FileError  if it isn't; names the file and says why
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

  // For the renderer, wraps and picking.
  const MeshData &Data() const { return data_; }
  const Ref<Direct3DRMMaterial2> &Material() const { return material_; }
  const Ref<Direct3DRMTexture> &Texture() const { return texture_; }
  std::uint64_t GeometryRevision() const { return geometryRevision_; } ///< of vertices, faces and colours
  std::uint64_t TextureCoordinateRevision() const { return coordinateRevision_; }

  void SetTextureCoordinates(std::vector<TextureCoordinate> coordinates);

  /// Distance to the nearest face hit by a ray in the mesh's coordinates, in lengths of its direction.
  std::optional<double> Intersect(const D3DRMRAY &ray);

  /// Counts the frames that the mesh is attached to. A mesh without a frame is invisible.
  void CountFrames(int frames) { attached_ += frames; }

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

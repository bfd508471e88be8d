// Mesh files: read by the mesh library and converted to the graph's format.

#include "scene/graph/parsing.h"
#include "scene/graph/scene_error.h"

#include <assimp/Importer.hpp>
#include <assimp/postprocess.h>
#include <assimp/scene.h>

#include <cmath>

namespace {

constexpr float SmoothAngle = 60.0f;   ///< maximum angle between faces with smooth normals, degrees
constexpr float FarthestVertex = 1e6f; ///< from the origin on each axis, in the file's units

Vector Convert(const aiVector3D &v) { return {v.x, v.y, v.z}; }

bool Bounded(float value) { return std::abs(value) <= FarthestVertex; } // false for NaN

/// Appends a mesh, all of whose faces have one material.
void Append(const aiMesh &mesh, const aiScene &scene, bool colored, MeshData &data) {
  const auto base = static_cast<std::uint32_t>(data.Positions.size());
  // Vertex colours replace face colours.
  aiColor4D diffuse(1, 1, 1, 1);
  if (!colored && mesh.mMaterialIndex < scene.mNumMaterials) {
    scene.mMaterials[mesh.mMaterialIndex]->Get(AI_MATKEY_COLOR_DIFFUSE, diffuse);
  }
  for (unsigned i = 0; i < mesh.mNumVertices; ++i) {
    const Vector v = Convert(mesh.mVertices[i]);
    if (!Bounded(v.x) || !Bounded(v.y) || !Bounded(v.z)) {
      throw SceneError("not a mesh file: a vertex is too far from the origin");
    }
    data.Positions.push_back(v);
    const Vector normal = mesh.mNormals ? Convert(mesh.mNormals[i]) : Vector{0, 1, 0};
    if (!Bounded(normal.x) || !Bounded(normal.y) || !Bounded(normal.z)) {
      throw SceneError("not a mesh file: a normal is out of range");
    }
    data.Normals.push_back(normal);
    const aiVector3D *coordinates = mesh.mTextureCoords[0];
    data.TextureCoordinates.push_back(coordinates ? TextureCoordinate{coordinates[i].x, coordinates[i].y}
                                                  : TextureCoordinate{});
    data.FaceColors.push_back({diffuse.r, diffuse.g, diffuse.b});
    if (colored) {
      const aiColor4D *colors = mesh.mColors[0];
      data.VertexColors.push_back(colors ? FaceColor{colors[i].r, colors[i].g, colors[i].b, colors[i].a}
                                         : FaceColor{});
    }
  }
  for (unsigned i = 0; i < mesh.mNumFaces; ++i) {
    const aiFace &face = mesh.mFaces[i];
    if (face.mNumIndices != 3) continue; // points and lines
    for (unsigned corner = 0; corner < 3; ++corner) {
      if (face.mIndices[corner] >= mesh.mNumVertices)
        throw SceneError("not a mesh file: a face refers to a missing vertex");
      data.Indices.push_back(base + face.mIndices[corner]);
    }
  }
}

} // namespace

MeshData ParseMesh(std::span<const char> bytes) {
  const std::string plain = PlainMesh(bytes);
  Assimp::Importer importer;
  importer.SetPropertyFloat(AI_CONFIG_PP_GSN_MAX_SMOOTHING_ANGLE, SmoothAngle);
  const aiScene *scene = importer.ReadFileFromMemory(
      plain.data(), plain.size(),
      aiProcess_ConvertToLeftHanded | aiProcess_Triangulate | aiProcess_PreTransformVertices |
          aiProcess_GenSmoothNormals | aiProcess_JoinIdenticalVertices,
      "x");
  if (!scene) throw SceneError(std::string("not a mesh file: ") + importer.GetErrorString());
  bool colored = false;
  for (unsigned i = 0; i < scene->mNumMeshes; ++i) colored = colored || scene->mMeshes[i]->HasVertexColors(0);
  MeshData data;
  for (unsigned i = 0; i < scene->mNumMeshes; ++i) Append(*scene->mMeshes[i], *scene, colored, data);
  if (data.Indices.empty()) throw SceneError("not a mesh file: it has no faces");
  return data;
}

// The files of models and textures, each read once and shared by everybody after that.

#include "scene/graph/mesh_builder.h"
#include "scene/graph/scene_error.h"

#include <assimp/Importer.hpp>
#include <assimp/postprocess.h>
#include <assimp/scene.h>

#define STB_IMAGE_IMPLEMENTATION
#define STBI_ONLY_BMP
#define STBI_NO_STDIO
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wsign-conversion"
#pragma GCC diagnostic ignored "-Wshadow"
#pragma GCC diagnostic ignored "-Wunused-function"
#pragma GCC diagnostic ignored "-Wpedantic"
#include <stb/stb_image.h>
#pragma GCC diagnostic pop

#include <cmath>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>

namespace {

constexpr std::size_t LargestFile = 64UL << 20; ///< bytes
constexpr float SmoothAngle = 60.0f; ///< degrees between faces up to which a missing normal is smooth

[[noreturn]] void Refuse(const std::filesystem::path &file, const std::string &why) {
  throw SceneError('"' + file.filename().string() + "\": " + why);
}

std::vector<char> ReadAll(const std::filesystem::path &file) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream) Refuse(file, "can't be opened");
  std::vector<char> bytes{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
  if (bytes.empty()) Refuse(file, "is empty");
  if (bytes.size() > LargestFile) Refuse(file, "is too large");
  return bytes;
}

Vector Convert(const aiVector3D &v) { return {v.x, v.y, v.z}; }

void Append(const std::filesystem::path &file, const aiMesh &mesh, const aiScene &scene, bool colored,
            MeshData &data) {
  const auto base = static_cast<std::uint32_t>(data.Positions.size());
  for (unsigned i = 0; i < mesh.mNumVertices; ++i) {
    const Vector v = Convert(mesh.mVertices[i]);
    if (!std::isfinite(v.x) || !std::isfinite(v.y) || !std::isfinite(v.z)) {
      Refuse(file, "not a mesh file: a vertex isn't finite");
    }
    data.Positions.push_back(v);
    data.Normals.push_back(mesh.mNormals ? Convert(mesh.mNormals[i]) : Vector{0, 1, 0});
    const aiVector3D *coordinates = mesh.mTextureCoords[0];
    data.TextureCoordinates.push_back(coordinates ? TextureCoordinate{coordinates[i].x, coordinates[i].y}
                                                  : TextureCoordinate{});
    if (colored) {
      const aiColor4D *colors = mesh.mColors[0];
      data.VertexColors.push_back(colors ? FaceColor{colors[i].r, colors[i].g, colors[i].b, colors[i].a}
                                         : FaceColor{});
    }
  }
  // A file that colours its vertices has said all that it wants to say of colours.
  aiColor4D diffuse(1, 1, 1, 1);
  if (!colored && mesh.mMaterialIndex < scene.mNumMaterials) {
    scene.mMaterials[mesh.mMaterialIndex]->Get(AI_MATKEY_COLOR_DIFFUSE, diffuse);
  }
  for (unsigned i = 0; i < mesh.mNumFaces; ++i) {
    const aiFace &face = mesh.mFaces[i];
    if (face.mNumIndices != 3) continue; // points and lines have no surface
    for (unsigned corner = 0; corner < 3; ++corner) {
      if (face.mIndices[corner] >= mesh.mNumVertices) Refuse(file, "not a mesh file: a face names no vertex");
      data.Indices.push_back(base + face.mIndices[corner]);
    }
    data.FaceColors.push_back({diffuse.r, diffuse.g, diffuse.b});
  }
}

MeshData ParseMesh(const std::filesystem::path &file) {
  const std::vector<char> bytes = ReadAll(file);
  Assimp::Importer importer;
  importer.SetPropertyFloat(AI_CONFIG_PP_GSN_MAX_SMOOTHING_ANGLE, SmoothAngle);
  const aiScene *scene = importer.ReadFileFromMemory(
      bytes.data(), bytes.size(),
      aiProcess_ConvertToLeftHanded | aiProcess_Triangulate | aiProcess_PreTransformVertices |
          aiProcess_GenSmoothNormals | aiProcess_JoinIdenticalVertices,
      "x");
  if (!scene) Refuse(file, std::string("not a mesh file: ") + importer.GetErrorString());
  bool colored = false;
  for (unsigned i = 0; i < scene->mNumMeshes; ++i) colored = colored || scene->mMeshes[i]->HasVertexColors(0);
  MeshData data;
  for (unsigned i = 0; i < scene->mNumMeshes; ++i) Append(file, *scene->mMeshes[i], *scene, colored, data);
  if (data.Indices.empty()) Refuse(file, "not a mesh file: it has no faces");
  return data;
}

/// Whether a bitmap file reaches to the end of its pixels: the decoder fills up what was cut off.
bool IsWhole(const std::vector<char> &bytes, const ImageData &image) {
  constexpr std::size_t PixelsAt = 10, DepthAt = 28; // places in the header
  const auto number = [&](std::size_t at, std::size_t count) {
    std::size_t value = 0;
    for (std::size_t i = count; i > 0; --i)
      value = value << 8 | static_cast<unsigned char>(bytes[at + i - 1]);
    return value;
  };
  // A row is filled up to whole groups of 32 bits.
  const std::size_t row = (static_cast<std::size_t>(image.Width) * number(DepthAt, 2) + 31) / 32 * 4;
  return bytes.size() >= number(PixelsAt, 4) + row * static_cast<std::size_t>(image.Height);
}

ImageData ParseImage(const std::filesystem::path &file) {
  const std::vector<char> bytes = ReadAll(file);
  ImageData image;
  int channels = 0;
  stbi_uc *pixels =
      stbi_load_from_memory(reinterpret_cast<const stbi_uc *>(bytes.data()), static_cast<int>(bytes.size()),
                            &image.Width, &image.Height, &channels, STBI_rgb_alpha);
  if (!pixels) Refuse(file, std::string("not a bitmap: ") + stbi_failure_reason());
  const std::unique_ptr<stbi_uc, decltype(&stbi_image_free)> owner(pixels, stbi_image_free);
  if (!IsWhole(bytes, image)) Refuse(file, "not a whole bitmap: its end is missing");
  const auto count = static_cast<std::size_t>(image.Width) * static_cast<std::size_t>(image.Height) * 4;
  image.Pixels.assign(pixels, pixels + count);
  return image;
}

/// What a file held when it was read.
template <class Data> struct Entry {
  std::filesystem::file_time_type Time;
  std::uintmax_t Size;
  Ref<const Data> Content;
};

template <class Data> std::map<std::filesystem::path, Entry<Data>> &Entries() {
  static std::map<std::filesystem::path, Entry<Data>> entries;
  return entries;
}

/// What `parse` made of the file when it was read first. A file that has changed since is read again.
template <class Data>
Ref<const Data> ReadOnce(const std::filesystem::path &file, Data (*parse)(const std::filesystem::path &)) {
  std::error_code error;
  const auto time = std::filesystem::last_write_time(file, error);
  if (error) Refuse(file, "can't be found");
  const auto size = std::filesystem::file_size(file, error);
  if (error) Refuse(file, "not a file");
  Entry<Data> &entry = Entries<Data>()[file];
  if (!entry.Content || entry.Time != time || entry.Size != size) {
    entry = {time, size, std::make_shared<const Data>(parse(file))};
  }
  return entry.Content;
}

} // namespace

Ref<const MeshData> ReadMeshFile(const std::filesystem::path &file) {
  return ReadOnce<MeshData>(file, ParseMesh);
}

Ref<const ImageData> ReadImageFile(const std::filesystem::path &file) {
  return ReadOnce<ImageData>(file, ParseImage);
}

void ForgetFiles() {
  Entries<MeshData>().clear();
  Entries<ImageData>().clear();
}

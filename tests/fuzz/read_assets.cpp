// Models and bitmaps from arbitrary bytes: each is either rejected or consistent.

#include "tests/fuzz/hostile_bytes.h"

#include "scene/graph/parsing.h"
#include "scene/graph/scene_error.h"

#include <algorithm>
#include <cmath>

namespace fuzz {
namespace {

std::span<const char> AsText(session::ByteView bytes) {
  return {reinterpret_cast<const char *>(bytes.data()), bytes.size()};
}

} // namespace

bool ReadModel(session::ByteView bytes) {
  MeshData mesh;
  try {
    mesh = ParseMesh(AsText(bytes));
  } catch (const SceneError &) {
    return false;
  }
  const std::size_t vertices = mesh.Positions.size();
  Require(mesh.Normals.size() == vertices, "a vertex has a normal");
  Require(mesh.TextureCoordinates.size() == vertices, "a vertex has its place on the texture");
  Require(mesh.VertexColors.empty() || mesh.VertexColors.size() == vertices,
          "all vertices have a colour or none");
  Require(!mesh.Indices.empty() && mesh.Indices.size() == 3 * mesh.FaceColors.size(),
          "a face has three corners");
  Require(std::ranges::all_of(mesh.Indices, [&](std::uint32_t index) { return index < vertices; }),
          "a corner is a vertex");
  const auto finite = [](const Vector &v) {
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
  };
  Require(std::ranges::all_of(mesh.Positions, finite), "a vertex lies somewhere");
  Require(std::ranges::all_of(mesh.Normals, finite), "a normal points somewhere");
  return true;
}

bool ReadBitmap(session::ByteView bytes) {
  ImageData image;
  try {
    image = ParseImage(AsText(bytes));
  } catch (const SceneError &) {
    return false;
  }
  Require(image.Width > 0 && image.Height > 0, "a picture has pixels");
  Require(image.Pixels.size() ==
              4 * static_cast<std::size_t>(image.Width) * static_cast<std::size_t>(image.Height),
          "a picture has as many pixels as it says");
  return true;
}

} // namespace fuzz

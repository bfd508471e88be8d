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
  Require(mesh.Normals.size() == vertices, "one normal per vertex");
  Require(mesh.TextureCoordinates.size() == vertices, "one texture coordinate per vertex");
  Require(mesh.VertexColors.empty() || mesh.VertexColors.size() == vertices,
          "one colour per vertex, or none");
  Require(mesh.FaceColors.size() == vertices, "one face colour per vertex");
  Require(!mesh.Indices.empty() && mesh.Indices.size() % 3 == 0,
          "three indices per face, and at least one face");
  Require(std::ranges::all_of(mesh.Indices, [&](std::uint32_t index) { return index < vertices; }),
          "every index is below the number of vertices");
  const auto finite = [](const Vector &v) {
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
  };
  Require(std::ranges::all_of(mesh.Positions, finite), "finite positions");
  Require(std::ranges::all_of(mesh.Normals, finite), "finite normals");
  return true;
}

bool ReadBitmap(session::ByteView bytes) {
  ImageData image;
  try {
    image = ParseImage(AsText(bytes));
  } catch (const SceneError &) {
    return false;
  }
  Require(image.Width > 0 && image.Height > 0, "a positive width and height");
  Require(image.Pixels.size() ==
              4 * static_cast<std::size_t>(image.Width) * static_cast<std::size_t>(image.Height),
          "as many pixels as width times height");
  return true;
}

} // namespace fuzz

#pragma once

// What stands in the files of models and textures, read from memory. All functions throw `SceneError` that
// says what is wrong.

#include "scene/graph/mesh_builder.h"

#include <span>
#include <string>

/// The same mesh file without names, comments and whatever else the game doesn't need, all numbers as they
/// are. Makes sure that the file is true to itself: as many vertices, faces, normals and colours as it says,
/// and no index beyond them.
std::string PlainMesh(std::span<const char> bytes);

MeshData ParseMesh(std::span<const char> bytes);

/// Size of a bitmap, pixels.
struct BitmapSize {
  int Width = 0;
  int Height = 0;
};

/// Whether a bitmap of 24 or 32 bits is whole. What the pixels are doesn't matter.
BitmapSize CheckBitmap(std::span<const char> bytes);

ImageData ParseImage(std::span<const char> bytes);

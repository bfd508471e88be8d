#pragma once

// Parsing of model and texture files in memory. All functions throw `SceneError`, which says what is wrong.

#include "scene/graph/mesh_builder.h"

#include <span>
#include <string>

/// Rewrites a mesh file without names, comments and other data that the game doesn't need, keeping all
/// numbers. Checks its consistency: the declared numbers of vertices, faces, normals and colours, and the
/// range of indices.
std::string PlainMesh(std::span<const char> bytes);

MeshData ParseMesh(std::span<const char> bytes);

/// Size of a bitmap, pixels.
struct BitmapSize {
  int Width = 0;
  int Height = 0;
};

/// Checks that a bitmap of 24 or 32 bits is complete, without decoding it.
BitmapSize CheckBitmap(std::span<const char> bytes);

ImageData ParseImage(std::span<const char> bytes);

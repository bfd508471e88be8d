#pragma once

// Materials and textures.

#include "scene/graph/ref.h"

#include <cstdint>
#include <filesystem>
#include <utility>
#include <vector>

/// A colour, channels from 0 to 1.
struct ColorValue {
  float Red = 0, Green = 0, Blue = 0;
};

/// Only Specular and Emissive are drawn. A change after the first frame isn't seen.
class Direct3DRMMaterial2 {
public:
  explicit Direct3DRMMaterial2(float power) : Power(power) {}

  void SetPower(float power) { Power = power; }
  void SetSpecular(float r, float g, float b) { Specular = {r, g, b}; }
  void SetEmissive(float r, float g, float b) { Emissive = {r, g, b}; }
  void SetAmbient(float r, float g, float b) { Ambient = {r, g, b}; }

  float Power;
  ColorValue Specular;
  ColorValue Emissive;
  ColorValue Ambient;
};

/// A decoded image: four bytes per pixel (red, green, blue, alpha), top row first.
struct ImageData {
  int Width = 0;
  int Height = 0;
  std::vector<std::uint8_t> Pixels;
};

/// Reads a bitmap. Cached until `ClearFileCache`.
/// @throws SceneError  if it can't be read; names the file and says why
Ref<const ImageData> ReadImageFile(const std::filesystem::path &file);

/// Checks that a bitmap is readable.
/// @throws FileError  if it isn't; names the file and says why
void CheckImageFile(const std::filesystem::path &file);

class Direct3DRMTexture {
public:
  /// @throws SceneError  if the file can't be read
  explicit Direct3DRMTexture(std::filesystem::path file)
      : file_(std::move(file)), image_(ReadImageFile(file_)) {}

  /// The image; after `ReleaseImage` it is read from the file again.
  Ref<const ImageData> Image() const { return image_ ? image_ : ReadImageFile(file_); }

  /// Frees the image, once the renderer has uploaded it.
  void ReleaseImage() { image_.reset(); }

private:
  std::filesystem::path file_;
  Ref<const ImageData> image_;
};

/// Clears the cache of files. Meshes and textures keep their own data.
void ClearFileCache();

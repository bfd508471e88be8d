#pragma once

// How a surface looks: materials and textures.

#include "scene/graph/ref.h"

#include <cstdint>
#include <filesystem>
#include <utility>
#include <vector>

/// Colour parts from 0 to 1.
struct ColorValue {
  float Red = 0, Green = 0, Blue = 0;
};

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

/// An image as a file holds it: four bytes a pixel (red, green, blue, alpha), top row first.
struct ImageData {
  int Width = 0;
  int Height = 0;
  std::vector<std::uint8_t> Pixels;
};

/// Reads a bitmap. Files are read once, until `ForgetFiles`.
/// @throws SceneError  that names the file and says why
Ref<const ImageData> ReadImageFile(const std::filesystem::path &file);

/// Makes sure that a bitmap could be read.
/// @throws FileError  that names the file and says why
void CheckImageFile(const std::filesystem::path &file);

class Direct3DRMTexture {
public:
  /// @throws SceneError  if the file can't be read
  explicit Direct3DRMTexture(std::filesystem::path file)
      : file_(std::move(file)), image_(ReadImageFile(file_)) {}

  /// The image, read again if it was given back.
  Ref<const ImageData> Image() const { return image_ ? image_ : ReadImageFile(file_); }

  /// Whoever draws has uploaded the image: it needn't be kept in memory twice.
  void GiveBack() { image_.reset(); }

private:
  std::filesystem::path file_;
  Ref<const ImageData> image_;
};

/// Lets go of all that was kept of files, beside what meshes and textures hold themselves.
void ForgetFiles();

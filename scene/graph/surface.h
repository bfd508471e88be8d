#pragma once

// How a surface looks: materials and textures.

#include "scene/graph/ref.h"

#include <cstdint>
#include <filesystem>
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

/// Reads a bitmap. Files are read once a process.
/// @throws SceneError  that names the file and says why
Ref<const ImageData> ReadImageFile(const std::filesystem::path &file);

class Direct3DRMTexture {
public:
  explicit Direct3DRMTexture(Ref<const ImageData> image) : image_(std::move(image)) {}
  const ImageData &Image() const { return *image_; }

private:
  Ref<const ImageData> image_;
};

// Writes the four textures into a directory.

#include "assets/textures/canvas.h"

#include <iostream>

int main(int argc, char **argv) {
  if (argc != 2) {
    std::cerr << "usage: make_textures DIRECTORY" << std::endl;
    return 2;
  }
  try {
    const std::filesystem::path directory = argv[1];
    textures::Grass().Write(directory / "grass.dab");
    textures::Sky().Write(directory / "sky.dab");
    textures::Crowd().Write(directory / "crowd2.dab");
    textures::Paper().Write(directory / "loose.dab");
  } catch (const std::exception &error) {
    std::cerr << "make_textures: " << error.what() << std::endl;
    return 1;
  }
}

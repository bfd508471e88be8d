// Writes the sounds into a directory. The build takes the names of its files from here.

#include "assets/sounds/sounds.h"

#include <iostream>

int main(int argc, char **argv) {
  if (argc != 2) {
    std::cerr << "usage: make_sounds DIRECTORY" << std::endl;
    return 2;
  }
  try {
    const std::filesystem::path directory = argv[1];
    const auto write = [&](const char *name, const sounds::Signal &signal) {
      sounds::Write(signal, directory / name);
    };
    write("crowd.daw", sounds::Crowd(12.7, 101));
    write("crowd2.daw", sounds::Crowd(14.9, 202));
    write("yeah.daw", sounds::Cheer());
    write("yeah2.daw", sounds::LargeCheer());
    write("boo.daw", sounds::Boo());
    write("theme.daw", sounds::Theme());
    write("guit2.daw", sounds::Sting());
    write("swoosh.daw", sounds::Swoosh());
    write("wis1.daw", sounds::ShortWhistle());
    write("wis2.daw", sounds::LongWhistle());
    write("wis3.daw", sounds::FinalWhistle());
  } catch (const std::exception &error) {
    std::cerr << "make_sounds: " << error.what() << std::endl;
    return 1;
  }
}

// Writes the models into a directory. Factors and offsets are those that the game applies to each model.

#include "models.h"

#include <iostream>

int main(int argc, char **argv) {
  if (argc != 2) {
    std::cerr << "usage: make_models DIRECTORY" << std::endl;
    return 2;
  }
  try {
    const std::filesystem::path directory = argv[1];
    const auto write = [&](const char *file, const char *name, const Mesh &mesh, const Point &factors,
                           const Point &offset = {}) {
      mesh.Write(directory / file, name, {factors, offset});
    };
    const auto even = [](double factor) { return Point{factor, factor, factor}; };
    write("fb.dax", "Piece", MakePiece(), even(0.03));
    write("table.dax", "Table", MakeTable(), even(0.5));
    write("bonus.dax", "Bonus", MakeBonus(), even(0.08), {0.0, 0.05, 0.0});
    write("extra.dax", "Extra", MakeExtra(), even(0.08), {0.0, 0.3, 0.0});
    write("dir.dax", "Arrow", MakeArrow(), even(0.05), {0.0, 0.0, 5.0});
    write("goal.dax", "Goal", MakeGoal(), even(0.3));
    write("stadium4.dax", "Stadium", MakeStadium(), {1.6, 1.2, 1.6}, {0.0, 10.0, 0.0});
    write("lines.dax", "Lines", MakeLines(), even(0.43), {0.0, 0.0, 9.0});
  } catch (const std::exception &error) {
    std::cerr << "make_models: " << error.what() << std::endl;
    return 1;
  }
}

// Writes the model files of the game to a directory. Factors and offsets are those that the game applies to
// each model.

#include "models.h"

#include <cstdio>
#include <exception>

namespace {

struct Model {
  const char *file;
  const char *name;
  Mesh (*make)();
  Placement placement;
};

constexpr Point Even(double factor) { return {factor, factor, factor}; }

const Model Models[] = {
    {"fb.dax", "Piece", MakePiece, {Even(0.03), {}}},
    {"table.dax", "Table", MakeTable, {Even(0.5), {}}},
    {"bonus.dax", "Bonus", MakeBonus, {Even(0.08), {0.0, 0.05, 0.0}}},
    {"extra.dax", "Extra", MakeExtra, {Even(0.08), {0.0, 0.3, 0.0}}},
    {"dir.dax", "Arrow", MakeArrow, {Even(0.05), {0.0, 0.0, 5.0}}},
    {"goal.dax", "Goal", MakeGoal, {Even(0.3), {}}},
    {"stadium4.dax", "Stadium", MakeStadium, {{1.6, 1.2, 1.6}, {0.0, 10.0, 0.0}}},
    {"lines.dax", "Lines", MakeLines, {Even(0.43), {0.0, 0.0, 9.0}}},
};

} // namespace

int main(int count, char **arguments) {
  if (count != 2) {
    std::fprintf(stderr, "usage: make_models DIRECTORY\n");
    return 2;
  }
  try {
    const std::filesystem::path directory = arguments[1];
    std::filesystem::create_directories(directory);
    for (const Model &model : Models) {
      const Mesh mesh = model.make();
      mesh.Write(directory / model.file, model.name, model.placement);
      std::printf("%-12s %6zu faces\n", model.file, mesh.Faces());
    }
  } catch (const std::exception &error) {
    std::fprintf(stderr, "make_models: %s\n", error.what());
    return 1;
  }
}

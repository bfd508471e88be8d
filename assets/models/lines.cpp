// The markings of the field, painted on the table's top: yard lines with their numbers, side lines, hash
// marks and the End Zone's band with its name.

#include "lettering.h"
#include "models.h"

namespace {

constexpr double PaintY = -0.44; ///< height of the paint, a little above the table's top at -0.5
constexpr double SideX = 85.5;   ///< middle of the side lines
constexpr double FarZ = -85.5;   ///< middle of the line along the far edge, inside its kerb
constexpr double NearZ = 86.6;
constexpr double Spacing = 100.0 / 6.0; ///< of the yard lines: one stripe of the turf, half a repeat of it
constexpr double GoalLineZ = -4.0 * Spacing;
constexpr int YardLines = 9; ///< from the goal line to the start, the goal line not counted

constexpr Paint Yellow{1.0, 0.92, 1.0, 0.0};
constexpr Paint Ink{0.30, 0.16, 1.0, 0.0};

void Band(Mesh &mesh, double x0, double x1, double z0, double z1) {
  mesh.StrokeQuad({x0, PaintY, z0}, {x1, PaintY, z0}, {x1, PaintY, z1}, {x0, PaintY, z1}, {0.0, 1.0, 0.0},
                  Yellow);
}

/// Width of a line across the field, increasing with the distance so that it stays visible.
double LineWidth(double z) { return 1.0 + 0.9 * (NearZ - z) / (NearZ - FarZ); }

void Words(Mesh &mesh, const char *text, double middleX, double footZ, double height, double width,
           double stroke) {
  // +x is to the left of a viewer who faces the far edge.
  Lettering lettering{
      {0.0, PaintY, footZ}, {-1.0, 0.0, 0.0}, {0.0, 0.0, -1.0}, width, height, width * 0.35, stroke};
  lettering.origin.x = middleX + LineLength(text, lettering) / 2.0;
  AddLetters(mesh, text, lettering, {0.0, 1.0, 0.0}, Yellow);
}

/// The table's near edge is a ruler, with a stroke every second unit and a long one every tenth.
void AddRuler(Mesh &mesh) {
  constexpr double TopY = -0.5, EdgeZ = 88.03; // a little in front of the wood
  for (int x = -86; x <= 86; x += 2) {
    const bool isLong = x % 10 == 0;
    const double half = isLong ? 0.10 : 0.07, depth = isLong ? 0.62 : 0.36;
    mesh.StrokeQuad({x - half, TopY, EdgeZ}, {x + half, TopY, EdgeZ}, {x + half, TopY - depth, EdgeZ},
                    {x - half, TopY - depth, EdgeZ}, {0.0, 0.0, 1.0}, Ink);
  }
}

} // namespace

Mesh MakeLines() {
  Mesh mesh;
  constexpr double SideHalf = 0.6;
  for (const double side : {-1.0, 1.0})
    Band(mesh, side * SideX - SideHalf, side * SideX + SideHalf, FarZ - 0.9, NearZ + 0.6);
  const double inner = SideX - SideHalf;
  Band(mesh, -inner, inner, NearZ - 0.6, NearZ + 0.6);
  Band(mesh, -inner, -9.0, FarZ - 0.9, FarZ + 0.9); // the target lies between the two halves
  Band(mesh, 9.0, inner, FarZ - 0.9, FarZ + 0.9);
  Band(mesh, -inner, inner, GoalLineZ - 1.5, GoalLineZ + 1.5);

  static const char *const Numbers[YardLines] = {"10", "20", "30", "40", "50", "40", "30", "20", nullptr};
  for (int line = 1; line <= YardLines; ++line) {
    const double z = GoalLineZ + line * Spacing;
    const double half = LineWidth(z) / 2.0;
    Band(mesh, -inner, inner, z - half, z + half);
    if (const char *number = Numbers[line - 1])
      for (const double x : {-58.0, 58.0}) Words(mesh, number, x, z - half - 1.6, 10.5, 6.0, 1.7);
  }

  // Hash marks: four between two yard lines, in two rows inside the field and along the side lines.
  for (int line = 0; line < YardLines; ++line)
    for (int mark = 1; mark < 5; ++mark) {
      const double z = GoalLineZ + (line + mark / 5.0) * Spacing;
      const double half = LineWidth(z) * 0.32;
      for (const double x : {-inner + 1.6, -24.0, 24.0, inner - 1.6})
        Band(mesh, x - 1.6, x + 1.6, z - half, z + half);
    }

  Words(mesh, "END", 44.0, -69.9, 13.2, 12.5, 3.0);
  Words(mesh, "ZONE", -47.0, -69.9, 13.2, 12.5, 3.0);
  AddRuler(mesh);
  return mesh;
}

// The stadium: a floor with a running track far below the table, surrounded on a rounded square plan by decks
// of seats that rise past the table to two tiers and a rim with masts and flags. All of it is outside the
// square of the camera positions.

#include "assets/smooth_step.h"
#include "models.h"
#include "shapes.h"
#include "title.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace {

constexpr double Floor = -150.0;   ///< just below the end of a fall
constexpr double CornerAt = 100.0; ///< the round corners' middles, in x and z
constexpr int StraightParts = 6;   ///< of each side
constexpr int CornerParts = 7;     ///< of each corner
constexpr int SideColumns = StraightParts + CornerParts;
constexpr int Columns = 4 * SideColumns;

constexpr Paint Concrete{0.78, 0.74, 0.78, 0.0};
constexpr Paint Shade{0.26, 0.23, 0.34, 0.0};
constexpr Paint White{0.97, 0.95, 0.93, 0.0};
constexpr Paint Steel{0.36, 0.38, 0.48, 0.0};
constexpr Paint Lamp{1.9, 1.8, 1.5, 0.0};
constexpr Paint Track{0.60, 0.27, 0.23, 0.0};
constexpr Paint LaneLine{0.76, 0.66, 0.64, 0.0};
// The ground is at dusk, in colours unlike those of the table, so that the edge of the table is distinct.
constexpr Paint LightGrass{0.17, 0.28, 0.36, 0.06};
constexpr Paint DarkGrass{0.14, 0.24, 0.33, 0.06};
constexpr Paint Chalk{0.36, 0.44, 0.52, 0.0};
constexpr Paint Banner{0.10, 0.12, 0.36, 0.0};

// The banner along the front of the upper tier hangs over the dark rear of the lower one.
constexpr double BannerFoot = 10.4;
constexpr double BannerHead = 22.6;

/// A position on the plan at distance `out` from the middle, and the outward direction.
struct Station {
  double x, z, outX, outZ;
};

/// `turn` counts columns around the stadium, starting at the -x end of the far side; may be fractional.
Station At(double turn, double out) {
  const double wrapped = turn - Columns * std::floor(turn / Columns);
  const int side = static_cast<int>(wrapped / SideColumns) % 4;
  const double rest = wrapped - side * SideColumns;
  double x, z, outX, outZ; // for the far side, with outward along -z
  if (rest <= StraightParts) {
    x = -CornerAt + 2.0 * CornerAt * rest / StraightParts;
    z = -out;
    outX = 0.0;
    outZ = -1.0;
  } else {
    const double angle = pi / 2.0 * (rest - StraightParts) / CornerParts;
    const double radius = out - CornerAt;
    outX = std::sin(angle);
    outZ = -std::cos(angle);
    x = CornerAt + radius * outX;
    z = -CornerAt + radius * outZ;
  }
  for (int i = 0; i < side; ++i) { // a quarter turn, far side to right side
    const double oldX = x, oldOutX = outX;
    x = -z;
    z = oldX;
    outX = -outZ;
    outZ = oldOutX;
  }
  return {x, z, outX, outZ};
}

/// A level of the stands' profile: distance from the middle, height.
struct Level {
  double out, y;
};

/// Paint of a column at one of its ends, a turn of `column` or one more.
using PaintAt = std::function<Paint(int column, double turn)>;

/// The surface between two levels, all around. It faces to the left of the direction from `low` to `high`,
/// with outward to the right.
void Ring(Mesh &mesh, const Level &low, const Level &high, const PaintAt &lowPaint,
          const PaintAt &highPaint) {
  const Point slope = Normalized({-(high.y - low.y), high.out - low.out, 0.0});
  const auto vertex = [&](double turn, const Level &level, const Paint &paint) {
    const Station station = At(turn, level.out);
    return Vertex{
        {station.x, level.y, station.z}, {station.outX * slope.x, slope.y, station.outZ * slope.x}, paint};
  };
  for (int column = 0; column < Columns; ++column) {
    const double end = column + 1;
    mesh.Quad(vertex(column, low, lowPaint(column, column)), vertex(end, low, lowPaint(column, end)),
              vertex(end, high, highPaint(column, end)), vertex(column, high, highPaint(column, column)));
  }
}

void Ring(Mesh &mesh, const Level &low, const Level &high, const Paint &lowPaint, const Paint &highPaint) {
  Ring(
      mesh, low, high, [&](int, double) { return lowPaint; }, [&](int, double) { return highPaint; });
}

/// Blocks of seats with supporters of one side, in its colours. Brighter than the texture, to compensate for
/// the haze.
Paint Supporters(int column) {
  static const Paint tints[] = {{1.32, 1.30, 1.32, 1.0},
                                {1.42, 1.02, 0.94, 1.0},
                                {1.00, 1.16, 1.46, 1.0},
                                {1.44, 1.34, 0.92, 1.0},
                                {1.32, 1.30, 1.32, 1.0}};
  return tints[(column * 7 + column / 3) % 5];
}

/// A deck of seats with stairs between its blocks. `lowLight` and `highLight`: brightness at its foot and
/// head.
void Deck(Mesh &mesh, const Level &low, const Level &high, double lowLight, double highLight) {
  // In two steps, so that the shade under the upper deck doesn't extend to the front rows.
  const Level middle{(low.out + high.out) / 2.0, (low.y + high.y) / 2.0};
  const double middleLight = lowLight * 0.6 + highLight * 0.4;
  const auto lit = [](double light) {
    return [light](int column, double) { return Supporters(column) * light; };
  };
  Ring(mesh, low, middle, lit(lowLight), lit(middleLight));
  Ring(mesh, middle, high, lit(middleLight), lit(highLight));

  constexpr double StairWidth = 0.07; // columns
  constexpr double Lift = 0.5;
  const Point slope = Normalized({-(high.y - low.y), high.out - low.out, 0.0});
  for (int column = 0; column < Columns; ++column) {
    const double half = StairWidth / 2.0 * (column % SideColumns < StraightParts ? 1.0 : 1.25);
    const auto vertex = [&](double turn, const Level &level, double light) {
      const Station station = At(turn, level.out);
      return Vertex{{station.x, level.y + Lift, station.z},
                    {station.outX * slope.x, slope.y, station.outZ * slope.x},
                    Concrete * light};
    };
    mesh.Quad(vertex(column - half, low, lowLight), vertex(column + half, low, lowLight),
              vertex(column + half, high, highLight), vertex(column - half, high, highLight));
  }
}

/// Boards along a front: panels of changing colours.
void Boards(Mesh &mesh, double out, double low, double high, int phase, double light) {
  static const Paint colours[] = {{0.10, 0.22, 0.52, 0.0}, {0.95, 0.93, 0.90, 0.0}, {0.85, 0.16, 0.14, 0.0},
                                  {0.97, 0.78, 0.16, 0.0}, {0.10, 0.45, 0.42, 0.0}, {0.93, 0.45, 0.13, 0.0}};
  const auto colour = [&](int column, double) {
    return colours[(column * 5 + phase + column / 4) % 6] * light;
  };
  Ring(mesh, {out, low}, {out + 0.4, high}, colour, colour);
}

/// Brightness of the floor: the table casts a soft shadow in the middle.
double FloorLight(double x, double z) {
  constexpr double ShiftX = 8.0, ShiftZ = -12.0; // the light comes from above the start
  constexpr double Roundness = 4.0;              // of the pool of shade: that of the table, well blurred
  const double away = std::pow(
      std::pow(std::abs(x - ShiftX), Roundness) + std::pow(std::abs(z - ShiftZ), Roundness), 1.0 / Roundness);
  return 0.46 + 0.44 * SmoothStep(24.0, 150.0, away);
}

/// The green inside the track: a square with round corners, mown in stripes. It extends below the track, so
/// that there is no gap where the corners of the two differ.
void AddGreen(Mesh &mesh, double half, double cornerRadius) {
  constexpr int Stripes = 14, Rows = 2, Parts = 12; // rows of a stripe, parts of a row
  constexpr double BelowTrack = 0.3;
  const Paint paints[] = {LightGrass, DarkGrass};
  const double depth = 2.0 * half / (Stripes * Rows);
  const auto halfWidth = [&](double z) {
    const double over = std::max(std::abs(z) - (half - cornerRadius), 0.0);
    return half - cornerRadius + std::sqrt(std::max(cornerRadius * cornerRadius - over * over, 0.0));
  };
  for (int row = 0; row < Stripes * Rows; ++row)
    for (int part = 0; part < Parts; ++part) {
      const auto corner = [&](int right, int far) {
        const double z = -half + (row + far) * depth;
        const double x = halfWidth(z) * (2.0 * (part + right) / Parts - 1.0);
        return Vertex{{x, Floor - BelowTrack, z}, {0.0, 1.0, 0.0}, paints[row / Rows % 2] * FloorLight(x, z)};
      };
      mesh.Quad(corner(0, 0), corner(1, 0), corner(1, 1), corner(0, 1));
    }
}

void AddFloor(Mesh &mesh) {
  constexpr double Edge = 116.0; // of the green
  AddGreen(mesh, Edge + 3.0, Edge + 3.0 - CornerAt);
  const auto zone = [&](double from, double to, const Paint &paint) {
    const auto lit = [&](double out) {
      return [=](int, double turn) {
        const Station station = At(turn, out);
        return paint * FloorLight(station.x, station.z);
      };
    };
    Ring(mesh, {from, Floor}, {to, Floor}, lit(from), lit(to));
  };
  constexpr double TrackOut = 152.0, LineWidth = 0.7;
  constexpr int Lanes = 6;
  constexpr double Lane = (TrackOut - Edge) / Lanes;
  for (int i = 0; i < Lanes; ++i) {
    zone(Edge + i * Lane, Edge + i * Lane + LineWidth, LaneLine);
    zone(Edge + i * Lane + LineWidth, Edge + (i + 1) * Lane, Track);
  }
  zone(TrackOut, TrackOut + LineWidth, LaneLine);
  zone(TrackOut + LineWidth, 158.0, Concrete * 0.75);
}

/// The word beside the table that a piece falls on. Behind the start nothing falls, and it would be upside
/// down for the camera.
void AddOut(Mesh &mesh) {
  constexpr double Baseline = 90.0, Cap = 17.0, Apart = 62.0;
  constexpr double LeftOfFar = 10.0; // so that a result card leaves the middle word in view
  Title word;
  word.normal = {0.0, 1.0, 0.0};
  word.cap = Cap;
  word.parts = 4;
  word.head = Chalk;
  word.foot = Chalk * 0.85;
  struct Side {
    double outX, outZ;
  };
  for (const Side side : {Side{0, -1}, Side{1, 0}, Side{-1, 0}}) {
    word.up = {side.outX, 0.0, side.outZ};
    word.right = {side.outZ, 0.0, -side.outX};
    for (const double along : {-Apart, 0.0, Apart}) {
      word.middle = {side.outX * Baseline + word.right.x * along, Floor,
                     side.outZ * Baseline + word.right.z * along};
      if (side.outZ < 0) word.middle = word.middle - word.right * LeftOfFar;
      AddTitle(mesh, "OUT", word);
    }
  }
}

/// A floodlight mast that leans over the rim, with its bank of lamps turned to the table.
void AddMast(Mesh &mesh, double turn) {
  const Station foot = At(turn, 287.0);
  const Point out{foot.outX, 0.0, foot.outZ};
  const Point along{-foot.outZ, 0.0, foot.outX};
  const Point base{foot.x, 56.0, foot.z};
  const Point head = base + Point{0.0, 9.0, 0.0} - out * 2.0;
  Tube(mesh, {base, head}, 0.9, 6, Steel);
  const Point facing = Normalized(Point{0.0, -0.25, 0.0} - out);
  const Point up = Normalized(Point{0.0, 1.0, 0.0} + facing * 0.25);
  const auto corner = [&](double right, double high, double front) {
    return head + along * right + up * high + facing * front;
  };
  constexpr double Half = 8.5, Tall = 6.6;
  mesh.FlatQuad(corner(-Half, 0, 0.6), corner(Half, 0, 0.6), corner(Half, Tall, 0.6),
                corner(-Half, Tall, 0.6), facing, Steel * 0.55);
  for (int row = 0; row < 2; ++row)
    for (int column = 0; column < 5; ++column) {
      const double right = -Half + 0.7 + column * 3.3, high = 0.5 + row * 3.05;
      mesh.FlatQuad(corner(right, high, 0.8), corner(right + 2.5, high, 0.8),
                    corner(right + 2.5, high + 2.5, 0.8), corner(right, high + 2.5, 0.8), facing, Lamp);
    }
}

void AddFlag(Mesh &mesh, double turn, const Paint &paint) {
  const Station foot = At(turn, 255.0);
  const Point base{foot.x, 56.5, foot.z};
  const Point along{-foot.outZ, 0.0, foot.outX};
  const Point facing{-foot.outX, 0.0, -foot.outZ};
  const Point top = base + Point{0.0, 9.5, 0.0};
  Tube(mesh, {base, top}, 0.22, 4, White);
  const Point tip = top + along * 8.5 + Point{0.0, -2.6, 0.0};
  for (const double side : {1.0, -1.0})
    mesh.FlatTriangle(top, top - Point{0.0, 5.2, 0.0}, tip, facing * side, paint);
}

/// The desk's legs, down to the floor.
void AddLegs(Mesh &mesh) {
  for (const double x : {-83.0, 83.0}) {
    for (const double z : {-83.0, 83.0}) {
      Tube(mesh, {{x, -2.6, z}, {x, Floor + 1.0, z}}, 1.1, 10, Steel);
      Lathe(mesh, {x, Floor, z}, {{2.6, 0.0, Shade}, {2.1, 2.0, Shade}, {0.0, 2.6, Shade}}, 12, false);
    }
  }
}

/// The boards of the desk, seen from below.
void AddUnderside(Mesh &mesh) {
  constexpr double Half = 86.0, BoardY = -4.15;
  constexpr int Count = 11;
  constexpr Paint Wood[] = {{0.58, 0.38, 0.23, 0.0}, {0.66, 0.44, 0.27, 0.0}, {0.62, 0.40, 0.23, 0.0}};
  constexpr Paint Gap{0.30, 0.19, 0.13, 0.0};
  constexpr Point Down{0.0, -1.0, 0.0};
  for (int i = 0; i < Count; ++i) {
    const double from = Half * (2.0 * i / Count - 1.0), to = Half * (2.0 * (i + 1) / Count - 1.0),
                 seam = to - 0.5;
    mesh.FlatQuad({-Half, BoardY, from}, {Half, BoardY, from}, {Half, BoardY, seam}, {-Half, BoardY, seam},
                  Down, Wood[i * 2 % 3]);
    mesh.FlatQuad({-Half, BoardY, seam}, {Half, BoardY, seam}, {Half, BoardY, to}, {-Half, BoardY, to}, Down,
                  Gap);
  }
}

/// A star of five points on a wall.
void AddStar(Mesh &mesh, const Point &middle, const Point &right, const Point &facing, const Paint &light,
             const Paint &dark) {
  constexpr double Outer = 4.4, Inner = 1.9;
  for (int i = 0; i < 10; ++i) {
    const auto corner = [&](int number) {
      const double angle = pi * number / 5.0, reach = number % 2 == 0 ? Outer : Inner;
      return middle + right * (reach * std::sin(angle)) + Point{0.0, reach * std::cos(angle), 0.0};
    };
    mesh.FlatTriangle(middle, corner(i), corner(i + 1), facing, i % 2 == 0 ? light : dark);
  }
}

/// The name of the game along the banner, twice on each side between stars, as on the launch window.
void AddNames(Mesh &mesh) {
  constexpr double Out = 231.0; ///< just in front of the banner
  constexpr double Baseline = 13.7, Capitals = 7.4, StarMiddle = 16.6;
  constexpr double NameAt = 50.0, StarBeside = 43.0; ///< from the side's middle, and from the name's
  constexpr Paint Light{1.35, 1.25, 0.70, 0.0}, Gold{1.30, 0.86, 0.16, 0.0};
  constexpr Point Up{0.0, 1.0, 0.0};
  for (int side = 0; side < 4; ++side) {
    const Station middle = At(side * SideColumns + StraightParts / 2.0, Out);
    const Point inward{-middle.outX, 0.0, -middle.outZ}, right{middle.outZ, 0.0, -middle.outX};
    const auto on = [&](double along, double y) { return Point{middle.x, y, middle.z} + right * along; };
    for (const double name : {-NameAt, NameAt}) {
      AddTitle(mesh, "Snapwedge", {on(name, Baseline), right, Up, inward, Capitals, 1.1, 2.5, Light, Gold});
      for (const double beside : {-StarBeside, StarBeside})
        AddStar(mesh, on(name + beside, StarMiddle), right, inward, Light, Gold);
    }
  }
}

/// Pylons on the table's far corners.
void AddPylons(Mesh &mesh) {
  constexpr double Corner = 87.35, TableTop = -0.5;
  constexpr Paint Orange{1.45, 0.52, 0.10, 0.0}, Band{1.35, 1.32, 1.28, 0.0};
  for (const double x : {-Corner, Corner}) {
    Lathe(mesh, {x, TableTop, -Corner},
          {{0.65, 0.0, Orange},
           {0.59, 2.6, Orange},
           {0.59, 2.6, Band},
           {0.56, 3.8, Band},
           {0.56, 3.8, Orange},
           {0.52, 5.2, Orange},
           {0.0, 5.4, Orange}},
          8, false);
  }
}

} // namespace

Mesh MakeStadium() {
  Mesh mesh;
  AddFloor(mesh);
  AddOut(mesh);
  AddUnderside(mesh);
  AddLegs(mesh);

  Boards(mesh, 158.0, Floor, -142.0, 1, 0.6);
  Deck(mesh, {158.4, -142.0}, {190.0, -104.0}, 0.52, 0.30);
  Ring(mesh, {190.0, -104.0}, {190.0, -97.0}, Shade, Shade * 0.8);
  Ring(mesh, {190.0, -97.0}, {183.0, -96.0}, Shade * 0.8, Shade);
  Boards(mesh, 182.6, -96.0, -89.5, 3, 0.7);
  Deck(mesh, {183.0, -89.5}, {214.0, -54.0}, 0.60, 0.34);
  Ring(mesh, {214.0, -54.0}, {214.0, -47.0}, Shade, Shade * 0.8);
  Ring(mesh, {214.0, -47.0}, {206.0, -46.0}, Shade * 0.8, Shade);
  Boards(mesh, 205.6, -46.0, -39.5, 5, 0.85);

  // The two tiers at the height of the table.
  Deck(mesh, {206.0, -39.5}, {254.0, 9.5}, 0.92, 0.42);
  Ring(mesh, {254.0, 9.5}, {254.0, 14.0}, Shade, Shade * 0.7);
  Ring(mesh, {254.0, 14.0}, {232.0, 16.8}, Shade * 0.7, Shade);
  Ring(mesh, {231.4, BannerFoot}, {231.8, BannerHead}, Banner * 0.85, Banner);
  Ring(mesh, {231.4, BannerHead}, {232.4, 23.2}, White, White);
  Deck(mesh, {232.4, 23.0}, {276.0, 48.0}, 1.0, 0.72);
  Ring(mesh, {276.0, 48.0}, {276.0, 53.0}, Shade, Shade * 0.7);
  Ring(mesh, {276.0, 53.0}, {254.0, 54.6}, Shade * 0.7, Shade);
  Ring(mesh, {253.6, 54.4}, {253.8, 57.2}, White, White);
  Ring(mesh, {253.8, 57.2}, {288.0, 58.4}, Concrete, Concrete * 0.8);

  for (int side = 0; side < 4; ++side) {
    AddMast(mesh, side * SideColumns + 0.3);
    AddMast(mesh, side * SideColumns + StraightParts - 0.3);
  }
  // Brighter than realistic, because half of them are seen from the unlit side.
  static const Paint flags[] = {
      {1.45, 0.24, 0.20, 0.0}, {1.50, 1.15, 0.18, 0.0}, {0.22, 0.58, 1.40, 0.0}, {1.35, 1.32, 1.30, 0.0}};
  for (int i = 0; i < Columns; ++i) AddFlag(mesh, i + 0.5, flags[i % 4]);

  AddNames(mesh);
  AddPylons(mesh);
  return mesh;
}

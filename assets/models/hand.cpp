// The hand that flicks the piece, as in the picture of the launch window: a right hand in a striped sleeve
// that points along -z, the other fingers folded. It is so flat that most of the piece is visible from every
// camera position.

#include "hand.h"

#include "shapes.h"

#include <cmath>

namespace {

// The game multiplies the mesh with pure yellow, which removes blue. Values far above 1 regain it by
// crosstalk, so these appear as skin and cream.
constexpr Paint Skin{2.19, 0.51, 0.0, 0.0};
constexpr Paint Nail{2.40, 0.95, 0.0, 0.0};
constexpr Paint Cream{2.00, 1.85, 0.0, 0.0};
constexpr Paint Red{0.98, 0.17, 0.0, 0.0};
constexpr Paint Crease{0.70, 0.30, 0.0, 0.0};
constexpr Paint Ink{0.16, 0.08, 0.0, 0.0};

constexpr double InkWidth = 0.17;
constexpr double Lift = 0.10; ///< holds the ink below the finger above the turf

// From the tip to the knuckle. From the initial camera position the tip hides only the middle of the piece's
// near edge.
const std::vector<Joint> PointingFinger = {{{0.0, 0.20, 3.9}, 0.92, 0.60},
                                           {{0.0, 0.42, 6.6}, 1.20, 0.84},
                                           {{-0.05, 0.62, 10.4}, 1.28, 1.02},
                                           {{-0.1, 0.75, 14.8}, 1.36, 1.12},
                                           {{-0.3, 0.90, 19.5}, 1.50, 1.24}};

/// A point on a limb's skin: `along` from one joint to the next, `turn` from its back to its side, radians,
/// and how far above it.
Point OnSkin(const Joint &from, const Joint &to, double along, double turn, double above) {
  const double side = from.side + (to.side - from.side) * along + above;
  const double up = from.up + (to.up - from.up) * along + above;
  return Mix(from.at, to.at, along) + Point{std::sin(turn) * side, std::cos(turn) * up, 0.0};
}

/// A crease across the back of a finger.
void AddCrease(Mesh &mesh, const Joint &from, const Joint &to, double along) {
  constexpr int Parts = 4;
  constexpr double Reach = 0.75; ///< radians to each side
  constexpr double Half = 0.045; ///< fraction of the distance between the joints
  constexpr double Above = 0.03;
  for (int part = 0; part < Parts; ++part) {
    const auto point = [&](int step, double side) {
      const double across = 2.0 * step / Parts - 1.0;
      const double thinner = 1.0 - 0.8 * across * across, bend = 0.05 * across * across;
      return OnSkin(from, to, along + bend + side * Half * thinner, across * Reach, Above);
    };
    mesh.FlatQuad(point(part, -1.0), point(part + 1, -1.0), point(part + 1, 1.0), point(part, 1.0),
                  {0.0, 1.0, 0.0}, Crease);
  }
}

/// An oval on the back of a finger: `half` of the way between the joints long to each side, `reach` radians
/// wide.
void AddOval(Mesh &mesh, const Joint &from, const Joint &to, double middle, double half, double reach,
             double above, const Paint &paint) {
  constexpr int Parts = 10;
  const auto vertex = [&](int step, double size) {
    const double angle = 2.0 * pi * step / Parts;
    const double turn = reach * size * std::sin(angle);
    return mesh.Add({OnSkin(from, to, middle + half * size * std::cos(angle), turn, above),
                     {std::sin(turn), std::cos(turn), 0.0},
                     paint});
  };
  for (int step = 0; step < Parts; ++step) {
    const int a = vertex(step, 0.6), b = vertex(step + 1, 0.6);
    mesh.Triangle(vertex(step, 0.0), a, b);
    mesh.Quad(a, b, vertex(step + 1, 1.0), vertex(step, 1.0));
  }
}

Mesh Skins() {
  Mesh skin;
  Limb(skin, PointingFinger, 8, 3, Skin);
  for (int i = 0; i < 3; ++i) { // the folded fingers, from the middle to the little one
    const double x = -3.0 - 2.5 * i, back = 0.7 * i + 0.4 * i * i, size = 1.0 - 0.09 * i;
    Limb(skin,
         {{{x + 0.1, 0.55 * size, 18.0 + back}, 1.15 * size, 0.95 * size},
          {{x, 0.80 * size, 16.8 + back}, 1.35 * size, 1.15 * size},
          {{x + 0.1, 0.90 * size, 20.0 + back}, 1.40 * size, 1.20 * size}},
         6, 2, Skin);
  }
  const std::vector<Joint> thumb = {{{2.2, 0.40, 13.4}, 1.0, 0.78},
                                    {{2.7, 0.50, 15.4}, 1.25, 0.92},
                                    {{3.0, 0.65, 19.0}, 1.30, 1.05},
                                    {{1.3, 0.95, 23.5}, 1.70, 1.25}};
  Limb(skin, thumb, 7, 2, Skin);
  const std::vector<Joint> back = {
      {{-3.6, 0.90, 20.5}, 4.2, 1.25}, {{-3.6, 1.00, 24.0}, 4.0, 1.40}, {{-3.9, 1.30, 29.0}, 2.7, 1.50}};
  Limb(skin, back, 8, 2, Skin);
  return skin;
}

Mesh Sleeve() {
  constexpr int Stripes = 6, Sides = 8;
  constexpr Point Wrist{-3.95, 1.45, 28.4}, Elbow{-5.0, 1.85, 38.0};
  const Point along = Normalized(Elbow - Wrist), side = Normalized(Cross({0.0, 1.0, 0.0}, along)),
              up = Cross(along, side);
  Mesh sleeve;
  for (int stripe = 0; stripe < Stripes; ++stripe)
    for (int s = 0; s < Sides; ++s) {
      const auto vertex = [&](int ring, int step) {
        const double share = static_cast<double>(ring) / Stripes, angle = 2.0 * pi * step / Sides;
        const double wide = 3.1 + 0.4 * share, high = 1.85 + 0.35 * share;
        return Vertex{Mix(Wrist, Elbow, share) + side * (std::cos(angle) * wide) +
                          up * (std::sin(angle) * high),
                      Normalized(side * (std::cos(angle) * high) + up * (std::sin(angle) * wide)),
                      stripe % 2 == 0 ? Red : Cream};
      };
      sleeve.Quad(vertex(stripe, s), vertex(stripe + 1, s), vertex(stripe + 1, s + 1), vertex(stripe, s + 1));
    }
  return sleeve;
}

} // namespace

void AddHand(Mesh &mesh) {
  Mesh hand;
  for (const Mesh &part : {Skins(), Sleeve()}) {
    Outline(hand, part, InkWidth, Ink);
    hand.Append(part, [](const Vertex &vertex) { return vertex; });
  }
  const Joint &tip = PointingFinger[0], &middle = PointingFinger[1], &bent = PointingFinger[2];
  AddOval(hand, tip, middle, 0.20, 0.46, 0.86, 0.02, Crease);
  AddOval(hand, tip, middle, 0.18, 0.38, 0.74, 0.05, Nail);
  for (const double along : {0.86, 0.98, 1.10}) AddCrease(hand, middle, bent, along);
  mesh.Append(hand, [](Vertex vertex) {
    vertex.at.y += Lift;
    return vertex;
  });
}

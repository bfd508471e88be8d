#include "lettering.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <stdexcept>

namespace {

/// A bend of a stroke: x and y from 0 to 1 across the letter, and how round it is, in parts of its width.
struct Bend {
  double x, y;
  double round = 0.0;
};

enum class Kind {
  Open,
  Closed,
  Slant ///< a straight bar between corners of the letter's box, cut off along the line
};

struct Line {
  Kind kind;
  std::vector<Bend> bends;
};
using Glyph = std::vector<Line>;

const std::map<char, Glyph> &Glyphs() {
  using enum Kind;
  static const std::map<char, Glyph> glyphs = {
      {'0', {{Closed, {{0, 0, 0.5}, {0, 1, 0.5}, {1, 1, 0.5}, {1, 0, 0.5}}}}},
      {'1', {{Open, {{0.1, 0.76}, {0.5, 1}, {0.5, 0}}}, {Open, {{0.08, 0}, {0.92, 0}}}}},
      {'2', {{Open, {{0, 0.7}, {0, 1, 0.5}, {1, 1, 0.5}, {1, 0.52, 0.5}, {0, 0}, {1, 0}}}}},
      {'3',
       {{Open, {{0, 0.76}, {0, 1, 0.5}, {1, 1, 0.5}, {1, 0.52, 0.42}, {0.4, 0.52}}},
        {Open, {{0.4, 0.52}, {1, 0.52, 0.42}, {1, 0, 0.5}, {0, 0, 0.5}, {0, 0.24}}}}},
      {'4', {{Open, {{0.76, 0}, {0.76, 1}}}, {Open, {{0.76, 1}, {0, 0.3}, {1, 0.3}}}}},
      {'5',
       {{Open, {{0.95, 1}, {0.06, 1}, {0.06, 0.58}, {1, 0.58, 0.5}, {1, 0, 0.5}, {0, 0, 0.5}, {0, 0.2}}}}},
      {'A', {{Open, {{0, 0}, {0, 1, 0.45}, {1, 1, 0.45}, {1, 0}}}, {Open, {{0, 0.4}, {1, 0.4}}}}},
      {'D', {{Closed, {{0, 0}, {0, 1}, {1, 1, 0.5}, {1, 0, 0.5}}}}},
      {'E', {{Open, {{1, 0}, {0, 0}, {0, 1}, {1, 1}}}, {Open, {{0, 0.5}, {0.8, 0.5}}}}},
      {'G', {{Open, {{0.95, 1}, {0, 1, 0.5}, {0, 0, 0.5}, {1, 0, 0.4}, {1, 0.46}, {0.55, 0.46}}}}},
      {'N', {{Open, {{0, 0}, {0, 1}}}, {Slant, {{0, 1}, {1, 0}}}, {Open, {{1, 0}, {1, 1}}}}},
      {'O', {{Closed, {{0, 0, 0.5}, {0, 1, 0.5}, {1, 1, 0.5}, {1, 0, 0.5}}}}},
      {'P', {{Open, {{0, 0}, {0, 1}, {1, 1, 0.4}, {1, 0.42, 0.4}, {0, 0.42}}}}},
      {'S', {{Open, {{0.95, 1}, {0, 1, 0.4}, {0, 0.5, 0.4}, {1, 0.5, 0.4}, {1, 0, 0.4}, {0.05, 0}}}}},
      {'W',
       {{Open, {{0, 1}, {0, 0, 0.25}, {0.5, 0, 0.25}, {0.5, 0.7}}},
        {Open, {{0.5, 0.7}, {0.5, 0, 0.25}, {1, 0, 0.25}, {1, 1}}}}},
      {'Z', {{Open, {{0, 1}, {1, 1}}}, {Slant, {{1, 1}, {0, 0}}}, {Open, {{0, 0}, {1, 0}}}}},
  };
  return glyphs;
}

/// Where a letter's middle lines run: its box without half a stroke all round.
struct LetterBox {
  double left, inset, width, height;
  Point At(const Bend &bend) const { return {left + inset + bend.x * width, 0.0, inset + bend.y * height}; }
};

/// The points of a line, with an arc at each round bend.
std::vector<Point> Path(const Line &line, const LetterBox &box) {
  std::vector<Point> path;
  const std::size_t count = line.bends.size();
  for (std::size_t i = 0; i < count; ++i) {
    const Bend &bend = line.bends[i];
    const Point at = box.At(bend);
    if (bend.round == 0.0) {
      path.push_back(at);
      continue;
    }
    const Point before = box.At(line.bends[(i + count - 1) % count]) - at;
    const Point after = box.At(line.bends[(i + 1) % count]) - at;
    const double half = std::acos(Dot(Normalized(before), Normalized(after))) / 2.0;
    // Two round bends share the way between them.
    const auto room = [&](std::size_t neighbour, double length) {
      return line.bends[neighbour % count].round > 0.0 ? length / 2.0 : length;
    };
    const double reach = std::min({bend.round * box.width / std::tan(half),
                                   room(i + count - 1, Length(before)), room(i + 1, Length(after))});
    const double radius = reach * std::tan(half);
    const Point middle = at + Normalized(Normalized(before) + Normalized(after)) * (reach / std::cos(half));
    const Point from = Normalized(at + Normalized(before) * reach - middle);
    const Point to = Normalized(at + Normalized(after) * reach - middle);
    const double turn = std::acos(std::clamp(Dot(from, to), -1.0, 1.0));
    const int parts = 2 + static_cast<int>(1.2 * radius * turn); // a long arc shows its corners sooner
    for (int part = 0; part <= parts; ++part) {
      const double share = static_cast<double>(part) / parts;
      const Point out = from * (std::sin((1.0 - share) * turn)) + to * std::sin(share * turn);
      path.push_back(middle + Normalized(out) * radius);
    }
  }
  return path;
}

void AddSlant(Mesh &flat, const Line &line, const LetterBox &box, double stroke, const Paint &paint) {
  const double high = box.height + stroke, wide = box.width + stroke;
  double cut = stroke; // length of its ends along the line, such that it is a stroke wide
  for (int round = 0; round < 4; ++round) cut = stroke * std::hypot(high, wide - cut) / high;
  const auto end = [&](const Bend &bend, double share) {
    return Point{box.left + bend.x * (wide - cut) + share * cut, 0.0, bend.y * high};
  };
  const Bend &from = line.bends.front(), &to = line.bends.back();
  flat.StrokeQuad(end(from, 0), end(from, 1), end(to, 1), end(to, 0), {0.0, 1.0, 0.0}, paint);
}

} // namespace

double LineLength(std::string_view text, const Lettering &lettering) {
  const double count = static_cast<double>(text.size());
  return count * lettering.width + (count - 1.0) * lettering.gap;
}

void AddLetters(Mesh &mesh, std::string_view text, const Lettering &lettering, const Point &normal,
                const Paint &paint) {
  const double inset = lettering.stroke / 2.0;
  LetterBox box{0.0, inset, lettering.width - lettering.stroke, lettering.height - lettering.stroke};
  for (const char letter : text) {
    const auto glyph = Glyphs().find(letter);
    if (glyph == Glyphs().end())
      throw std::invalid_argument(std::string("no shape for the letter ") + letter);
    for (const Line &line : glyph->second) {
      // Strokes are laid on the ground and then stood up along the line's own axes.
      Mesh flat;
      if (line.kind == Kind::Slant) {
        AddSlant(flat, line, box, lettering.stroke, paint);
      } else {
        std::vector<Point> path = Path(line, box);
        // Straight open ends reach half a stroke further, so that they are flush with the letter's box.
        const auto reach = [&](Point &end, const Point &before) {
          const Point along = Normalized(end - before);
          if (along.x == 0.0 || along.z == 0.0) end = end + along * inset;
        };
        if (line.kind == Kind::Open) {
          reach(path.front(), path[1]);
          reach(path.back(), path[path.size() - 2]);
        }
        Stroke(flat, path, line.kind == Kind::Closed, lettering.stroke, 0.0, paint);
      }
      const auto stood = [&](const Point &laid) { return lettering.right * laid.x + lettering.up * laid.z; };
      mesh.Append(flat, [&](const Vertex &vertex) {
        return Vertex{lettering.origin + stood(vertex.at), normal, vertex.paint, stood(vertex.across)};
      });
    }
    box.left += lettering.width + lettering.gap;
  }
}

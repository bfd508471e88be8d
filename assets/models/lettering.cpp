#include "lettering.h"

#include <algorithm>
#include <map>
#include <stdexcept>

namespace {

struct Line {
  bool closed;
  std::vector<std::pair<double, double>> points; ///< x and y from 0 to 1
};
using Glyph = std::vector<Line>;

const std::map<char, Glyph> &Glyphs() {
  static const std::map<char, Glyph> glyphs = {
      {'0', {{true, {{0.3, 0}, {0, 0.2}, {0, 0.8}, {0.3, 1}, {0.7, 1}, {1, 0.8}, {1, 0.2}, {0.7, 0}}}}},
      {'1', {{false, {{0.15, 0.75}, {0.5, 1}, {0.5, 0}}}, {false, {{0.1, 0}, {0.9, 0}}}}},
      {'2', {{false, {{0, 0.75}, {0.25, 1}, {0.75, 1}, {1, 0.8}, {1, 0.62}, {0, 0.12}, {0, 0}, {1, 0}}}}},
      {'3',
       {{false, {{0, 0.8}, {0.25, 1}, {0.75, 1}, {1, 0.82}, {1, 0.65}, {0.75, 0.52}, {0.35, 0.52}}},
        {false, {{0.75, 0.52}, {1, 0.38}, {1, 0.2}, {0.75, 0}, {0.25, 0}, {0, 0.2}}}}},
      {'4', {{false, {{0.72, 0}, {0.72, 1}, {0, 0.35}, {0, 0.28}, {1, 0.28}}}}},
      {'5', {{false, {{1, 1}, {0, 1}, {0, 0.58}, {0.7, 0.58}, {1, 0.42}, {1, 0.2}, {0.7, 0}, {0, 0}}}}},
      {'A',
       {{false, {{0, 0}, {0, 0.65}, {0.3, 1}, {0.7, 1}, {1, 0.65}, {1, 0}}}, {false, {{0, 0.4}, {1, 0.4}}}}},
      {'D', {{true, {{0, 0}, {0, 1}, {0.65, 1}, {1, 0.75}, {1, 0.25}, {0.65, 0}}}}},
      {'E', {{false, {{1, 0}, {0, 0}, {0, 1}, {1, 1}}}, {false, {{0, 0.5}, {0.8, 0.5}}}}},
      {'G',
       {{false,
         {{1, 0.8}, {0.7, 1}, {0.3, 1}, {0, 0.75}, {0, 0.25}, {0.3, 0}, {1, 0}, {1, 0.48}, {0.5, 0.48}}}}},
      {'N', {{false, {{0, 0}, {0, 1}}}, {false, {{0.02, 1}, {0.98, 0}}}, {false, {{1, 0}, {1, 1}}}}},
      {'O', {{true, {{0.3, 0}, {0, 0.25}, {0, 0.75}, {0.3, 1}, {0.7, 1}, {1, 0.75}, {1, 0.25}, {0.7, 0}}}}},
      {'P', {{false, {{0, 0}, {0, 1}, {0.7, 1}, {1, 0.82}, {1, 0.58}, {0.7, 0.42}, {0, 0.42}}}}},
      {'S',
       {{false,
         {{1, 0.82},
          {0.7, 1},
          {0.25, 1},
          {0, 0.82},
          {0, 0.64},
          {0.25, 0.5},
          {0.75, 0.5},
          {1, 0.36},
          {1, 0.18},
          {0.75, 0},
          {0.3, 0},
          {0, 0.18}}}}},
      {'W',
       {{false, {{0, 1}, {0, 0.25}, {0.25, 0}, {0.5, 0.25}, {0.75, 0}, {1, 0.25}, {1, 1}}},
        {false, {{0.5, 0.25}, {0.5, 0.7}}}}},
      {'Z', {{false, {{0, 1}, {1, 1}}}, {false, {{0.96, 1}, {0.04, 0}}}, {false, {{0, 0}, {1, 0}}}}},
  };
  return glyphs;
}

} // namespace

double LineLength(std::string_view text, const Lettering &lettering) {
  const double count = static_cast<double>(text.size());
  return count * lettering.width + (count - 1.0) * lettering.gap;
}

void AddLetters(Mesh &mesh, std::string_view text, const Lettering &lettering, const Point &normal,
                const Paint &paint) {
  const double inset = lettering.stroke / 2.0;
  const double width = lettering.width - lettering.stroke, height = lettering.height - lettering.stroke;
  double left = 0.0;
  for (const char letter : text) {
    const auto glyph = Glyphs().find(letter);
    if (glyph == Glyphs().end())
      throw std::invalid_argument(std::string("no shape for the letter ") + letter);
    for (const Line &line : glyph->second) {
      // Strokes are laid on the ground and then stood up along the line's own axes. Straight open ends reach
      // half a stroke further, so that they are flush with the letter's box.
      const auto reach = [&](Point &end, const Point &before) {
        const Point along = Normalized(end - before);
        if (along.x == 0.0 || along.z == 0.0) end = end + along * inset;
      };
      std::vector<Point> path;
      for (const auto &[x, y] : line.points)
        path.push_back({left + inset + x * width, 0.0, inset + y * height});
      if (!line.closed) {
        reach(path.front(), path[1]);
        reach(path.back(), path[path.size() - 2]);
      }
      Mesh flat;
      Stroke(flat, path, line.closed, lettering.stroke, 0.0, paint);
      mesh.Append(flat, [&](const Vertex &vertex) {
        return Vertex{lettering.origin + lettering.right * vertex.at.x + lettering.up * vertex.at.z, normal,
                      vertex.paint};
      });
    }
    left += lettering.width + lettering.gap;
  }
}

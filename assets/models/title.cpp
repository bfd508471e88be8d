#include "title.h"

#include "assets/pictures/glyphs.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

constexpr double LetterSpace = 0.9; ///< between letters beyond the typeface's own, in ninths of the capitals

/// Middle line of a stroke, in the units of the typeface, with an arc at each rounded corner.
std::vector<Point> Path(const GlyphLine &line, double radius, int parts) {
  std::vector<Point> path;
  const std::size_t count = line.points.size();
  for (std::size_t i = 0; i < count; ++i) {
    const GlyphPoint &corner = line.points[i];
    const Point at{corner.x, 0.0, corner.y};
    if (!corner.round) {
      path.push_back(at);
      continue;
    }
    // The curve begins and ends on the corner's sides, at most half way to another round corner.
    const auto onSide = [&](const GlyphPoint &other) {
      const Point way = Point{other.x, 0.0, other.y} - at;
      return at + Normalized(way) * std::min(radius, other.round ? Length(way) / 2.0 : Length(way));
    };
    const Point from = onSide(line.points[(i + count - 1) % count]),
                to = onSide(line.points[(i + 1) % count]);
    for (int part = 0; part <= parts; ++part) {
      const double share = static_cast<double>(part) / parts;
      path.push_back(Mix(Mix(from, at, share), Mix(at, to, share), share));
    }
  }
  return path;
}

/// Half a disc at the end of a stroke that comes along `along`.
void AddEnd(Mesh &flat, const Point &at, const Point &along, double half, int parts) {
  const Point across{along.z, 0.0, -along.x};
  const auto rim = [&](int part) {
    const double angle = pi * part / parts;
    return at + across * (half * std::cos(angle)) + along * (half * std::sin(angle));
  };
  for (int part = 0; part < parts; ++part)
    flat.FlatTriangle(at, rim(part), rim(part + 1), {0.0, 1.0, 0.0}, {});
}

double Advance(char letter, const Title &title) {
  return (GlyphOf(letter).advance + LetterSpace) * title.stretch;
}

} // namespace

double TitleLength(std::string_view word, const Title &title) {
  constexpr double LastGap = 3.0; // behind a letter, part of its advance
  double units = 0.0;
  for (const char letter : word) units += Advance(letter, title);
  return (units + (title.pen - LastGap - LetterSpace) * title.stretch) * title.cap / CapitalHeight;
}

void AddTitle(Mesh &mesh, std::string_view word, const Title &title) {
  const double unit = title.cap / CapitalHeight, half = title.pen / 2.0;
  double left = half * title.stretch - TitleLength(word, title) / unit / 2.0;
  for (const char letter : word) {
    const Glyph &glyph = GlyphOf(letter);
    // Strokes are laid on the ground and then stood up along the word's own axes.
    Mesh flat;
    for (const GlyphLine &line : glyph.lines) {
      const std::vector<Point> path = Path(line, glyph.radius, title.parts);
      Stroke(flat, path, line.closed, title.pen, 0.0, {});
      if (line.closed) continue;
      AddEnd(flat, path.front(), Normalized(path.front() - path[1]), half, title.parts);
      AddEnd(flat, path.back(), Normalized(path.back() - path[path.size() - 2]), half, title.parts);
    }
    mesh.Append(flat, [&](const Vertex &vertex) {
      const double high = std::clamp(vertex.at.z / CapitalHeight, 0.0, 1.0);
      return Vertex{title.middle + title.right * ((left + vertex.at.x * title.stretch) * unit) +
                        title.up * (vertex.at.z * unit),
                    title.normal, Mix(title.foot, title.head, high)};
    });
    left += Advance(letter, title);
  }
}

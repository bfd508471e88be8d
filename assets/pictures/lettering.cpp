#include "lettering.h"

#include "glyphs.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>
#include <vector>

namespace {

// Distance of the control points of a rounded corner from its ends, relative to the corner; 0.55 for a
// circle.
constexpr double CornerFullness = 0.62;
// Radius of dots, in widths of the pen.
constexpr double DotRadius = 0.62;
// An invisible mark at which a word may be broken.
constexpr char BreakMark = '|';
constexpr char AccentMark = '*';
// Maximum space added between the letters of a justified line, in units; the rest goes between words.
constexpr double MostLetterSpace = 0.45;
// A line is justified only if its words fill this fraction of it.
constexpr double LeastFilled = 0.6;

struct Word {
  std::string text;
  bool accent = false;
};
using Line = std::vector<Word>;

struct Style {
  double unit, stretch, pen, contrast, space, serif;
  bool snap;
  std::string ends;
};

double Advance(const std::string &text, const Style &style) {
  double units = 0.0;
  for (const char character : text) {
    if (character != BreakMark) units += GlyphOf(character).advance + style.space;
  }
  return units * style.unit * style.stretch;
}

/// Width from the left edge of the first letter to the right edge of the last, without its trailing gap.
double Width(const Line &line, const Style &style) {
  constexpr double LastGap = 3.0;
  double width = 0.0;
  for (const Word &word : line) width += Advance(word.text, style);
  width += Advance(" ", style) * static_cast<double>(line.size() - 1);
  return width + ((style.pen - LastGap) - style.space) * style.unit * style.stretch;
}

/// The path of one skeleton line, with rounded corners. x is divided by `contrast`, because the path is drawn
/// wider by that factor.
std::string LinePath(const GlyphLine &line, double radius, double x, double y, const Style &style) {
  const auto place = [&](double px, double py) {
    return Decimal((x + px * style.unit * style.stretch) / style.contrast) + " " +
           Decimal(y - py * style.unit);
  };
  const std::size_t count = line.points.size();
  const auto at = [&](std::size_t index) { return line.points[index % count]; };
  // A round corner's curve starts and ends on its two sides, at most half way to another round corner.
  const auto onSide = [&](const GlyphPoint &corner, const GlyphPoint &other, double share) {
    const double dx = other.x - corner.x, dy = other.y - corner.y, length = std::hypot(dx, dy);
    const double reach = std::min(radius, other.round ? length / 2.0 : length) * share / length;
    return GlyphPoint{corner.x + dx * reach, corner.y + dy * reach};
  };
  std::string path;
  const auto corner = [&](std::size_t index, bool start) {
    const GlyphPoint point = at(index);
    if (!point.round) {
      path.append(1, start ? 'M' : 'L').append(place(point.x, point.y));
      return;
    }
    const GlyphPoint before = at(index + count - 1), after = at(index + 1);
    const GlyphPoint from = onSide(point, before, 1.0), to = onSide(point, after, 1.0);
    const GlyphPoint one = onSide(point, before, 1.0 - CornerFullness),
                     two = onSide(point, after, 1.0 - CornerFullness);
    path.append(1, start ? 'M' : 'L')
        .append(place(from.x, from.y))
        .append(1, 'C')
        .append(place(one.x, one.y));
    path.append(1, ' ').append(place(two.x, two.y)).append(1, ' ').append(place(to.x, to.y));
  };
  for (std::size_t index = 0; index < count; ++index) corner(index, index == 0);
  if (line.closed) path += "Z";
  return path;
}

class Setter {
public:
  Setter(const Style &style, std::string ink, std::string accent)
      : style_(style), ink_(std::move(ink)), accent_(std::move(accent)) {}

  /// @param between  added behind each letter, pixels
  /// @return         start of the next word without a space
  double SetWord(const Word &word, double x, double baseline, double between) {
    for (const char character : word.text) {
      if (character == BreakMark) continue;
      const Glyph &glyph = GlyphOf(character);
      const double origin =
          style_.snap ? std::floor(x + 0.5) + 0.5 : x + style_.pen / 2.0 * style_.unit * style_.stretch;
      std::string &strokes = word.accent ? accentStrokes_ : strokes_;
      for (const GlyphLine &line : glyph.lines) {
        strokes += LinePath(line, glyph.radius, origin, baseline, style_);
        if (style_.serif == 0.0 || line.closed) continue;
        strokes += Foot(line.points.front(), line.points[1], origin, baseline);
        strokes += Foot(line.points.back(), line.points[line.points.size() - 2], origin, baseline);
      }
      for (const GlyphPoint &dot : glyph.dots) SetDot(dot, origin, baseline, word.accent);
      x += (glyph.advance + style_.space) * style_.unit * style_.stretch + between;
    }
    return x;
  }

  std::string Svg() const {
    const std::string join = style_.ends == "round" ? "round" : "miter";
    const auto strokes = [&](const std::string &path, const std::string &ink) {
      if (path.empty()) return std::string();
      return "<path d=\"" + path + "\" fill=\"none\" stroke=\"" + ink + "\" stroke-width=\"" +
             Decimal(style_.pen * style_.unit * style_.stretch / style_.contrast) + "\" stroke-linecap=\"" +
             style_.ends + "\" stroke-linejoin=\"" + join + "\" stroke-miterlimit=\"3\"/>";
    };
    return "<g transform=\"scale(" + Decimal(style_.contrast) + ",1)\">" + strokes(strokes_, ink_) +
           strokes(accentStrokes_, accent_) + "</g>" + dots_;
  }

private:
  /// The slab under an upright stroke that ends on one of the letter's lines.
  std::string Foot(const GlyphPoint &end, const GlyphPoint &before, double x, double baseline) const {
    const bool onLine =
        end.y == 0.0 || end.y == SmallHeight || end.y == CapitalHeight || end.y == -DescenderDepth;
    if (!onLine || std::abs(end.y - before.y) < std::abs(end.x - before.x)) return "";
    const GlyphLine slab{false, {{end.x - style_.serif, end.y}, {end.x + style_.serif, end.y}}};
    return LinePath(slab, 0.0, x, baseline, style_);
  }

  void SetDot(const GlyphPoint &dot, double x, double baseline, bool accent) {
    const double width = style_.pen * style_.unit * style_.stretch;
    dots_ += "<ellipse cx=\"" + Decimal(x + dot.x * style_.unit * style_.stretch) + "\" cy=\"" +
             Decimal(baseline - dot.y * style_.unit) + "\" rx=\"" + Decimal(DotRadius * width) + "\" ry=\"" +
             Decimal(DotRadius * (width + width / style_.contrast) / 2.0) + "\" fill=\"" +
             (accent ? accent_ : ink_) + "\"/>";
  }

  Style style_;
  std::string ink_, accent_, strokes_, accentStrokes_, dots_;
};

/// The text's paragraphs as words.
std::vector<Line> Paragraphs(const std::string &text) {
  std::vector<Line> paragraphs(1);
  bool accent = false, lineEmpty = false;
  Word word;
  const auto endWord = [&] {
    if (!word.text.empty()) paragraphs.back().push_back(word);
    word = {"", accent};
  };
  for (const char character : text) {
    if (character == AccentMark) {
      accent = !accent;
      if (word.text.empty()) word.accent = accent;
    } else if (character == ' ' || character == '\n') {
      endWord();
      if (character == '\n' && lineEmpty && !paragraphs.back().empty()) paragraphs.emplace_back();
      if (character == '\n') lineEmpty = true;
    } else {
      lineEmpty = false;
      word.text += character;
    }
  }
  endWord();
  if (paragraphs.back().empty()) paragraphs.pop_back();
  return paragraphs;
}

/// Appends as much of the word as fits to the line, and returns the rest; the whole word if nothing fits.
Word BreakWord(Line &line, const Word &word, double width, const Style &style) {
  for (std::size_t mark = word.text.rfind(BreakMark); mark != std::string::npos && mark > 0;
       mark = word.text.rfind(BreakMark, mark - 1)) {
    line.push_back({word.text.substr(0, mark) + "-", word.accent});
    if (Width(line, style) <= width) return {word.text.substr(mark + 1), word.accent};
    line.pop_back();
  }
  return word;
}

std::vector<Line> BreakIntoLines(const Line &words, double width, const Style &style) {
  std::vector<Line> lines(1);
  for (const Word &word : words) {
    lines.back().push_back(word);
    if (Width(lines.back(), style) <= width) continue;
    lines.back().pop_back();
    const Word rest = BreakWord(lines.back(), word, width, style);
    if (lines.back().empty() || Width({rest}, style) > width) {
      throw std::invalid_argument("the word \"" + word.text + "\" is wider than its box: " +
                                  Decimal(Width({rest}, style)) + " of " + Decimal(width));
    }
    lines.push_back({rest});
  }
  return lines;
}

Style ReadStyle(const Element &element) {
  return {element.Number("cap") / CapitalHeight, element.Number("stretch", 1.0), element.Number("pen"),
          element.Number("contrast", 1.0),       element.Number("space", 0.0),   element.Number("serif", 0.0),
          element.Text("snap", "0") == "1",      element.Text("ends", "square")};
}

/// Start of a line and the space added between its words and letters.
struct Spacing {
  double start = 0.0, words = 0.0, letters = 0.0;
};

Spacing Align(const Line &line, const std::string &align, bool last, double width, const Style &style) {
  const double wide = Width(line, style), rest = width - wide;
  if (align == "center") return {rest / 2.0, 0.0, 0.0};
  if (align == "right") return {rest, 0.0, 0.0};
  if (align != "justify" || last || line.size() < 2 || wide < width * LeastFilled) return {};
  double letters = 0.0;
  for (const Word &word : line) letters += static_cast<double>(word.text.size());
  const double betweenLetters = std::min(rest / 2.0 / letters, MostLetterSpace * style.unit * style.stretch);
  return {0.0, (rest - betweenLetters * letters) / static_cast<double>(line.size() - 1), betweenLetters};
}

/// @throws std::invalid_argument  if the text takes more lines or height than the element allows
void CheckFit(const Element &element, double lines, double depth) {
  if (lines > element.Number("lines", lines)) {
    throw std::invalid_argument("the text \"" + element.content + "\" takes " + Decimal(lines) +
                                " lines of " + element.Text("lines"));
  }
  if (depth > element.Number("height", depth)) {
    throw std::invalid_argument("the text \"" + element.content.substr(0, 40) +
                                "...\" is higher than its box: " + Decimal(depth) + " of " +
                                element.Text("height"));
  }
}

} // namespace

std::string SetLettering(const Element &element) {
  const Style style = ReadStyle(element);
  const double left = element.Number("x"), top = element.Number("y"), width = element.Number("width");
  const double cap = element.Number("cap");
  const double leading = element.Number("leading", cap * 1.8), gap = element.Number("gap", 0.0);
  const std::string align = element.Text("align", "left"), ink = element.Text("ink");
  Setter setter(style, ink, element.Text("accent", ink));

  double baseline = top + cap, lowest = baseline, lineCount = 0.0;
  for (const Line &paragraph : Paragraphs(element.content)) {
    const std::vector<Line> lines = BreakIntoLines(paragraph, width, style);
    for (const Line &line : lines) {
      const Spacing spacing = Align(line, align, &line == &lines.back(), width, style);
      double x = left + spacing.start;
      for (const Word &word : line) {
        x = setter.SetWord(word, x, style.snap ? std::floor(baseline) + 0.5 : baseline, spacing.letters);
        x += Advance(" ", style) + spacing.words;
      }
      lowest = baseline;
      lineCount += 1.0;
      baseline += leading;
    }
    baseline += gap;
  }
  CheckFit(element, lineCount, lowest + DescenderDepth * style.unit - top);
  return setter.Svg();
}

std::string PlainWords(const Element &element) {
  std::string words = element.content;
  std::erase_if(words, [](char character) { return character == AccentMark || character == BreakMark; });
  return words;
}

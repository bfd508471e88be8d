#include "crowd.h"

#include <array>
#include <random>

namespace {

constexpr std::array Shirts = {"#e9484d", "#f6b83c", "#3f7fd6", "#f4efe6",
                               "#8e5bc0", "#2fa39a", "#f07f3a", "#d9588f"};
constexpr std::array Faces = {"#f6cfa6", "#e3a877", "#b97a4d", "#8a5433", "#f9dcc0"};
constexpr std::array Hairs = {"#3a2a24", "#6b4128", "#d9a441", "#20232b", "#a5502b"};
// In widths of a figure.
constexpr double RowHeight = 1.0, HeadRadius = 0.33, Jitter = 0.12;
// One figure in this many raises both arms.
constexpr unsigned Cheering = 6;

} // namespace

std::string SetCrowd(const Element &element) {
  const double left = element.Number("x"), width = element.Number("width"), person = element.Number("person");
  const int rows = static_cast<int>(element.Number("rows"));
  // The engine is the same on every machine; the standard distributions aren't.
  std::minstd_rand draw(static_cast<unsigned>(element.Number("seed", 1)));
  const auto oneOf = [&](const auto &choices) { return choices[(draw() >> 8) % choices.size()]; };
  const auto jitter = [&] {
    return (static_cast<double>((draw() >> 8) % 1000) / 500.0 - 1.0) * Jitter * person;
  };

  std::string svg;
  for (int row = 0; row < rows; ++row) {
    const double y = element.Number("y") + row * person * RowHeight;
    for (double x = left - (row % 2) * person / 2.0; x < left + width + person; x += person) {
      const double middle = x + jitter(), top = y + jitter(), half = person * 0.46;
      const std::string shirt = oneOf(Shirts);
      if ((draw() >> 8) % Cheering == 0) {
        svg += "<path d=\"M" + Decimal(middle - half * 1.05) + " " + Decimal(top - half * 1.2) + "L" +
               Decimal(middle - half * 0.5) + " " + Decimal(top + half) + "L" + Decimal(middle + half * 0.5) +
               " " + Decimal(top + half) + "L" + Decimal(middle + half * 1.05) + " " +
               Decimal(top - half * 1.2) + "\" fill=\"none\" stroke=\"" + oneOf(Faces) +
               "\" stroke-width=\"" + Decimal(person * 0.2) + "\" stroke-linecap=\"round\"/>";
      }
      svg += "<path d=\"M" + Decimal(middle - half) + " " + Decimal(top + 2.6 * half) + "V" +
             Decimal(top + half) + "Q" + Decimal(middle - half) + " " + Decimal(top + 0.3 * half) + " " +
             Decimal(middle) + " " + Decimal(top + 0.3 * half) + "T" + Decimal(middle + half) + " " +
             Decimal(top + half) + "V" + Decimal(top + 2.6 * half) + "Z\" fill=\"" + shirt + "\"/>";
      const std::string head = "\" r=\"" + Decimal(person * HeadRadius) + "\" fill=\"";
      svg += "<circle cx=\"" + Decimal(middle) + "\" cy=\"" + Decimal(top - person * 0.08) + head +
             oneOf(Hairs) + "\"/>";
      svg += "<circle cx=\"" + Decimal(middle) + "\" cy=\"" + Decimal(top + person * 0.04) + "\" r=\"" +
             Decimal(person * HeadRadius * 0.86) + "\" fill=\"" + oneOf(Faces) + "\"/>";
    }
  }
  return svg;
}

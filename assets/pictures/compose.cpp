// Composes a picture's source into plain SVG: puts in the parts that pictures share, sets the letterings and
// fills the stands. A text that doesn't fit its place stops the build. What is lettered in the picture is
// also written as plain text, for screen readers.
//
//     compose SOURCE PARTS_DIRECTORY OUTPUT WORDS_OUTPUT

#include "crowd.h"
#include "lettering.h"
#include "markup.h"

#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <set>
#include <sstream>
#include <stdexcept>

namespace {

// A part may use parts, but not itself.
constexpr int DeepestPart = 8;

std::string ReadFile(const std::filesystem::path &path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("cannot read " + path.string());
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

void WriteFile(const std::filesystem::path &path, const std::string &content) {
  std::ofstream file(path, std::ios::binary);
  file << content;
  if (!file.flush()) throw std::runtime_error("cannot write " + path.string());
}

std::string ReplaceElements(std::string text, const std::string &name,
                            const std::function<std::string(const Element &)> &replacement) {
  for (Element element = FindElement(text, name); !element.name.empty();) {
    const std::string svg = replacement(element);
    text.replace(element.begin, element.end - element.begin, svg);
    element = FindElement(text, name, element.begin + svg.size());
  }
  return text;
}

/// Puts a part's parameters in: {name} is the attribute of that name, {name|otherwise} may be left out.
std::string FillIn(std::string text, const Element &part) {
  for (std::size_t open = 0; (open = text.find('{', open)) != std::string::npos;) {
    const std::size_t close = text.find('}', open);
    if (close == std::string::npos) throw std::invalid_argument("a { without its }");
    const std::string inside = text.substr(open + 1, close - open - 1);
    const std::size_t bar = inside.find('|');
    const std::string value = bar == std::string::npos
                                  ? part.Text(inside)
                                  : part.Text(inside.substr(0, bar), inside.substr(bar + 1));
    const std::string escaped = Escape(value);
    text.replace(open, close - open + 1, escaped);
    open += escaped.size();
  }
  return text;
}

std::string PutInParts(const std::string &text, const std::filesystem::path &directory, int depth) {
  if (depth > DeepestPart) throw std::runtime_error("parts are nested too deeply");
  return ReplaceElements(text, "part", [&](const Element &part) {
    const std::string name = part.Text("name");
    try {
      return PutInParts(FillIn(ReadFile(directory / (name + ".svg")), part), directory, depth + 1);
    } catch (const std::invalid_argument &error) {
      throw std::invalid_argument("in part " + name + ": " + error.what());
    }
  });
}

/// The words of all letterings, a line for each. A word that is set several times, as a shadow or a rim, is
/// written once, and what an element calls silent not at all.
std::string WordsOf(const std::string &svg) {
  std::string words;
  std::set<std::string> written;
  for (Element lettering = FindElement(svg, "lettering"); !lettering.name.empty();
       lettering = FindElement(svg, "lettering", lettering.end)) {
    const std::string line = PlainWords(lettering);
    if (!lettering.Has("silent") && written.insert(line).second) words += line + "\n";
  }
  return words;
}

} // namespace

int main(int count, char **arguments) {
  if (count != 5) {
    std::cerr << "usage: compose SOURCE PARTS_DIRECTORY OUTPUT WORDS_OUTPUT\n";
    return 2;
  }
  try {
    std::string svg = PutInParts(ReadFile(arguments[1]), arguments[2], 0);
    WriteFile(arguments[4], WordsOf(svg));
    svg = ReplaceElements(svg, "lettering", SetLettering);
    svg = ReplaceElements(svg, "crowd", SetCrowd);
    WriteFile(arguments[3], svg);
  } catch (const std::exception &error) {
    std::cerr << arguments[1] << ": " << error.what() << "\n";
    return 1;
  }
  return 0;
}

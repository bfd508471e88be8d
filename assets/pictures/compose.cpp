// Converts the source of a picture to plain SVG: inserts shared parts, sets the letterings and fills the
// stands. A text that doesn't fit is an error. The words of the picture are also written as plain text, for
// screen readers.
//
//     compose_pictures SOURCE PARTS_DIRECTORY OUTPUT WORDS_OUTPUT

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

// Limits recursion: a part may use other parts, but not itself.
constexpr int DeepestPart = 8;

std::string ReadFile(const std::filesystem::path &path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("can't read " + path.string());
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

void WriteFile(const std::filesystem::path &path, const std::string &content) {
  std::ofstream file(path, std::ios::binary);
  file << content;
  if (!file.flush()) throw std::runtime_error("can't write " + path.string());
}

using Replacement = std::function<pugi::xml_document(const Element &)>;

/// Puts the replacement of every element of that name in its place, at any depth.
void ReplaceElements(pugi::xml_node parent, const std::string &name, const Replacement &replacement) {
  for (pugi::xml_node child = parent.first_child(), next; child; child = next) {
    next = child.next_sibling();
    if (child.name() != name) {
      ReplaceElements(child, name, replacement);
      continue;
    }
    const pugi::xml_document markup = replacement(Element(child));
    for (const pugi::xml_node &each : markup) parent.insert_copy_before(each, child);
    parent.remove_child(child);
  }
}

/// Fills in a part's parameters: {name} is the attribute of that name, {name|default} may be missing.
std::string FillIn(std::string text, const Element &part) {
  for (std::size_t open = 0; (open = text.find('{', open)) != std::string::npos;) {
    const std::size_t close = text.find('}', open);
    if (close == std::string::npos) throw std::invalid_argument("a { without its }");
    const std::string inside = text.substr(open + 1, close - open - 1);
    const std::size_t bar = inside.find('|');
    const std::string value = bar == std::string::npos
                                  ? part.Text(inside)
                                  : part.Text(inside.substr(0, bar), inside.substr(bar + 1));
    text.replace(open, close - open + 1, value);
    open += value.size();
  }
  return text;
}

/// The same in every attribute and text of a part's markup.
void FillIn(pugi::xml_node node, const Element &part) {
  for (pugi::xml_attribute attribute : node.attributes())
    attribute.set_value(FillIn(attribute.value(), part).c_str());
  if (node.type() == pugi::node_pcdata) node.set_value(FillIn(node.value(), part).c_str());
  for (const pugi::xml_node &child : node) FillIn(child, part);
}

void InsertParts(pugi::xml_node markup, const std::filesystem::path &directory, int depth) {
  if (depth > DeepestPart) throw std::runtime_error("parts are nested too deeply");
  ReplaceElements(markup, "part", [&](const Element &element) {
    const std::string name = element.Text("name");
    try {
      pugi::xml_document part = ParseMarkup(ReadFile(directory / (name + ".svg")));
      FillIn(part, element);
      InsertParts(part, directory, depth + 1);
      return part;
    } catch (const std::invalid_argument &error) {
      throw std::invalid_argument("in part " + name + ": " + error.what());
    }
  });
}

/// The words of all letterings, one per line. Text that is set several times, as a shadow or a rim, is
/// written once, and silent elements are left out.
std::string WordsOf(const pugi::xml_document &picture) {
  std::string words;
  std::set<std::string> written;
  pugi::xpath_node_set letterings = picture.select_nodes("//lettering");
  letterings.sort(); // in the order of the document
  for (const pugi::xpath_node &each : letterings) {
    const Element lettering(each.node());
    const std::string line = PlainWords(lettering);
    if (!lettering.Has("silent") && written.insert(line).second) words += line + "\n";
  }
  return words;
}

} // namespace

int main(int count, char **arguments) {
  if (count != 5) {
    std::cerr << "usage: compose_pictures SOURCE PARTS_DIRECTORY OUTPUT WORDS_OUTPUT\n";
    return 2;
  }
  try {
    pugi::xml_document picture = ParseMarkup(ReadFile(arguments[1]));
    InsertParts(picture, arguments[2], 0);
    WriteFile(arguments[4], WordsOf(picture));
    ReplaceElements(picture, "lettering",
                    [](const Element &each) { return ParseMarkup(SetLettering(each)); });
    ReplaceElements(picture, "crowd", [](const Element &each) { return ParseMarkup(SetCrowd(each)); });
    std::ostringstream svg;
    picture.save(svg, "", pugi::format_raw | pugi::format_no_declaration);
    WriteFile(arguments[3], svg.str());
  } catch (const std::exception &error) {
    std::cerr << arguments[1] << ": " << error.what() << "\n";
    return 1;
  }
  return 0;
}

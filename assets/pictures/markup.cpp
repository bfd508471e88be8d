#include "markup.h"

#include <cctype>
#include <cmath>
#include <cstdio>
#include <stdexcept>

namespace {

std::string ReplaceAll(std::string text, const std::string &from, const std::string &to) {
  for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
    text.replace(at, from.size(), to);
  }
  return text;
}

std::string Resolve(std::string_view text) {
  std::string plain(text);
  plain = ReplaceAll(plain, "&quot;", "\"");
  plain = ReplaceAll(plain, "&lt;", "<");
  plain = ReplaceAll(plain, "&gt;", ">");
  return ReplaceAll(plain, "&amp;", "&");
}

} // namespace

std::string Element::Text(const std::string &attribute) const {
  const auto found = attributes.find(attribute);
  if (found == attributes.end()) throw std::invalid_argument("<" + name + "> has no attribute " + attribute);
  return found->second;
}

std::string Element::Text(const std::string &attribute, const std::string &otherwise) const {
  return Has(attribute) ? Text(attribute) : otherwise;
}

double Element::Number(const std::string &attribute) const {
  const std::string text = Text(attribute);
  std::size_t read = 0;
  double value = 0.0;
  try {
    value = std::stod(text, &read);
  } catch (const std::exception &) {
    read = 0;
  }
  if (read == 0 || read != text.size()) {
    throw std::invalid_argument("<" + name + "> " + attribute + "=\"" + text + "\" is not a number");
  }
  return value;
}

double Element::Number(const std::string &attribute, double otherwise) const {
  return Has(attribute) ? Number(attribute) : otherwise;
}

Element FindElement(std::string_view text, const std::string &name, std::size_t from) {
  Element element;
  const std::string opening = "<" + name;
  std::size_t at = from;
  do {
    at = text.find(opening, at);
    if (at == std::string_view::npos) return element;
    at += opening.size();
  } while (at < text.size() && text[at] != ' ' && text[at] != '/' && text[at] != '>' && text[at] != '\n');

  element.name = name;
  element.begin = at - opening.size();
  while (at < text.size() && text[at] != '>' && text[at] != '/') {
    if (std::isspace(static_cast<unsigned char>(text[at]))) {
      ++at;
      continue;
    }
    const std::size_t equals = text.find("=\"", at);
    const std::size_t close = equals == std::string_view::npos ? equals : text.find('"', equals + 2);
    if (close == std::string_view::npos) throw std::invalid_argument("<" + name + "> has an open attribute");
    element.attributes[std::string(text.substr(at, equals - at))] =
        Resolve(text.substr(equals + 2, close - equals - 2));
    at = close + 1;
  }
  if (text.substr(at, 2) == "/>") {
    element.end = at + 2;
    return element;
  }
  const std::string closing = "</" + name + ">";
  const std::size_t close = text.find(closing, at);
  if (close == std::string_view::npos) throw std::invalid_argument("<" + name + "> isn't closed");
  element.content = Resolve(text.substr(at + 1, close - at - 1));
  element.end = close + closing.size();
  return element;
}

std::string Escape(std::string_view text) {
  std::string escaped = ReplaceAll(std::string(text), "&", "&amp;");
  escaped = ReplaceAll(escaped, "<", "&lt;");
  escaped = ReplaceAll(escaped, ">", "&gt;");
  return ReplaceAll(escaped, "\"", "&quot;");
}

std::string Decimal(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.2f", std::round(value * 100.0) / 100.0 + 0.0);
  std::string number = text;
  number.erase(number.find_last_not_of('0') + 1);
  if (number.back() == '.') number.pop_back();
  return number == "-0" ? "0" : number;
}

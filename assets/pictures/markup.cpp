#include "markup.h"

#include <cmath>
#include <cstdio>
#include <stdexcept>

std::string Element::Text(const std::string &attribute) const {
  if (Has(attribute)) return node_.attribute(attribute.c_str()).value();
  throw std::invalid_argument(std::string("<") + node_.name() + "> has no attribute " + attribute);
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
    throw std::invalid_argument(std::string("<") + node_.name() + "> " + attribute + "=\"" + text +
                                "\" is not a number");
  }
  return value;
}

double Element::Number(const std::string &attribute, double otherwise) const {
  return Has(attribute) ? Number(attribute) : otherwise;
}

pugi::xml_document ParseMarkup(const std::string &text) {
  // Keeps line breaks in attributes, which separate paragraphs of a lettering.
  constexpr unsigned Options = (pugi::parse_default | pugi::parse_fragment) & ~pugi::parse_wconv_attribute;
  pugi::xml_document document;
  const auto result = document.load_string(text.c_str(), Options);
  if (!result) {
    throw std::invalid_argument(std::string(result.description()) + " at byte " +
                                std::to_string(result.offset));
  }
  return document;
}

std::string Decimal(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.2f", std::round(value * 100.0) / 100.0 + 0.0);
  std::string number = text;
  number.erase(number.find_last_not_of('0') + 1);
  if (number.back() == '.') number.pop_back();
  return number == "-0" ? "0" : number;
}

#pragma once

// Our own elements in the sources of the pictures: their attributes and contents.

#include <pugixml.hpp>

#include <string>

/// One element `<name a="1" b="2">content</name>`.
class Element {
public:
  explicit Element(const pugi::xml_node &node) : content(node.text().get()), node_(node) {}

  std::string content; ///< the text inside

  bool Has(const std::string &attribute) const { return node_.attribute(attribute.c_str()) != nullptr; }

  /// @throws std::invalid_argument  if the attribute is missing
  std::string Text(const std::string &attribute) const;
  std::string Text(const std::string &attribute, const std::string &otherwise) const;
  /// @throws std::invalid_argument  if the attribute is missing or is not a number
  double Number(const std::string &attribute) const;
  double Number(const std::string &attribute, double otherwise) const;

private:
  pugi::xml_node node_;
};

/// Parses markup: any number of elements side by side.
/// @throws std::invalid_argument  if it is not well-formed
pugi::xml_document ParseMarkup(const std::string &text);

/// A number as SVG wants it, to a hundredth.
std::string Decimal(double value);

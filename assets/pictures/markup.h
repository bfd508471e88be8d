#pragma once

// As much of XML as the pictures' sources need: finding our own elements in a text and reading their
// attributes.

#include <cstddef>
#include <map>
#include <string>
#include <string_view>

/// One element `<name a="1" b="2">content</name>` or `<name .../>`.
class Element {
public:
  std::string name;
  std::map<std::string, std::string> attributes; ///< entities resolved
  std::string content;                           ///< entities resolved; no elements inside
  std::size_t begin = 0, end = 0;                ///< where it stands in the text that was searched

  bool Has(const std::string &attribute) const { return attributes.contains(attribute); }
  /// @throws std::invalid_argument  if there is none of that name
  std::string Text(const std::string &attribute) const;
  std::string Text(const std::string &attribute, const std::string &otherwise) const;
  /// @throws std::invalid_argument  if there is none of that name or it is no number
  double Number(const std::string &attribute) const;
  double Number(const std::string &attribute, double otherwise) const;
};

/// The first element of that name at or behind `from`; its name is empty if there is none.
/// @throws std::invalid_argument  if it doesn't end
Element FindElement(std::string_view text, const std::string &name, std::size_t from = 0);

/// The text with its special characters as entities, to be put into an attribute.
std::string Escape(std::string_view text);

/// A number as SVG wants it, to a hundredth.
std::string Decimal(double value);

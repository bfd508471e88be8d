#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// One line of plain text out of bytes that anybody may have sent. A byte that isn't UTF-8 becomes U+FFFD; a
/// control character, a line break and whatever turns the direction of writing become blanks.
/// @param characters  the line ends after so many
std::string PlainText(std::string_view bytes, std::size_t characters);

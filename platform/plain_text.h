#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Turns untrusted bytes into one line of plain text. A byte that isn't UTF-8 becomes U+FFFD; control
/// characters, line breaks and bidirectional controls become blanks.
/// @param characters  maximum length of the line
std::string PlainText(std::string_view bytes, std::size_t characters);

/// The text without the blanks and tabs at its ends.
std::string Trimmed(std::string_view text);

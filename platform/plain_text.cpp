#include "platform/plain_text.h"

namespace {

constexpr std::string_view NoCharacter = "\xEF\xBF\xBD"; ///< U+FFFD

struct Character {
  char32_t Code;
  std::size_t Bytes; ///< 0 if the text doesn't begin with a character
};

Character First(std::string_view text) {
  constexpr Character None{0, 0};
  const auto byte = [&](std::size_t index) { return static_cast<unsigned char>(text[index]); };
  const unsigned lead = byte(0);
  if (lead < 0x80) return {lead, 1};
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || text.size() < length) return None;
  char32_t code = lead & (0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0U) != 0x80U) return None;
    code = (code << 6) | (byte(i) & 0x3FU);
  }
  constexpr char32_t Least[] = {0, 0, 0x80, 0x800, 0x10000}; // a longer form than needed is none
  const bool half = code >= 0xD800 && code <= 0xDFFF;
  if (code < Least[length] || code > 0x10FFFF || half) return None;
  return {code, length};
}

bool BreaksLine(char32_t code) {
  const bool control = code < 0x20 || (code >= 0x7F && code <= 0x9F);
  const bool separator = code == 0x2028 || code == 0x2029;
  const bool direction = (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
  return control || separator || direction;
}

} // namespace

std::string PlainText(std::string_view bytes, std::size_t characters) {
  std::string line;
  for (; !bytes.empty() && characters > 0; --characters) {
    const auto [code, length] = First(bytes);
    if (length == 0) {
      line += NoCharacter;
      bytes.remove_prefix(1);
      continue;
    }
    if (BreaksLine(code)) {
      line += ' ';
    } else {
      line += bytes.substr(0, length);
    }
    bytes.remove_prefix(length);
  }
  return line;
}

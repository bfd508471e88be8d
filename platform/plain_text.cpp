#include "platform/plain_text.h"

#include <utf8cpp/utf8.h>

namespace {

constexpr std::string_view NoCharacter = "\xEF\xBF\xBD"; ///< U+FFFD

bool BreaksLine(char32_t code) {
  const bool control = code < 0x20 || (code >= 0x7F && code <= 0x9F);
  const bool separator = code == 0x2028 || code == 0x2029;
  const bool direction = (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
  return control || separator || direction;
}

} // namespace

std::string PlainText(std::string_view bytes, std::size_t characters) {
  std::string line;
  for (auto next = bytes.begin(); next != bytes.end() && characters > 0; --characters) {
    const auto begin = next;
    try {
      const char32_t code = utf8::next(next, bytes.end());
      if (BreaksLine(code)) {
        line += ' ';
      } else {
        line.append(begin, next);
      }
    } catch (const utf8::exception &) {
      line += NoCharacter;
      next = begin + 1;
    }
  }
  return line;
}

std::string Trimmed(std::string_view text) {
  constexpr const char *Blanks = " \t";
  const auto first = text.find_first_not_of(Blanks);
  if (first == std::string_view::npos) return {};
  return std::string(text.substr(first, text.find_last_not_of(Blanks) + 1 - first));
}

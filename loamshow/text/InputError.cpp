#include "loamshow/text/InputError.h"

#include "platform/tabula/Utf8.h"

namespace loamshow {

InputError::InputError(const std::string& problem) : std::runtime_error(tabula::masked(problem)) {
}

std::string printable(std::string_view text) {
  constexpr std::size_t most = 240;
  if (text.size() <= most) return tabula::masked(text);
  std::size_t end = most;
  while (end > most - 4 && (static_cast<unsigned char>(text[end]) & 0xc0U) == 0x80) {
    --end;  // do not split a character
  }
  return tabula::masked(text.substr(0, end)) + "...";
}

std::string quoted(std::string_view text) {
  return '"' + printable(text) + '"';
}

}  // namespace loamshow

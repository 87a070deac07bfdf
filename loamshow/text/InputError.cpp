#include "loamshow/text/InputError.h"

#include <algorithm>

namespace loamshow {

namespace {

bool isControl(char c) {
  return static_cast<unsigned char>(c) < 0x20 || c == 0x7f;
}

std::string oneLine(std::string text) {
  std::replace_if(text.begin(), text.end(), isControl, '?');
  return text;
}

}  // namespace

InputError::InputError(const std::string& problem) : std::runtime_error(oneLine(problem)) {
}

std::string printable(std::string_view text) {
  constexpr std::size_t most = 240;
  return oneLine(std::string(text.substr(0, most))) + (text.size() > most ? "..." : "");
}

}  // namespace loamshow

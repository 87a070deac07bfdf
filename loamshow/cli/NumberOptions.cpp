// Options with numeric values.

#include <charconv>
#include <limits>

#include "loamshow/cli/CommandTable.h"
#include "loamshow/text/InputError.h"

namespace loamshow {

namespace {

template <class Number, class... Format>
bool isNumber(const std::string& text, Number& number, Format... format) {
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, number, format...);
  return error == std::errc() && rest == end;
}

U64 integerFrom(U64 lowest, const std::string& text) {
  U64 number = 0;
  if (!isNumber(text, number) || number < lowest) {
    throw InputError("expected an integer from " + std::to_string(lowest) + " to " +
                     std::to_string(std::numeric_limits<U64>::max()));
  }
  return number;
}

}  // namespace

void setEvery(CommandLine& line, const std::string& value) {
  double seconds = 0;
  if (!isNumber(value, seconds, std::chars_format::fixed) || !(seconds >= 0.1 && seconds <= 86400)) {
    throw InputError("expected seconds from 0.1 to 86400");
  }
  line.every = seconds;
}

void setCount(CommandLine& line, const std::string& value) {
  line.count = integerFrom(1, value);
}

void setMost(CommandLine& line, const std::string& value) {
  line.most = integerFrom(0, value);
}

}  // namespace loamshow

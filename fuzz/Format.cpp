// The format engine against the C library's: one conversion between literals, with any flag, width,
// precision, size and value.

#include <cstdio>
#include <vector>

#include "fuzz/Collector.h"
#include "fuzz/Fuzz.h"

namespace {

template <class Value>
std::string theirs(const std::string& format, bool widthIsArg, int width, Value value) {
  char text[256];
  const int size = widthIsArg ? std::snprintf(text, sizeof text, format.c_str(), width, value)
                              : std::snprintf(text, sizeof text, format.c_str(), value);
  return {text, static_cast<std::size_t>(size)};
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  loamfuzz::Input input(data, size);
  std::string format = "<%%";
  for (const char c : input.text(20)) format += c == '%' || c == '\0' ? 'x' : c;
  format += input.flag() ? "%-" : "%";
  const int width = static_cast<int>(input.number(100));
  const bool widthIsArg = input.flag();
  std::vector<tabula::Arg> args;
  if (widthIsArg) args.emplace_back(static_cast<U32>(width));
  format += widthIsArg ? "*" : width == 0 ? "" : std::to_string(width);
  const U64 kind = input.number(5);
  if (kind == 0 && input.flag()) format += '.' + std::to_string(input.number(30));
  constexpr const char* conversions[] = {"s>", "llu>", "hu>", "d>", "u>"};
  format += conversions[kind];
  const U64 number = input.number(~U64{0}) >> input.number(64);
  const std::string text(input.text(100).c_str());
  std::string expected;
  const auto give = [&](auto value, auto raw) {
    args.emplace_back(value);
    expected = theirs(format, widthIsArg, width, raw);
  };
  switch (kind) {
    case 0:
      give(std::string_view(text), text.c_str());
      break;
    case 1:
      give(number, static_cast<unsigned long long>(number));
      break;
    case 2:
      give(static_cast<U16>(number), static_cast<unsigned short>(number));
      break;
    case 3:
      give(static_cast<int>(number), static_cast<int>(number));
      break;
    default:
      give(static_cast<U32>(number), static_cast<unsigned>(number));
  }
  loamfuzz::Collector ours(tabula::formatText);
  const int written = ours.addFrills(tabula::Format(format), args);
  ours.ioflush();
  loamfuzz::require(ours.text == expected && written == static_cast<int>(expected.size()));
  return 0;
}

// Compares the format engine with the C library: all kinds of formats, with any width and value.

#include <cstdio>

#include "fuzz/Fuzz.h"

namespace {

template <tabula::FixedString format, class... Value>
void compareOne(const Value&... values) {
  char theirs[512];
  const int size = std::snprintf(theirs, sizeof theirs, format.text.data(), values...);
  loamfuzz::Collector ours(tabula::formatText);
  const int written = ours.addFrills<format>(values...);
  ours.ioflush();
  loamfuzz::require(written == size && ours.text == std::string_view(theirs, static_cast<std::size_t>(size)));
}

template <tabula::FixedString... format, class... Value>
void compare(const Value&... values) {
  (compareOne<format>(values...), ...);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  loamfuzz::Input input(data, size);
  const auto width = static_cast<unsigned>(input.number(100));
  const unsigned long long number = input.number(~U64{0}) >> input.number(64);
  const std::string drawn = input.text(100);
  const char* const text = drawn.c_str();  // ends at a NUL
  compare<"%s", "<%%%-20s>", "%19s\n", "%-50s : ", "%.3s", "%-19.19s|", "%12.30s", "%-.19s\n">(text);
  compare<"%*s", "%-*s |", "100%% %*.5s">(width, text);
  compare<"%llu", "%7llu ", "%15llu", "%16llu", "%18llu\n", "%-17llu|", "%40llu">(number);
  compare<"%*llu", "%-*llu.">(width, number);
  compare<"%u", "%9u", "%-9u|", "%20u">(static_cast<unsigned>(number));
  compare<"%hu", "%4hu", "%-6hu|">(static_cast<unsigned short>(number));
  compare<"[%d]", "%12d", "%-12d|", "%20d">(static_cast<int>(number));
  return 0;
}

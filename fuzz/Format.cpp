// Compares the format engine with the C library: all kinds of formats, with any width and value.

#include <cstdio>
#include <tuple>

#include "fuzz/Fuzz.h"

namespace {

/// `raw` are the value and its width as arguments for the C library.
template <tabula::FixedString format, class... Raw, class... Value>
void compare(const std::tuple<Raw...>& raw, const Value&... values) {
  char theirs[512];
  const int size = std::apply(
      [&](const Raw&... each) { return std::snprintf(theirs, sizeof theirs, format.text.data(), each...); },
      raw);
  loamfuzz::Collector ours(tabula::formatText);
  const int written = ours.addFrills<format>(values...);
  ours.ioflush();
  loamfuzz::require(written == size && ours.text == std::string_view(theirs, static_cast<std::size_t>(size)));
}

template <tabula::FixedString... format, class... Raw, class... Value>
void compareAll(const std::tuple<Raw...>& raw, const Value&... values) {
  (compare<format>(raw, values...), ...);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  loamfuzz::Input input(data, size);
  const U32 width = static_cast<U32>(input.number(100));
  const U64 number = input.number(~U64{0}) >> input.number(64);
  const std::string drawn = input.text(100);
  const char* const raw = drawn.c_str();
  const std::string text = raw;
  const std::tuple wideRaw(static_cast<int>(width), raw);
  compareAll<"%s", "<%%%-20s>", "%19s\n", "%-50s : ", "%.3s", "%-19.19s|", "%12.30s", "%-.19s\n">(
      std::tuple(raw), text);
  compareAll<"%*s", "%-*s |", "100%% %*.5s">(wideRaw, width, text);
  const std::tuple whole(static_cast<unsigned long long>(number));
  compareAll<"%llu", "%7llu ", "%15llu", "%16llu", "%18llu\n", "%-17llu|", "%40llu">(whole, number);
  compareAll<"%*llu", "%-*llu.">(std::tuple_cat(std::tuple(static_cast<int>(width)), whole), width, number);
  compareAll<"%u", "%9u", "%-9u|", "%20u">(std::tuple(static_cast<unsigned>(number)),
                                           static_cast<U32>(number));
  compareAll<"%hu", "%4hu", "%-6hu|">(std::tuple(static_cast<unsigned short>(number)),
                                      static_cast<U16>(number));
  compareAll<"[%d]", "%12d", "%-12d|", "%20d">(std::tuple(static_cast<int>(number)),
                                               static_cast<int>(number));
  return 0;
}

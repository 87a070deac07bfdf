// The natural order is a strict weak ordering: irreflexive, asymmetric, and transitive, as is equivalence.

#include <array>

#include "LoamCounters/QueueCountersPrinter/NaturalOrder.h"
#include "fuzz/Fuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using LoamCounters::naturalCompare;
  loamfuzz::Input input(data, size);
  // Few different characters, so that names have long common prefixes and differ in all respects that the
  // order considers.
  const auto name = [&] {
    constexpr std::string_view characters = "0019. aAbB\xc3-";
    std::string text;
    for (U64 left = input.number(10); left > 0; --left) text += characters[input.number(characters.size())];
    return Mote::String(text);
  };
  const std::array<Mote::String, 3> names = {name(), name(), name()};
  const auto same = [](const auto& a, const auto& b) {
    return !naturalCompare(a, b) && !naturalCompare(b, a);
  };
  for (const auto& a : names) {
    loamfuzz::require(!naturalCompare(a, a));
    for (const auto& b : names) {
      loamfuzz::require(!(naturalCompare(a, b) && naturalCompare(b, a)));
      for (const auto& c : names) {
        if (naturalCompare(a, b) && naturalCompare(b, c)) loamfuzz::require(naturalCompare(a, c));
        if (same(a, b) && same(b, c)) loamfuzz::require(same(a, c));
      }
    }
  }
  return 0;
}

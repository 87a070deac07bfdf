// Names of interfaces: their natural order is a strict weak ordering, and as arguments they select interfaces
// or are explained.

#include <algorithm>

#include "LoamCounters/QueueCountersPrinter/NaturalOrder.h"
#include "fuzz/Fuzz.h"
#include "loamshow/cli/IntfArguments.h"
#include "loamshow/text/InputError.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using LoamCounters::naturalCompare;
  loamfuzz::Input input(data, size);
  // Few different characters, so that names have long common prefixes and differ in all respects that matter.
  const auto name = [&] {
    constexpr std::string_view characters = "0019. aAbB\xc3-,/";
    std::string text;
    for (U64 left = input.number(10); left > 0; --left) text += characters[input.number(characters.size())];
    return text;
  };
  const std::string names[] = {name(), name(), name()};
  const auto same = [](const std::string& a, const std::string& b) {
    return !naturalCompare(a, b) && !naturalCompare(b, a);
  };
  for (const std::string& a : names) {
    loamfuzz::require(!naturalCompare(a, a));
    for (const std::string& b : names) {
      loamfuzz::require(!(naturalCompare(a, b) && naturalCompare(b, a)));
      for (const std::string& c : names) {
        if (naturalCompare(a, b) && naturalCompare(b, c)) loamfuzz::require(naturalCompare(a, c));
        if (same(a, b) && same(b, c)) loamfuzz::require(same(a, c));
      }
    }
  }
  const std::vector<Nexo::IntfId> interfaces(std::begin(names), std::end(names));
  try {
    for (const Nexo::IntfId intf : loamshow::selectInterfaces(interfaces, {name(), names[0] + name()})) {
      loamfuzz::require(std::find(interfaces.begin(), interfaces.end(), intf) != interfaces.end());
    }
  } catch (const loamshow::InputError& error) {
    loamfuzz::require(*error.what() != '\0');
  }
  return 0;
}

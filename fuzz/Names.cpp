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
  // Few different parts, so that names have common prefixes, and arguments are names, lists or ranges.
  const auto text = [&input](const auto& parts) {
    std::string made;
    for (U64 left = input.number(10); left > 0; --left) made += parts[input.number(std::size(parts))];
    return made;
  };
  constexpr std::string_view characters = "0019. aAbB\xc3-";
  const std::string names[] = {text(characters), text(characters), text(characters)};
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
  constexpr std::string_view parts[] = {"a9", "A10", "-", "11", ","};
  const std::vector<Nexo::IntfId> interfaces = {Nexo::IntfId("a9"), Nexo::IntfId("a10"), Nexo::IntfId("a11")};
  try {
    for (const Nexo::IntfId intf : loamshow::selectInterfaces(interfaces, {text(parts)})) {
      loamfuzz::require(std::find(interfaces.begin(), interfaces.end(), intf) != interfaces.end());
    }
  } catch (const loamshow::InputError& error) {
    loamfuzz::require(*error.what() != '\0');
  }
  return 0;
}

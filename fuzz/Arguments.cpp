// Interface arguments: names of a switch, a line each, then an empty line and the arguments, a line each.

#include "fuzz/Fuzz.h"

#include <algorithm>

#include "loamshow/IntfArguments.h"
#include "loamshow/JsonDocument.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  loamfuzz::Input input(data, size);
  std::string_view rest = input.rest();
  std::vector<Nexo::IntfId> interfaces;
  std::vector<std::string> arguments;
  for (bool inNames = true; !rest.empty();) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(rest.size(), line.size() + 1));
    if (inNames && line.empty()) {
      inNames = false;
    } else if (inNames) {
      interfaces.emplace_back(line);
    } else {
      arguments.emplace_back(line);
    }
  }
  try {
    for (const Nexo::IntfId intf : loamshow::selectInterfaces(interfaces, arguments)) {
      loamfuzz::require(std::find(interfaces.begin(), interfaces.end(), intf) != interfaces.end());
    }
  } catch (const loamshow::InputError& error) {
    loamfuzz::require(*error.what() != '\0');
  }
  return 0;
}

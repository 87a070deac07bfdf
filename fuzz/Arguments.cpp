// Interface arguments. Input: names of a switch, one per line, an empty line, and the arguments, one per
// line.

#include "fuzz/Fuzz.h"

#include <algorithm>
#include <sstream>

#include "loamshow/cli/IntfArguments.h"
#include "loamshow/text/InputError.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::istringstream lines(std::string(data, data + size));
  std::vector<Nexo::IntfId> interfaces;
  std::vector<std::string> arguments;
  for (std::string name; std::getline(lines, name) && !name.empty();) interfaces.emplace_back(name);
  for (std::string argument; std::getline(lines, argument);) arguments.push_back(argument);
  try {
    for (const Nexo::IntfId intf : loamshow::selectInterfaces(interfaces, arguments)) {
      loamfuzz::require(std::find(interfaces.begin(), interfaces.end(), intf) != interfaces.end());
    }
  } catch (const loamshow::InputError& error) {
    loamfuzz::require(*error.what() != '\0');
  }
  return 0;
}

#include "platform/vane/Failure.h"

#include <unistd.h>

#include <cstdlib>
#include <string>

namespace Vane {

void throwRange(std::string_view typeName, std::string_view upperName) {
  const Mote::String name(typeName);
  throw RangeException(name + "::value < " + name + "::min or > " + name + "::" + upperName + " not allowed");
}

void fatal(std::string_view text) noexcept {
  const std::string line = "fatal: " + std::string(text) + "\n";
  // A failed write to standard error is ignored; the abort follows anyway.
  [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, line.data(), line.size());
  std::abort();
}

}  // namespace Vane

#pragma once

// Exceptions of the framework, and fatal assertions.

#include <stdexcept>
#include <string_view>

#include "platform/Mote.h"

namespace Vane {

/// Base of the framework's exceptions.
class Exception : public std::runtime_error {
 public:
  explicit Exception(const Mote::String& text) : std::runtime_error(text.c_str()) {}
};

/// A broken invariant.
class InternalException : public Exception {
 public:
  using Exception::Exception;
};

/// A value outside the range of its type.
class RangeException : public Exception {
 public:
  using Exception::Exception;
};

/// Throws the range error of a type: `typeName` is its full name, `upperName` the name of its upper limit.
[[noreturn]] void throwRange(std::string_view typeName, std::string_view upperName);

/// Writes the text to standard error and aborts.
[[noreturn]] void fatal(std::string_view text) noexcept;

}  // namespace Vane

/// A fatal assertion, in every build: if the condition is false, writes its text to standard error and
/// aborts.
#define VANE_ASSERT(condition) ((condition) ? void() : ::Vane::fatal(#condition))

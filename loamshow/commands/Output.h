#pragma once

// Output of the host's own texts, and messages.

#include <functional>
#include <string_view>

#include "platform/Mote.h"

namespace loamshow {

/// Receives a piece of a text.
using Sink = std::function<void(std::string_view)>;

/// Writes a text of the host as an operation, which can be interrupted: the text, or what `write` passes to
/// its sink. Throws if it could not be written completely.
void print(std::string_view text, U32 fd);
void print(const std::function<void(const Sink&)>& write, U32 fd);

/// Writes a warning or an error message to standard error, as one line.
void warn(std::string_view warning);

}  // namespace loamshow

#pragma once

#include <functional>
#include <string_view>

#include "platform/Mote.h"

namespace loamshow {

/// Receives a piece of a text.
using Sink = std::function<void(std::string_view)>;

/// Writes a text of the host's own as an operation, which an interrupt can end: the text, or what `write`
/// passes to its sink. Raises what keeps it from being written completely.
void print(std::string_view text, U32 fd);
void print(const std::function<void(const Sink&)>& write, U32 fd);

/// Says on standard error, in one line, what keeps an answer from being what was asked for.
void warn(std::string_view warning);

}  // namespace loamshow

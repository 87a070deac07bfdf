#pragma once

// UTF-8: validation, and removal of invalid bytes from messages.

#include <cstddef>
#include <string>
#include <string_view>

namespace tabula {

/// The first unit of a text: one UTF-8 sequence, or bytes that are not UTF-8.
struct Sequence {
  std::size_t size;
  bool valid;
};

/// The first unit of a text that begins with a non-ASCII byte.
Sequence takeSequence(std::string_view text);

/// Whether a text is valid UTF-8.
bool isUtf8(std::string_view text);

/// The text for a message on a terminal: '?' instead of control characters (C0, DEL, C1) and of bytes that
/// are not UTF-8.
std::string masked(std::string_view text);

}  // namespace tabula

#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tabula {

/// A stretch at the front of a text: one UTF-8 sequence, or bytes that are none.
struct Sequence {
  std::size_t size;
  bool valid;
};

/// The first stretch of a text that begins with a byte beyond ASCII.
Sequence takeSequence(std::string_view text);

/// Whether a text is UTF-8 throughout.
bool isUtf8(std::string_view text);

/// The text for a message on a terminal: '?' instead of control characters (C0, DEL, C1) and of bytes that
/// are not UTF-8.
std::string masked(std::string_view text);

}  // namespace tabula

#pragma once

// Describes errors in a JSON text that could not be read. Slow: the text is parsed again.

#include <string>
#include <string_view>

namespace loamshow {

/// The syntax error of a text, with its line and column; empty if there is none in the first `size` bytes or
/// at their end.
std::string syntaxProblem(std::string_view text, std::size_t size);

/// The JSON pointer of the value with whose first token `beginning` ends. For use in a message: shortened,
/// and without control characters; empty for the root value.
std::string pathOfLast(std::string_view beginning);

}  // namespace loamshow

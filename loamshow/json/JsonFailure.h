#pragma once

#include <string>
#include <string_view>

namespace loamshow {

// What to say of a JSON text that could not be read. Slow: the text is parsed again.

/// The syntax error of a text, with its line and column; empty when there is none in the first `size` bytes
/// or at their end.
std::string syntaxProblem(std::string_view text, std::size_t size);

/// The JSON pointer of the value whose first token ends a text's beginning. As a part of a message:
/// shortened, and without control characters; empty for the document's own value.
std::string pathOfLast(std::string_view beginning);

}  // namespace loamshow

#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace loamshow {

/// Input of a user that is not as it should be: a command line, a file. The text names the input and, inside
/// a document, the member. It is one line that a terminal can show, whatever the input holds.
class InputError : public std::runtime_error {
 public:
  explicit InputError(const std::string& problem);
};

/// A word of the input as a part of a one-line message: shortened, with '?' instead of control
/// characters and bytes that are not UTF-8.
std::string printable(std::string_view text);

/// The same within quotes.
std::string quoted(std::string_view text);

}  // namespace loamshow

#pragma once

// Errors in the user's input, and text for messages.

#include <stdexcept>
#include <string>
#include <string_view>

namespace loamshow {

/// Invalid input of a user: a command line or a file. The text names the input and, inside a document, the
/// member. It is one line without control characters.
class InputError : public std::runtime_error {
 public:
  explicit InputError(const std::string& problem);
};

/// A word of the input for use in a one-line message: shortened, with '?' instead of control characters and
/// bytes that are not UTF-8.
std::string printable(std::string_view text);

/// The same, in quotes.
std::string quoted(std::string_view text);

}  // namespace loamshow

#pragma once

// Padded text for the JSON reader.

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <utility>

namespace loamshow {

/// The text of a JsonReader, followed by the zero bytes that the reader needs.
class JsonText {
 public:
  static constexpr std::size_t padding = 64;

  /// Frees memory of std::malloc.
  struct Free {
    void operator()(char* bytes) const { std::free(bytes); }  // NOLINT(cppcoreguidelines-no-malloc)
  };
  using Bytes = std::unique_ptr<char[], Free>;

  explicit JsonText(std::string_view copied);
  /// Takes ownership of `size` bytes of text, followed by at least `padding` allocated bytes.
  JsonText(Bytes bytes, std::size_t size);
  /// Text that outlives the reader, with `padding` zero bytes after its end.
  static JsonText inPlace(std::string_view padded) { return JsonText(Bytes(), padded); }

  std::string_view view() const { return view_; }

 private:
  JsonText(Bytes bytes, std::string_view view) : bytes_(std::move(bytes)), view_(view) {}

  Bytes bytes_;
  std::string_view view_;
};

}  // namespace loamshow

#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <string_view>

namespace loamshow {

/// The text of a JsonReader, with the zero bytes after its end that the reader needs.
class JsonText {
 public:
  static constexpr std::size_t padding = 64;

  /// Memory of std::malloc.
  struct Free {
    void operator()(char* bytes) const { std::free(bytes); }
  };
  using Bytes = std::unique_ptr<char[], Free>;

  explicit JsonText(std::string_view copied);
  /// Takes over `size` bytes of text. At least `padding` further bytes are allocated after them.
  JsonText(Bytes bytes, std::size_t size);

  std::string_view view() const { return {bytes_.get(), size_}; }

 private:
  Bytes bytes_;
  std::size_t size_;
};

}  // namespace loamshow

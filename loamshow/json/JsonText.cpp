#include "loamshow/json/JsonText.h"

#include <simdjson.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace loamshow {

namespace {

JsonText::Bytes allocated(std::size_t size) {
  JsonText::Bytes bytes(static_cast<char*>(std::malloc(size)));  // NOLINT(cppcoreguidelines-no-malloc)
  if (bytes == nullptr) throw std::bad_alloc();
  return bytes;
}

}  // namespace

JsonText::JsonText(std::string_view copied) : JsonText(allocated(copied.size() + padding), copied.size()) {
  std::copy(copied.begin(), copied.end(), bytes_.get());
}

JsonText::JsonText(Bytes bytes, std::size_t size) : bytes_(std::move(bytes)), view_(bytes_.get(), size) {
  static_assert(padding >= simdjson::SIMDJSON_PADDING);
  // JSON has no zero bytes, so the reader stops there if the text ends too early.
  std::memset(bytes_.get() + size, 0, padding);
}

}  // namespace loamshow

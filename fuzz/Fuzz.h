#pragma once

// Shared code of the fuzz targets.

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "platform/Mote.h"
#include "platform/tabula/Renderer.h"

/// The entry point for libFuzzer, or for Replay.cpp without libFuzzer. Each target defines it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace loamfuzz {

/// Decodes fuzz input; after its end, zeros and empty texts.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : rest_(reinterpret_cast<const char*>(data), size) {}

  bool atEnd() const { return rest_.empty(); }
  /// A number below `limit`.
  U64 number(U64 limit) {
    U64 value = 0;
    const std::size_t size = limit <= 256 ? 1 : sizeof value;
    const std::string_view bytes = take(size);
    std::memcpy(&value, bytes.data(), bytes.size());
    return value % limit;
  }
  bool flag() { return number(2) != 0; }
  std::string text(std::size_t most) { return std::string(take(number(most + 1))); }

 private:
  std::string_view take(std::size_t most) {
    const std::string_view taken = rest_.substr(0, most);
    rest_.remove_prefix(taken.size());
    return taken;
  }

  std::string_view rest_;
};

/// Collects output.
class Collector : public tabula::Renderer {
 public:
  explicit Collector(U32 format) : Renderer(format) {}
  std::string text;

 protected:
  void take(std::string_view bytes) override { text += bytes; }
};

inline void require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace loamfuzz

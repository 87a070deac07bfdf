#pragma once

// Output that stays in memory: a block of the size of a Printer's buffer, discarded or kept when it is full.

#include <array>
#include <string>
#include <string_view>

#include "platform/tabula.h"

namespace loambench {

/// A printer without a descriptor.
class MemoryPrinter : public tabula::Printer {
 public:
  /// `kept` collects the output; null discards it.
  MemoryPrinter(U32 format, std::string* kept) : Printer(-1, format, true, false, true, 0), kept_(kept) {}

 protected:
  void take(std::string_view bytes) override {
    if (kept_ != nullptr) *kept_ += bytes;
  }

 private:
  std::string* kept_;
};

/// The same for other libraries.
class Block {
 public:
  explicit Block(std::string* kept) : kept_(kept) {}
  char* room(std::size_t size) {
    if (size_ + size > block_.size()) discard();
    return block_.data() + size_;
  }
  void wrote(std::size_t size) { size_ += size; }
  void discard() {
    if (kept_ != nullptr) kept_->append(block_.data(), size_);
    size_ = 0;
  }

 private:
  std::array<char, std::size_t{64} * 1024> block_;
  std::size_t size_ = 0;
  std::string* kept_;
};

}  // namespace loambench

#pragma once

// The memory mapping of a counter region, whose file may be truncated at any time.

#include <atomic>
#include <cstddef>

#include "platform/Mote.h"

namespace LoamCounters {

enum class RegionAccess : U8 { read, write };

/// A shared mapping of a file. If another process truncates the file, an access beyond its end raises SIGBUS;
/// a handler that calls `coverRegionHole` replaces the lost pages by zeros.
class RegionMapping {
 public:
  /// Maps the first `size` bytes of a file. The caller keeps ownership of the descriptor. Throws
  /// std::system_error.
  RegionMapping(int fd, std::size_t size, RegionAccess access);
  RegionMapping(const RegionMapping&) = delete;
  RegionMapping& operator=(const RegionMapping&) = delete;
  ~RegionMapping();

  char* bytes() const noexcept { return bytes_; }
  std::size_t size() const noexcept { return size_; }
  /// Whether a part of the file was lost and replaced by zeros.
  bool hasHole() const noexcept { return hole_->load(std::memory_order_relaxed); }

 private:
  char* bytes_ = nullptr;
  std::size_t size_;
  std::atomic<bool>* hole_ = nullptr;  // in this process's table of mappings
};

/// For a SIGBUS handler, with the address of its siginfo_t. If the address is in a mapped region, replaces
/// the lost pages by zeros and returns true; the failed access is then repeated.
bool coverRegionHole(void* address) noexcept;

}  // namespace LoamCounters

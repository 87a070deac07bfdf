#pragma once

// The memory of a counter region, which may lose its file's end at any time.

#include <atomic>
#include <cstddef>

#include "platform/Mote.h"

namespace LoamCounters {

enum class RegionAccess : U8 { read, write };

/// A shared mapping of a file. Where another process truncates the file, touching what is lost raises SIGBUS;
/// a handler that calls `coverRegionHole` makes it readable as zeros.
class RegionMapping {
 public:
  /// Maps the first `size` bytes of a file, whose descriptor stays the caller's. Raises std::system_error.
  RegionMapping(int fd, std::size_t size, RegionAccess access);
  RegionMapping(const RegionMapping&) = delete;
  RegionMapping& operator=(const RegionMapping&) = delete;
  ~RegionMapping();

  char* bytes() const noexcept { return bytes_; }
  std::size_t size() const noexcept { return size_; }
  /// Whether a part of the file was lost and covered.
  bool hasHole() const noexcept { return hole_->load(std::memory_order_relaxed); }

 private:
  char* bytes_ = nullptr;
  std::size_t size_;
  std::atomic<bool>* hole_ = nullptr;  // in this process's table of mappings
};

/// For a handler of SIGBUS, with the address of its siginfo_t: when the address lies in a mapped region, puts
/// zeros in place of what the file has lost and answers true, and the access that failed is carried on with.
bool coverRegionHole(void* address) noexcept;

}  // namespace LoamCounters

#pragma once

// Output captured in memory.

#include <cstddef>
#include <string_view>

#include "platform/Mote.h"

namespace tabula {

/// A descriptor whose output stays in the memory of the process, for a host that processes output before it
/// shows it. The output of a Printer of the same thread to fd() is appended to text(), without a system call.
/// Anything else that is written to fd() is lost. Objects of a thread must be destroyed in reverse order of
/// their creation.
class MemoryOutput {
 public:
  /// Throws std::system_error if there is no free descriptor.
  MemoryOutput();
  MemoryOutput(const MemoryOutput&) = delete;
  MemoryOutput& operator=(const MemoryOutput&) = delete;
  ~MemoryOutput();

  U32 fd() const { return static_cast<U32>(fd_); }
  /// What has been written since the last clear(), followed by `padding` zero bytes. Valid until more is
  /// written.
  std::string_view text(std::size_t padding = 0);
  /// Discards what has been written, and keeps the memory for reuse.
  void clear() { size_ = 0; }

  /// The thread's object of that descriptor; null for any other descriptor.
  static MemoryOutput* find(int fd) noexcept;
  /// Throws std::system_error if there is not enough memory.
  void append(std::string_view bytes);

 private:
  void reserve(std::size_t size);

  int fd_;
  MemoryOutput* const outer_;  // the thread's object before this one
  char* bytes_ = nullptr;      // a mapping, which grows without being copied
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
};

}  // namespace tabula

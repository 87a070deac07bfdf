#pragma once

#include <cstddef>
#include <string_view>

#include "platform/Mote.h"

namespace tabula {

/// A descriptor whose output stays in the memory of the process, for a host that reads an answer before it
/// shows it: what a Printer of the same thread writes to fd() is appended to text(), without a system call.
/// Anything else that is written to fd() is lost. Objects of a thread are destroyed in reverse order of their
/// creation.
class MemoryOutput {
 public:
  /// Raises std::system_error when there is no descriptor left.
  MemoryOutput();
  MemoryOutput(const MemoryOutput&) = delete;
  MemoryOutput& operator=(const MemoryOutput&) = delete;
  ~MemoryOutput();

  U32 fd() const { return static_cast<U32>(fd_); }
  /// What has been written since the last clear(), with `padding` zero bytes after it. Valid until more is
  /// written.
  std::string_view text(std::size_t padding = 0);
  /// Forgets what has been written, and keeps its memory for what will be.
  void clear() { size_ = 0; }

  /// The thread's object of that descriptor; null for any other descriptor.
  static MemoryOutput* find(int fd) noexcept;
  /// Raises std::system_error when the memory does not suffice.
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

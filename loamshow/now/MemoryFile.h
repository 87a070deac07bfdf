#pragma once

#include <string>
#include <string_view>
#include <thread>

#include "platform/Mote.h"

namespace loamshow {

/// A descriptor that keeps in memory what is written to it: an answer that is to be read before it is shown.
class MemoryFile {
 public:
  /// Raises std::system_error when there is none to get.
  MemoryFile();
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;
  ~MemoryFile();

  U32 fd() const { return static_cast<U32>(fd_); }
  /// Forgets what has been written, and keeps its memory for what will be.
  void clear();
  /// What has been written since, with `padding` zero bytes after it. Valid until the next clear(). Call it
  /// once, after the last write.
  std::string_view content(std::size_t padding = 0);

 private:
  void release();
  void collect(int from);

  int fd_ = -1;
  void* mapped_ = nullptr;
  std::size_t size_ = 0;
  // Where the size of files is limited: what a thread has read from a pipe.
  std::string collected_;
  std::thread collector_;
};

}  // namespace loamshow

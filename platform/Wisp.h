#pragma once

// Wisp, the tracing library. Off unless the environment variable LOAM_TRACE names a file. Each record appends
// a line to it: the time in UTC, the text, and for a timer the duration. A file that cannot be opened is
// reported once, on standard error, and tracing stays off.

#include <chrono>
#include <string_view>

namespace Wisp {

/// Whether records are written.
bool enabled() noexcept;

void trace(std::string_view text) noexcept;

/// Measures the enclosing block, and records the duration at its end.
class BlockTimer {
 public:
  /// The text must outlive the timer.
  explicit BlockTimer(std::string_view text) noexcept : text_(text) {
    if (enabled()) begin_ = std::chrono::steady_clock::now();
  }
  BlockTimer(const BlockTimer&) = delete;
  BlockTimer& operator=(const BlockTimer&) = delete;
  ~BlockTimer() {
    if (enabled()) end();
  }

 private:
  void end() const noexcept;

  std::string_view text_;
  std::chrono::steady_clock::time_point begin_;
};

}  // namespace Wisp

#pragma once

// Wisp, the tracing library. Off unless the environment's LOAM_TRACE names a file, to which each record then
// appends a line: its time in UTC, its text, and for a timer the duration. A file that cannot be opened is
// reported once, on standard error, and tracing stays off.

#include <chrono>
#include <string_view>

namespace Wisp {

/// Whether records are kept.
bool enabled() noexcept;

void trace(std::string_view text) noexcept;

/// Measures the block in which it lives, and records the duration at its end.
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

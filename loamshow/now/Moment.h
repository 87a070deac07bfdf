#pragma once

// Times of states.

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

#include "loamshow/state/Switch.h"

namespace loamshow {

/// When a switch's counters were read: `takenAt` of its state, or the clocks of this machine.
class Moment {
 public:
  /// The time of a state that has just been read.
  explicit Moment(const SwitchState& state);

  /// RFC 3339 in UTC.
  const std::string& text() const { return text_; }
  bool isOfState() const { return isOfState_; }
  /// The seconds since another moment, if both are from states or both from the clock. Negative if the other
  /// one is later.
  std::optional<double> secondsSince(const Moment& other) const;

 private:
  std::string text_;
  bool isOfState_;
  std::chrono::microseconds time_;  // since 1970, or of a monotonic clock
};

}  // namespace loamshow

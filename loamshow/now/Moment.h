#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

#include "loamshow/state/Switch.h"

namespace loamshow {

/// When a switch's counters were read: as its state says, else by the clocks of this machine.
class Moment {
 public:
  /// That of a state which is read at this moment.
  explicit Moment(const SwitchState& state);

  /// RFC 3339 in UTC.
  const std::string& text() const { return text_; }
  bool isOfState() const { return isOfState_; }
  /// The seconds since another moment, unless only one of the two is known from a state. Negative when the
  /// other one is later.
  std::optional<double> secondsSince(const Moment& other) const;

 private:
  std::string text_;
  bool isOfState_;
  std::chrono::microseconds time_;  // since 1970, or of a clock that nobody sets
};

}  // namespace loamshow

#pragma once

// The states of a switch that successive outputs show.

#include <optional>
#include <string>

#include "loamshow/now/Moment.h"
#include "loamshow/state/Switch.h"

namespace loamshow {

/// What a command shows: a state, its time, and the interval.
struct Shown {
  SwitchState state;
  Moment moment;
  std::optional<double> seconds;  // interval of the counts, if known
};

/// Successive states of one switch, each with the counts since the previous one.
class History {
 public:
  /// `source` is the name of the source in messages.
  explicit History(std::string source) : source_(std::move(source)) {}

  /// Sets the state from which the first one counts; `file` is its name in messages.
  void beginAt(const std::string& file, SwitchState state);
  /// The counts of `now` since the previous state; all counts if there is none. Throws InputError if the two
  /// are of different switches, or in the wrong order.
  Shown advance(SwitchState now);

 private:
  struct Entry {
    SwitchState state;
    Moment moment;
    bool isFile;
  };

  std::string source_;
  std::string file_;
  std::optional<Entry> before_;
};

}  // namespace loamshow

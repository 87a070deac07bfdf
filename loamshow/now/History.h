#pragma once

#include <optional>
#include <string>

#include "loamshow/now/Moment.h"
#include "loamshow/state/Switch.h"

namespace loamshow {

/// What an answer shows of a switch.
struct Shown {
  SwitchState state;
  Moment moment;
  std::optional<double> seconds;  // that were counted, where that is known
};

/// States of one switch, each of which counts from the one before.
class History {
 public:
  /// `source` is where the states come from, in messages.
  explicit History(std::string source) : source_(std::move(source)) {}

  /// Makes the first state count from this one, which comes from `file`.
  void beginAt(const std::string& file, SwitchState state);
  /// The counts of `now` since the state before; all of them when there is none. Raises InputError when one
  /// of the two is another switch's, or they come in the wrong order.
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

#include "loamshow/now/History.h"

#include "loamshow/now/Difference.h"
#include "loamshow/text/InputError.h"

namespace loamshow {

void History::beginAt(const std::string& file, SwitchState state) {
  file_ = file;
  const Moment moment(state);
  before_.emplace(Entry{std::move(state), moment, true});
}

Shown History::advance(SwitchState now) {
  Shown shown{now, Moment(now), {}};
  if (before_) {
    const SwitchState& then = before_->state;
    // If two states do not match, the message names the file, or the later state if there is no file.
    const std::string at = (before_->isFile ? file_ : source_) + ": /switch/";
    if (!now.name.empty() && !then.name.empty() && now.name != then.name) {
      const auto [expected, actual] =
          before_->isFile ? std::pair(now.name, then.name) : std::pair(then.name, now.name);
      throw InputError(at + "name: expected " + printable(expected) + ", not " + printable(actual));
    }
    // Without takenAt, the times are those of reading, which do not tell when the file was written.
    if (!before_->isFile || shown.moment.isOfState()) {
      shown.seconds = shown.moment.secondsSince(before_->moment);
    }
    if (shown.seconds.value_or(0) < 0) {
      throw InputError(at + "takenAt: expected a time " +
                       (before_->isFile
                            ? "up to " + shown.moment.text() + ", not " + before_->moment.text()
                            : "from " + before_->moment.text() + " on, not " + shown.moment.text()));
    }
    shown.state = since(now, then);
  }
  const Moment moment = shown.moment;
  before_.emplace(Entry{std::move(now), moment, false});
  return shown;
}

}  // namespace loamshow

#include "loamshow/now/Moment.h"

#include <ctime>

namespace loamshow {

namespace {

using std::chrono::microseconds;

/// Parses the digits in a part of a text.
int number(std::string_view text, std::size_t at, std::size_t size) {
  int number = 0;
  for (const char digit : text.substr(at, size)) number = 10 * number + (digit - '0');
  return number;
}

/// Parses the time of a state: "2026-11-23T10:53:31Z", with up to six digits of fraction.
microseconds sinceEpoch(std::string_view text) {
  using namespace std::chrono;
  const year_month_day date{year(number(text, 0, 4)), month(static_cast<unsigned>(number(text, 5, 2))),
                            day(static_cast<unsigned>(number(text, 8, 2)))};
  std::string fraction(text.substr(19, text.size() - 20));  // including the point, if any
  fraction.resize(7, '0');
  return sys_days(date).time_since_epoch() + hours(number(text, 11, 2)) + minutes(number(text, 14, 2)) +
         seconds(number(text, 17, 2)) + microseconds(number(fraction, 1, 6));
}

std::string nowText() {
  const std::time_t now = std::time(nullptr);
  std::tm parts{};
  ::gmtime_r(&now, &parts);
  std::string text(20, '\0');
  text.resize(std::strftime(text.data(), text.size() + 1, "%Y-%m-%dT%H:%M:%SZ", &parts));
  return text;
}

}  // namespace

Moment::Moment(const SwitchState& state)
    : text_(state.takenAt.empty() ? nowText() : std::string(state.takenAt.view())),
      isOfState_(!state.takenAt.empty()),
      time_(isOfState_ ? sinceEpoch(text_)
                       : std::chrono::duration_cast<microseconds>(
                             std::chrono::steady_clock::now().time_since_epoch())) {
}

std::optional<double> Moment::secondsSince(const Moment& other) const {
  if (isOfState_ != other.isOfState_) return {};
  return std::chrono::duration<double>(time_ - other.time_).count();
}

}  // namespace loamshow

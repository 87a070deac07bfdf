#include "platform/Keel.h"

#include <chrono>
#include <cmath>
#include <string>

namespace Keel {

namespace {

// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): a property of the switch
constinit Vane::Seconds switchTimeOffset;

}  // namespace

Mote::String MaybeU63::stringValue() const {
  return null() ? std::string() : std::to_string(raw_);
}

void switchTimeOffsetIs(Vane::Seconds offset) {
  switchTimeOffset = offset;
}

Vane::Seconds switchTimeToUtc(Vane::Seconds switchTime) {
  return Vane::Seconds(switchTime.value() + switchTimeOffset.value());
}

Mote::String utcTimestampString(Vane::Seconds utc) {
  using namespace std::chrono;
  constexpr double earliest = sys_days(year(0) / January / 1).time_since_epoch() / 1s;
  constexpr double end = sys_days(year(10000) / January / 1).time_since_epoch() / 1s;

  const double second = std::floor(utc.value());
  if (!(second >= earliest && second < end)) return "invalid";
  const sys_seconds time{seconds(static_cast<std::int64_t>(second))};
  const sys_days day = floor<days>(time);
  const year_month_day date(day);
  const hh_mm_ss clock(time - day);
  // Formatted by hand for speed: a debug report has two or three times in every line.
  std::string text = "0000-00-00 00:00:00";
  const auto put = [&text](std::size_t at, auto value) {
    for (; value != 0; value /= 10) text[--at] = static_cast<char>('0' + value % 10);
  };
  put(4, static_cast<int>(date.year()));
  put(7, static_cast<unsigned>(date.month()));
  put(10, static_cast<unsigned>(date.day()));
  put(13, clock.hours().count());
  put(16, clock.minutes().count());
  put(19, clock.seconds().count());
  return text;
}

}  // namespace Keel

#include "platform/Keel.h"

#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
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
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02u-%02u %02d:%02d:%02d", static_cast<int>(date.year()),
                static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
                static_cast<int>(clock.seconds().count()));
  return text.data();
}

}  // namespace Keel

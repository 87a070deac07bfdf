#pragma once

// Keel, platform utilities: optional counts, and times of the switch.

#include <cstdint>

#include "platform/Mote.h"
#include "platform/Vane.h"

namespace Keel {

/// A count of up to 63 bits, or no value.
class MaybeU63 {
 public:
  constexpr MaybeU63() noexcept = default;
  /// A negative raw value means no value.
  constexpr explicit MaybeU63(std::int64_t raw) noexcept : raw_(raw) {}

  constexpr bool null() const noexcept { return raw_ < 0; }
  /// The count; 0 without a value.
  constexpr U64 value() const noexcept { return null() ? 0 : static_cast<U64>(raw_); }
  /// The count's decimal text; empty without a value.
  Mote::String stringValue() const;

 private:
  std::int64_t raw_ = -1;
};

/// Sets the seconds from the switch's clock to UTC. Call before commands run.
void switchTimeOffsetIs(Vane::Seconds offset);
/// A time of the switch's clock as seconds since 1970 UTC.
Vane::Seconds switchTimeToUtc(Vane::Seconds switchTime);
/// "YYYY-MM-DD HH:MM:SS", rounded down to a second; "invalid" if the time is not finite or its year is not 0
/// to 9999.
Mote::String utcTimestampString(Vane::Seconds utc);

}  // namespace Keel

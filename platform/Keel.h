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
  /// The count; 0 when there is none.
  constexpr U64 value() const noexcept { return null() ? 0 : static_cast<U64>(raw_); }
  /// The count's decimal text; empty when there is none.
  Mote::String stringValue() const;

 private:
  std::int64_t raw_ = -1;
};

/// The seconds from the switch's clock to UTC. Set before commands run.
void switchTimeOffsetIs(Vane::Seconds offset);
/// A time of the switch's clock as seconds since 1970 UTC.
Vane::Seconds switchTimeToUtc(Vane::Seconds switchTime);
/// "YYYY-MM-DD HH:MM:SS" of the second that the time lies in; "invalid" when it is not finite or its year is
/// outside 0 to 9999.
Mote::String utcTimestampString(Vane::Seconds utc);

}  // namespace Keel

#pragma once

// Optional values and times.

#include <compare>
#include <optional>

namespace Vane {

/// A value that may be missing.
template <class T>
using Optional = std::optional<T>;

/// A time in seconds; 0 means never.
class Seconds {
 public:
  constexpr Seconds() noexcept = default;
  constexpr explicit Seconds(double value) noexcept : value_(value) {}
  constexpr double value() const noexcept { return value_; }
  friend constexpr auto operator<=>(const Seconds&, const Seconds&) = default;

 private:
  double value_ = 0;
};

}  // namespace Vane

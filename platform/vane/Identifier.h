#pragma once

// Numbers with a checked range, such as FAP ids.

#include <compare>
#include <string_view>

#include "platform/Mote.h"
#include "platform/vane/Failure.h"

namespace Vane {

/// A number within a fixed range. `Self::vaneName` is the name of the type, `Self::upperName` that of its
/// upper limit ("null" if the largest value means none, otherwise "max"). Creating or incrementing one
/// outside `Lowest` to `Highest` throws RangeException.
template <class Self, class Rep, Rep Lowest, Rep Highest>
class Identifier {
 public:
  using Number = Rep;
  static constexpr Rep lowest = Lowest;
  static constexpr Rep highest = Highest;

  constexpr explicit Identifier(U64 value) : value_(static_cast<Rep>(value)) {
    if (value < Lowest || value > Highest) throwRange(Self::vaneName, Self::upperName);
  }

  /// The value that means none.
  template <class Id = Self>  // a template parameter, because Self is incomplete until the call
  static constexpr Self null() requires(Id::upperName == "null") {
    return Self(Highest);
  }

  constexpr Rep value() const noexcept { return value_; }

  Self& operator++() {
    auto& self = static_cast<Self&>(*this);
    return self = Self(U64{value_} + 1);
  }

  friend constexpr auto operator<=>(const Identifier&, const Identifier&) = default;
  std::size_t hash() const noexcept { return value_; }

 private:
  Rep value_;
};

}  // namespace Vane

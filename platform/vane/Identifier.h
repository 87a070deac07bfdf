#pragma once

#include <compare>
#include <string_view>

#include "platform/Mote.h"
#include "platform/vane/Failure.h"

namespace Vane {

/// A number within a fixed range. `Self` names itself in `vaneName` and its upper limit ("null" where the
/// largest value stands for none, else "max") in `upperName`. Making or stepping one outside
/// `Lowest` to `Highest` raises RangeException.
template <class Self, class Rep, Rep Lowest, Rep Highest>
class Identifier {
 public:
  using Number = Rep;
  static constexpr Rep lowest = Lowest;
  static constexpr Rep highest = Highest;

  constexpr explicit Identifier(U64 value) : value_(static_cast<Rep>(value)) {
    if (value < Lowest || value > Highest) throwRange(Self::vaneName, Self::upperName);
  }

  /// The value that stands for none.
  template <class Id = Self>  // a parameter of its own, since Self is complete only when it is called
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

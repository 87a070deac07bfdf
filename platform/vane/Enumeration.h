#pragma once

// Names of enumerators.

#include <algorithm>
#include <iterator>
#include <string_view>

#include "platform/Mote.h"
#include "platform/vane/Failure.h"
#include "platform/vane/Scalars.h"

namespace Vane {

/// Specialized for an 8-bit enumeration whose values count from 0: `name`, the enumeration's full name, and
/// `values`, an array of the enumerators' names in numeric order.
template <class E>
struct Enumeration;

template <class E>
concept Enumerated = requires {
  Enumeration<E>::values;
};

/// The name of a value; throws RangeException for a number that is not a value of the enumeration.
template <Enumerated E>
std::string_view enumName(E value) {
  const auto index = static_cast<std::size_t>(value);
  if (index >= std::size(Enumeration<E>::values)) throwRange(Enumeration<E>::name, "max");
  return Enumeration<E>::values[index];
}

/// The value of a number; throws RangeException if there is none.
template <Enumerated E>
E enumFromNumber(U32 number) {
  if (number >= std::size(Enumeration<E>::values)) throwRange(Enumeration<E>::name, "max");
  return static_cast<E>(number);
}

/// The value of a name, if there is one.
template <Enumerated E>
Optional<E> enumFromName(std::string_view name) {
  const auto& values = Enumeration<E>::values;
  const auto found = std::find(std::begin(values), std::end(values), name);
  if (found == std::end(values)) return {};
  return static_cast<E>(found - std::begin(values));
}

}  // namespace Vane

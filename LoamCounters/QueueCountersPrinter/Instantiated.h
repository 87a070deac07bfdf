#pragma once

// Storage of an instantiating attribute.

#include <optional>
#include <tuple>
#include <utility>

#include "platform/Mote.h"

namespace LoamCounters {

/// An object that is created on demand and kept, together with the arguments of its constructor.
template <class Object, class... Arguments>
class Instantiated {
 public:
  using Ptr = Mote::Ptr<Object>;

  /// Null if there is none.
  const Ptr& held() const noexcept { return held_; }
  /// The current object, if it was created from these arguments; otherwise replaces it by a new one.
  const Ptr& is(const Arguments&... arguments) {
    if (madeFrom_ != std::tie(arguments...)) {
      held_ = Mote::make<Object>(arguments...);
      madeFrom_.emplace(arguments...);
    }
    return held_;
  }
  /// Removes and returns the current object.
  Ptr del() {
    madeFrom_.reset();
    return std::exchange(held_, nullptr);
  }

 private:
  Ptr held_;
  std::optional<std::tuple<Arguments...>> madeFrom_;
};

}  // namespace LoamCounters

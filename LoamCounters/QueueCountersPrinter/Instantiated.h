#pragma once

#include <optional>
#include <tuple>
#include <utility>

#include "platform/Mote.h"

namespace LoamCounters {

/// An object that is made on demand and kept, together with the arguments that it was made from.
template <class Object, class... Arguments>
class Instantiated {
 public:
  using Ptr = Mote::Ptr<Object>;

  /// Null when there is none.
  const Ptr& held() const noexcept { return held_; }
  /// The object held, when it was made from these arguments, else a new one in its place.
  const Ptr& is(const Arguments&... arguments) {
    if (madeFrom_ != std::tie(arguments...)) {
      held_ = Mote::make<Object>(arguments...);
      madeFrom_.emplace(arguments...);
    }
    return held_;
  }
  /// Gives up the object held and answers it.
  Ptr del() {
    madeFrom_.reset();
    return std::exchange(held_, nullptr);
  }

 private:
  Ptr held_;
  std::optional<std::tuple<Arguments...>> madeFrom_;
};

}  // namespace LoamCounters

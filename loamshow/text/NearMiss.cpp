#include "loamshow/text/NearMiss.h"

#include <algorithm>
#include <cstddef>

#include "platform/Mote.h"

namespace loamshow {

namespace {

/// Whether two texts differ by at most that many mistakes: a character missing, added, wrong or swapped with
/// the next.
bool isNear(std::string_view left, std::string_view right, std::size_t mistakes) {
  const auto [at, other] = std::mismatch(left.begin(), left.end(), right.begin(), right.end());
  left.remove_prefix(static_cast<std::size_t>(at - left.begin()));
  right.remove_prefix(static_cast<std::size_t>(other - right.begin()));
  if (mistakes == 0 || (left.empty() && right.empty())) return left == right;
  const auto isNearBehind = [&](std::size_t ofLeft, std::size_t ofRight) {
    return left.size() >= ofLeft && right.size() >= ofRight &&
           isNear(left.substr(ofLeft), right.substr(ofRight), mistakes - 1);
  };
  const bool swapped = left.size() > 1 && right.size() > 1 && left[0] == right[1] && left[1] == right[0];
  return isNearBehind(1, 1) || isNearBehind(0, 1) || isNearBehind(1, 0) || (swapped && isNearBehind(2, 2));
}

}  // namespace

std::string nearMiss(std::string_view word, const std::vector<std::string_view>& names) {
  const Mote::String typed = Mote::String(word).lowerCase();
  const std::size_t most = std::min<std::size_t>(2, (word.size() + 1) / 3);
  for (std::size_t mistakes = 0; mistakes <= most; ++mistakes) {
    for (const std::string_view name : names) {
      if (isNear(typed, Mote::String(name).lowerCase(), mistakes)) {
        return "; did you mean " + std::string(name) + "?";
      }
    }
  }
  return "";
}

}  // namespace loamshow

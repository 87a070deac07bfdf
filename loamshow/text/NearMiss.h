#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace loamshow {

/// "; did you mean X?", of the names the one that a word, mistyped, is nearest to; empty when none is near.
/// Case makes no difference.
std::string nearMiss(std::string_view word, const std::vector<std::string_view>& names);

}  // namespace loamshow

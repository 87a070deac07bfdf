#pragma once

// "Did you mean" for a few names.

#include <string>
#include <string_view>
#include <vector>

namespace loamshow {

/// "; did you mean X?", with the name nearest to a mistyped word; empty if none is near. Case-insensitive.
std::string nearMiss(std::string_view word, const std::vector<std::string_view>& names);

}  // namespace loamshow

#pragma once

// Output of the command `check`.

#include <string>
#include <vector>

#include "loamshow/state/Check.h"

namespace loamshow {

/// Formats the findings of a check: one per line, or one JSON document on one line.
std::string checkListing(const std::vector<Finding>& findings);
std::string checkJson(const std::vector<Finding>& findings);

}  // namespace loamshow

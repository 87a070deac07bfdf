#pragma once

#include <string>
#include <vector>

#include "loamshow/state/Check.h"

namespace loamshow {

/// The findings of a check: a line each, or one JSON document on one line.
std::string checkListing(const std::vector<Finding>& findings);
std::string checkJson(const std::vector<Finding>& findings);

}  // namespace loamshow

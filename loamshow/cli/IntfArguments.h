#pragma once

// Interface arguments: names, lists and ranges.

#include <string>
#include <string_view>
#include <vector>

#include "platform/Nexo.h"

namespace loamshow {

/// The interfaces that command-line arguments name, in the order of the arguments and with repetitions; all
/// interfaces if there are no arguments. An argument is a long or short name (case-insensitive), or a
/// comma-separated list of names, each possibly ending with a range: "Et1/1-3,Po1". Throws InputError for an
/// unknown or ambiguous name, and for a range that is malformed, descending or incomplete.
std::vector<Nexo::IntfId> selectInterfaces(const std::vector<Nexo::IntfId>& interfaces,
                                           const std::vector<std::string>& arguments);

/// The completions of a partly typed argument: the long names with that prefix (case-insensitive); if there
/// are none, the short names; otherwise the list with its last name completed.
std::vector<std::string> completeInterface(const std::vector<Nexo::IntfId>& interfaces,
                                           std::string_view typed);

}  // namespace loamshow

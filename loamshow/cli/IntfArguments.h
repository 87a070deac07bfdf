#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/Nexo.h"

namespace loamshow {

/// The interfaces that command-line arguments name, among those that can be named, in the order of the
/// arguments and with repetitions; all of them when there are no arguments. An argument is a long or short
/// name in any case, or a list of such names with commas, each possibly with a range at its end:
/// "Et1/1-3,Po1". Raises InputError for a name that is none or not one interface's, and for a range that is
/// malformed, descending or not complete.
std::vector<Nexo::IntfId> selectInterfaces(const std::vector<Nexo::IntfId>& interfaces,
                                           const std::vector<std::string>& arguments);

/// What an argument that is being typed can become: the long names that begin so, in any case; when there are
/// none the short ones, and then the list with its last name completed.
std::vector<std::string> completeInterface(const std::vector<Nexo::IntfId>& interfaces,
                                           std::string_view typed);

}  // namespace loamshow

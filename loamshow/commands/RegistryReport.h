#pragma once

// Output of the command `registry`.

#include <string>

namespace loamshow {

/// The types of the loaded plug-in, in order of registration and index: a listing, or one JSON document.
std::string registryListing();
std::string registryJson();

}  // namespace loamshow

#pragma once

#include <string>

namespace loamshow {

/// What the loaded plug-in registered, in registration and index order: a listing, or one JSON document.
std::string registryListing();
std::string registryJson();

}  // namespace loamshow

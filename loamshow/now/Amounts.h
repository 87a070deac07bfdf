#pragma once

// Numbers of `top` as text.

#include <string>

#include "platform/Mote.h"

namespace loamshow {

/// A count with a comma every three digits.
std::string grouped(U64 count);
/// A rate in up to four characters: "<0.1", "3.4", "820", "12k", "1.7M"; each letter is a factor of 1000.
std::string rate(double perSecond);
/// A time to a tenth of a second: "10.0 s".
std::string seconds(double seconds);
/// A percentage in up to five characters: "<0.1%", "12.3%", "100%".
std::string percentage(double percent);

}  // namespace loamshow

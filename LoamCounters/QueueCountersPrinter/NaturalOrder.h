#pragma once

// The natural order of names.

#include "platform/Mote.h"

namespace LoamCounters {

/// Whether `a` is strictly before `b` in natural order: case-insensitive, runs of spaces equal to one space,
/// runs of digits by value, and digits after a point as a fraction.
bool naturalCompare(const Mote::String& a, const Mote::String& b);

}  // namespace LoamCounters

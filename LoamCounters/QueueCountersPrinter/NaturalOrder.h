#pragma once

#include "platform/Mote.h"

namespace LoamCounters {

/// Whether `a` orders strictly before `b` in the order in which people read names: without regard to case,
/// runs of spaces as one, runs of digits by their value, and digits after a point as a fraction.
bool naturalCompare(const Mote::String& a, const Mote::String& b);

}  // namespace LoamCounters

#pragma once

// Prints the lines of the debug counter table, as text only: the column titles, and the lines of one counter.

#include "platform/BrimCounters.h"
#include "platform/Mote.h"
#include "platform/tabula.h"

namespace LoamCounters {

void printDebugCountersTitles(tabula::Printer& printer);

/// Prints the line of one counter value. Throws InternalException for an unsupported fetch or display type,
/// before any part of the line is written.
void printCounterValue(tabula::Printer& printer, const Mote::String& name,
                       Brim::Counters::CounterFetchType fetchType,
                       Brim::Counters::CounterDisplayType displayType,
                       const Brim::Counters::Counter& counter);

/// Prints the lines of one instance of a counter, after the line of its section `blockName` if
/// `printSectionName` is set and a line follows. With `drops`, prints drop counters only. `extraDescription`
/// is appended to every name. Returns whether the section line is still to be printed.
bool printCounter(tabula::Printer& printer, const Brim::Counters::CounterDescriptor::PtrConst& descriptor,
                  const Mote::String& snapshot, const Brim::Counters::ShmemManager::PtrConst& shmemMgr,
                  bool drops, bool printSectionName, const Mote::String& blockName, U32 instance,
                  const Mote::String& extraDescription);

}  // namespace LoamCounters

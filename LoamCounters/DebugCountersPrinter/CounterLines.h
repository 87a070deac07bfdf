#pragma once

// The lines of the debug counter table, in text only: the column titles, and the lines of one counter.

#include "platform/BrimCounters.h"
#include "platform/Mote.h"
#include "platform/tabula.h"

namespace LoamCounters {

void printDebugCountersTitles(tabula::Printer& printer);

/// One counter value. Raises InternalException for a fetch or display type that is not supported, before
/// anything of the line is written.
void printCounterValue(tabula::Printer& printer, const Mote::String& name,
                       Brim::Counters::CounterFetchType fetchType,
                       Brim::Counters::CounterDisplayType displayType,
                       const Brim::Counters::Counter& counter);

/// The lines of one instance of a counter, preceded by the line of its section `blockName` when
/// `printSectionName` is set and a line follows. With `drops`, only what counts drops. `extraDescription`
/// ends every printed name. Answers whether the section line is still due.
bool printCounter(tabula::Printer& printer, const Brim::Counters::CounterDescriptor::PtrConst& descriptor,
                  const Mote::String& snapshot, const Brim::Counters::ShmemManager::PtrConst& shmemMgr,
                  bool drops, bool printSectionName, const Mote::String& blockName, U32 instance,
                  const Mote::String& extraDescription);

}  // namespace LoamCounters

#pragma once

// Prints the debug counter report, as text only: the title of a FAP, the counters of a block, and the blocks
// of all FAPs.

#include "LoamCounters/DebugCountersPrinter/DescriptorMappings.h"
#include "platform/BrimCounters.h"
#include "platform/Mote.h"
#include "platform/Vane.h"
#include "platform/tabula.h"

namespace LoamCounters {

/// Prints the underlined title.
void printFapName(tabula::Printer& printer, const Mote::String& fapName);

/// Prints the counters of one block in natural order, after the section line of the block. Prints nothing if
/// the block has no lines to show.
void printDebugCountersBlock(tabula::Printer& printer,
                             const Brim::Counters::CounterBlockDescriptorPtrDir::PtrConst& block,
                             const Brim::Counters::ShmemManager::PtrConst& shmemMgr,
                             const Mote::String& snapshot, bool drops, const Mote::String& blockName);

/// Prints the FAPs in natural order, with all blocks or the one named `blockName` (case-insensitive). Throws
/// InternalException for a FAP without a manager, before anything of that FAP is printed.
void printFapReport(tabula::Printer& printer, const ShmemMgrMapping::PtrConst& shmemMgrs,
                    const FapDescriptorMapping::PtrConst& fapDescriptors, const Mote::String& snapshot,
                    bool drops, const Vane::Optional<Mote::String>& blockName);

}  // namespace LoamCounters

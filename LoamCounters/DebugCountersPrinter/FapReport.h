#pragma once

// The debug counter report, in text only: a FAP's title, a block's counters, and every FAP's blocks.

#include "LoamCounters/DebugCountersPrinter/DescriptorMappings.h"
#include "platform/BrimCounters.h"
#include "platform/Mote.h"
#include "platform/Vane.h"
#include "platform/tabula.h"

namespace LoamCounters {

/// The title, underlined.
void printFapName(tabula::Printer& printer, const Mote::String& fapName);

/// The counters of one block, in natural order, under the section line of the block; nothing when no line of
/// it is to be shown.
void printDebugCountersBlock(tabula::Printer& printer,
                             const Brim::Counters::CounterBlockDescriptorPtrDir::PtrConst& block,
                             const Brim::Counters::ShmemManager::PtrConst& shmemMgr,
                             const Mote::String& snapshot, bool drops, const Mote::String& blockName);

/// The FAPs in natural order: of each all its blocks, or the one named `blockName` in any case. Raises
/// InternalException for a FAP without a manager, before anything of that FAP is printed.
void printFapReport(tabula::Printer& printer, const ShmemMgrMapping::PtrConst& shmemMgrs,
                    const FapDescriptorMapping::PtrConst& fapDescriptors, const Mote::String& snapshot,
                    bool drops, const Vane::Optional<Mote::String>& blockName);

}  // namespace LoamCounters

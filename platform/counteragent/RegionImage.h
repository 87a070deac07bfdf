#pragma once

// Creates the bytes of a new region.

#include <string>
#include <vector>

#include "platform/brim/ShmemManager.h"
#include "platform/counteragent/Tables.h"

namespace LoamCounters {

/// The debug counters of a FAP, by its name.
struct DebugCounters {
  Mote::String fap;
  Brim::Counters::ShmemManager::PtrConst manager;
};

/// A region with the records of `counters` and `debug`, all zero, and no heartbeat.
std::string regionImage(std::string_view description, const RecordTables& counters,
                        const std::vector<DebugCounters>& debug);

}  // namespace LoamCounters

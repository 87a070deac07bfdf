#pragma once

// The parts of a state file, each read into the objects it describes. All raise InputError.

#include <vector>

#include "loamshow/json/JsonReader.h"
#include "loamshow/state/StateFile.h"
#include "platform/CounterAgent.h"
#include "platform/HardwareLoam.h"

namespace loamshow {

void readStatus(JsonValue object, Hardware::Loam::Status& status);
void readCounters(JsonValue object, LoamCounters::MemoryCounterTables& counters);
void readDebug(JsonValue object, SwitchState& state);

}  // namespace loamshow

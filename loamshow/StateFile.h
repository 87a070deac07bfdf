#pragma once

#include <string>
#include <vector>

#include "platform/CounterAgent.h"
#include "platform/HardwareLoam.h"
#include "platform/LoamTm.h"
#include "platform/Nexo.h"

namespace loamshow {

/// The debug counters of one FAP.
struct DebugFap {
  Mote::String name;
  LoamCounters::FapDescriptor::PtrConst descriptor;
  Brim::Counters::ShmemManager::PtrConst manager;  // null where the FAP has none
};

/// A switch as a state file describes it: the interfaces that a user can name, and the state objects and
/// counters that the commands read.
struct SwitchState {
  std::vector<Nexo::IntfId> interfaces;
  Hardware::Loam::Status::Ptr status = Mote::make<Hardware::Loam::Status>();
  LoamTm::TmMapping::Ptr tmMapping = Mote::make<LoamTm::TmMapping>();
  Hardware::Loam::InternalLagClientStatus::Ptr internalLagStatus =
      Mote::make<Hardware::Loam::InternalLagClientStatus>();
  Mote::Ptr<LoamCounters::MemoryCounterTables> counters = Mote::make<LoamCounters::MemoryCounterTables>();
  bool skeinMountMode = false;
  std::vector<DebugFap> debugFaps;
  Vane::Seconds switchTimeOffset;
  Hardware::Loam::VoqId fabricMcastVoqMin{0};
  Hardware::Loam::VoqId fabricMcastVoqMax{7};
};

/// Loads a state file; "-" is standard input. Raises InputError, which names the file and the member, for
/// anything that is not as it should be.
SwitchState loadStateFile(const std::string& path);
/// The same for a text; `name` stands for the file.
SwitchState parseState(const std::string& name, std::string_view text);

/// Makes the state's switch the one that this process runs on: its clock and its fabric multicast range.
void mountProcessWide(const SwitchState& state);

}  // namespace loamshow

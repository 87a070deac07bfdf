#pragma once

// A switch in memory.

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
  Brim::Counters::ShmemManager::PtrConst manager;  // null if the FAP has none
};

/// A switch as a state file describes it: the interfaces that a user can name, and the state objects and
/// counters that the commands read.
struct SwitchState {
  Mote::String name;     // empty: unknown
  Mote::String takenAt;  // when the counters were read: RFC 3339 in UTC; empty: not given
  bool isLive = false;   // the counts may change while they are read
  std::vector<Nexo::IntfId> interfaces;
  Hardware::Loam::Status::Ptr status = Mote::make<Hardware::Loam::Status>();
  LoamTm::TmMapping::Ptr tmMapping = Mote::make<LoamTm::TmMapping>();
  Hardware::Loam::InternalLagClientStatus::Ptr internalLagStatus =
      Mote::make<Hardware::Loam::InternalLagClientStatus>();
  LoamCounters::RecordTables::Ptr counters = Mote::make<LoamCounters::MemoryCounterTables>();
  bool skeinMountMode = false;
  bool perInputPortCoppVoqs = false;  // a CoPP class has a VOQ per input port
  std::vector<DebugFap> debugFaps;
  Vane::Seconds switchTimeOffset;
  Hardware::Loam::VoqId fabricMcastVoqMin{0};
  Hardware::Loam::VoqId fabricMcastVoqMax{7};
  std::string warning;  // a warning about the source; empty: none
};

}  // namespace loamshow

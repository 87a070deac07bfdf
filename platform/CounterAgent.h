#pragma once

// The counter agent's client library: counter records, the tables that contain them, the accessors through
// which the show commands read them, and properties of chips and interfaces.

#include <string_view>

#include "platform/BrimCounters.h"
#include "platform/HardwareLoam.h"
#include "platform/Mote.h"
#include "platform/Nexo.h"
#include "platform/counteragent/Accessors.h"
#include "platform/counteragent/Records.h"
#include "platform/counteragent/Tables.h"

namespace LoamCounters {

/// Whether a FAP of that major revision runs its egress queues in queue mode (true) or port mode (false).
bool useEgqQueueMode(Hardware::Loam::FapRevMajor major);
/// Whether the interface's ingress VOQ counters are in the LAG counter table.
bool intfUsesLagIngressVoqCounterTable(Nexo::IntfId intf,
                                       const Hardware::Loam::InternalLagClientStatus::PtrConst& status);
/// Whether a traffic class index of a port channel's record is a shared pair.
bool isAmbiguousTcForLagCounters(U32 tc);
bool isNonSubIntfPortChannelIntfId(Nexo::IntfId intf);

/// The debug counters of a FAP.
class FapDescriptor : public Mote::Node {
 public:
  using PtrConst = Mote::Ptr<const FapDescriptor>;
  static constexpr std::string_view vaneName = "LoamCounters::FapDescriptor";

  Brim::Counters::CounterDescriptorDir::PtrConst counterDescriptorDir;  // may be null
};

}  // namespace LoamCounters

#include "platform/CounterAgent.h"

namespace LoamCounters {

bool useEgqQueueMode(Hardware::Loam::FapRevMajor major) {
  constexpr Hardware::Loam::FapRevMajor firstInQueueMode = 2;
  return major >= firstInQueueMode;
}

bool intfUsesLagIngressVoqCounterTable(Nexo::IntfId intf,
                                       const Hardware::Loam::InternalLagClientStatus::PtrConst& status) {
  return status != nullptr && status->lagIngressVoqCounterTable.contains(intf);
}

bool isAmbiguousTcForLagCounters(U32 tc) {
  constexpr U32 firstShared = 8;
  return tc >= firstShared;
}

bool isNonSubIntfPortChannelIntfId(Nexo::IntfId intf) {
  return intf.kind() == Nexo::IntfId::Kind::portChannel;
}

}  // namespace LoamCounters

#include "LoamCounters/QueueCountersPrinter/Labels.h"

#include <string>

#include "platform/Vane.h"
#include "platform/tabula.h"

namespace LoamCounters {

const std::vector<Mote::String> queueLabels = queueNamesByQueuesPerPort(trafficClasses, trafficClasses);
const std::vector<Mote::String> fapAmbiguousTcLabel = {"TC0,4", "TC1,5", "TC2,6", "TC3,7"};
const Mote::String allDpLabel = "DP0-3";

Mote::String trafficClassLabel(U32 index, U32 countersPerPort, U32 tcPerPort, bool ambiguous) {
  if (ambiguous) {
    VANE_ASSERT(index < fapAmbiguousTcLabel.size());
    return fapAmbiguousTcLabel[index];
  }
  VANE_ASSERT(tcPerPort >= countersPerPort);
  const U32 covered = tcPerPort / countersPerPort;
  const U32 first = index * covered;
  Mote::String label("TC");
  label += std::to_string(first);
  if (covered != 1) {
    label += "-";
    label += std::to_string(first + covered - 1);
  }
  return label;
}

std::vector<Mote::String> queueNamesByQueuesPerPort(U32 queuesPerPort, U32 tcPerPort) {
  std::vector<Mote::String> names;
  for (U32 i = 0; i < queuesPerPort; ++i) {
    names.push_back(trafficClassLabel(i, queuesPerPort, tcPerPort, false));
  }
  return names;
}

Mote::String fapCoreLabel(const Mote::String& fapName, Hardware::Loam::LocalCoreId coreId,
                          unsigned short numCores) {
  if (numCores <= 1) return fapName;
  return fapName + "." + std::to_string(coreId.value());
}

Mote::String destTypeLabel(U32 destType, U32 fmt) {
  const bool json = fmt == tabula::formatJson;
  switch (destType) {
    case destTypeUnicast:
      return json ? "ucastQueues" : "UC";
    case destTypeMulticast:
      return json ? "mcastQueues" : "MC";
    default:
      break;
  }
  Vane::fatal("false && \"Invalid destType\"");
}

}  // namespace LoamCounters

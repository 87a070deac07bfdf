#include "loamshow/state/Coverage.h"

#include "loamshow/text/InputError.h"

namespace loamshow {

std::string Coverage::reason() const {
  const std::string itsPort = "its port " + std::to_string(port.value());
  switch (kind) {
    case Kind::all:
      return "";
    case Kind::lagTable:
      return "counted in the LAG table; see queues";
    case Kind::noPort:
      return "it has no port";
    case Kind::noQueues:
      return itsPort + " has no traffic-manager queues";
    case Kind::portOfOther:
      return itsPort + (portIntf == Nexo::IntfId() ? " has no interface name"
                                                   : " is that of " + printable(portIntf.stringValue()));
  }
  return "";
}

Coverage coverage(const SwitchState& state, Nexo::IntfId intf) {
  using Kind = Coverage::Kind;
  const Hardware::Loam::SystemPhyPortId* found = state.status->intfIdToSppid.find(intf);
  // An interface without a port has the null port, which may have queues and a name like any other.
  Coverage coverage{Kind::all, found == nullptr ? Hardware::Loam::nullPort : *found, {}};
  if (state.tmMapping->portTmMap.contains(coverage.port)) {
    coverage.portIntf = state.status->sppidToIntfId.get(coverage.port);
    if (coverage.portIntf != intf) coverage.kind = Kind::portOfOther;
  } else if (LoamCounters::intfUsesLagIngressVoqCounterTable(intf, state.internalLagStatus)) {
    coverage.kind = Kind::lagTable;
  } else {
    coverage.kind = found == nullptr ? Kind::noPort : Kind::noQueues;
  }
  return coverage;
}

}  // namespace loamshow

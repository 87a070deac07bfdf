#include "loamshow/state/Coverage.h"

#include "loamshow/text/InputError.h"

namespace loamshow {

namespace {

bool hasFapCore(const Hardware::Loam::Status& status) {
  // NOLINTNEXTLINE(readability-use-anyofallof): the walk ends at a sentinel, and has no standard iterator
  for (const auto& [fap, cores] : status.fapNumCores) {
    if (cores != 0 && status.fapIdToName.contains(fap)) return true;
  }
  return false;
}

}  // namespace

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
                                                   : " belongs to " + printable(portIntf.stringValue()));
  }
  return "";
}

Coverage coverage(const SwitchState& state, Nexo::IntfId intf) {
  using Kind = Coverage::Kind;
  const Hardware::Loam::SystemPhyPortId* found = state.status->intfIdToSppid.find(intf);
  // An interface without a port has the null port, which may have queues and a name like any port.
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

std::string whyNoRows(const SwitchState& state, std::string_view command, Nexo::IntfId intf) {
  const bool isQueues = command == "queues";
  const bool isIngress = command == "ingress";
  if (!isQueues && !isIngress && command != "drops") return "";
  const Coverage shown = coverage(state, intf);
  if (isQueues ? !shown.byQueues() : !shown.byIngressAndDrops()) return shown.reason();
  if (Nexo::SubIntfId::isSubIntfId(intf) && state.status->subIntfNumVoqs == 0) {
    return "sub-interfaces have no VOQs";
  }
  if (isIngress && !hasFapCore(*state.status)) return "the switch has no FAP cores";
  return "";
}

}  // namespace loamshow

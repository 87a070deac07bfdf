// Checks the interfaces that a user can name, and their ports.

#include "loamshow/state/CheckParts.h"
#include "loamshow/state/Coverage.h"
#include "loamshow/text/NameIndex.h"

namespace loamshow {

namespace {

using Hardware::Loam::PortMap;
using Hardware::Loam::Status;
using Hardware::Loam::SystemPhyPortId;
using Nexo::IntfId;

/// The names of the interfaces that have a port, starting with those that are missing in `interfaces`,
/// because a mistyped entry probably means one of them.
NameIndex namesWithPort(const SwitchState& state) {
  Vane::HashMap<IntfId, bool> listed;
  for (const IntfId intf : state.interfaces) listed.set(intf, true);
  const std::vector<IntfId> intfs = ascending(state.status->intfIdToSppid.keys());
  std::vector<std::string_view> names;
  for (const bool wanted : {false, true}) {
    for (const IntfId intf : intfs) {
      if (listed.contains(intf) == wanted) names.emplace_back(intf.stringValue());
    }
  }
  return NameIndex(std::move(names));
}

/// Whether the port is that of a CoPP class. The interface of such a port is the class, which has no port
/// itself.
bool isCoppClassPort(SystemPhyPortId port) {
  const U16 number = port.value();
  return (number >= 12 && number <= 22) || (number >= 24 && number <= 56);
}

std::string portText(SystemPhyPortId port) {
  return "port " + std::to_string(port.value());
}

/// Finds interfaces and ports whose entries in the two collections are not inverse: one finding per
/// interface.
void checkNames(const Status& status, Findings& findings) {
  Vane::OrderedMap<Mote::String, std::string> problems;
  for (const auto& [intf, port] : status.intfIdToSppid) {
    const IntfId portIntf = status.sppidToIntfId.get(port);
    if (portIntf == intf) continue;
    problems.set(intf.stringValue(),
                 portIntf == IntfId()
                     ? portText(port) + " has no interface in sppidToIntfId"
                     : "sppidToIntfId maps " + portText(port) + " to " + std::string(portIntf.stringValue()));
  }
  for (const SystemPhyPortId port : ascending(status.sppidToIntfId.keys())) {
    const IntfId intf = status.sppidToIntfId.get(port);
    if (intf == IntfId() || problems.contains(intf.stringValue())) continue;
    const SystemPhyPortId* own = status.intfIdToSppid.find(intf);
    if (own == nullptr ? isCoppClassPort(port) : *own == port) continue;
    problems.set(intf.stringValue(), (own == nullptr ? "no port" : portText(*own)) +
                                         ", but sppidToIntfId gives " + portText(port));
  }
  for (const auto& [name, problem] : problems) {
    findings.push_back({member("status", "intfIdToSppid", name), problem});
  }
}

std::string shortNameProblem(const std::string& name, const std::string& longName) {
  return name + " looks like a short name; did you mean " + longName + "?";
}

/// Checks the place of each interface's port, once per port, with the first of its interfaces.
void checkPlaces(const SwitchState& state, Findings& findings) {
  constexpr SystemPhyPortId fabricMeshSwitch{11};  // belongs to the whole switch, not to a FAP
  Vane::OrderedMap<SystemPhyPortId, IntfId> ports;
  for (const IntfId intf : ascending(state.status->intfIdToSppid.keys())) {
    const SystemPhyPortId port = *state.status->intfIdToSppid.find(intf);
    if (port != fabricMeshSwitch && !ports.contains(port)) ports.set(port, intf);
  }
  for (const auto& [port, intf] : ports) {
    const PortMap* place = state.status->portMaps.find(port);
    std::string problem;
    if (place == nullptr) {
      problem = "missing: " + std::string(intf.stringValue()) + " has no known FAP";
    } else if (!place->fapId.isNull()) {
      problem = fapProblem(state, place->fapId);
      if (problem.empty()) problem = coreProblem(state, place->fapId, place->coreId);
    }
    if (!problem.empty()) findings.push_back({member("status", "portMap", port.value()), problem});
  }
}

}  // namespace

void checkInterfaces(const SwitchState& state, Findings& findings) {
  NameIndex names = namesWithPort(state);
  for (std::size_t i = 0; i < state.interfaces.size(); ++i) {
    const std::string name(state.interfaces[i].stringValue());
    const std::string longName = longNameOf(name);
    const Coverage shown = coverage(state, state.interfaces[i]);
    const auto find = [&](std::string problem) {
      findings.push_back({member("interfaces", i), std::move(problem)});
    };
    if (!shown.byQueues()) {
      const bool unknown = shown.kind == Coverage::Kind::noPort && longName.empty();
      std::string problem = "only acl can show ";
      problem += name;
      problem += ": " + shown.reason();
      if (unknown) problem += names.nearMiss(name);
      find(std::move(problem));
    }
    if (!longName.empty()) find(shortNameProblem(name, longName));
  }
}

void checkPorts(const SwitchState& state, Findings& findings) {
  checkNames(*state.status, findings);
  checkPlaces(state, findings);
}

}  // namespace loamshow

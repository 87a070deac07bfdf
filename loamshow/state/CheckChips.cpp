// Checks the chips, and the limits of the CPU command.

#include "loamshow/state/CheckParts.h"

namespace loamshow {

using Hardware::Loam::FapPortId;
using Hardware::Loam::LocalCoreId;

namespace {

constexpr U32 mostCores = LocalCoreId::highest + 1;
constexpr U32 mostCoresOfDrops = LocalCoreId::highest;

/// The highest FAP port of a VOQ of a CoPP class, if each input port has one: the ports of core c start at 64
/// c, but those of the core with the number of the aggregate core start at 0.
U32 highestVoqPort(U32 cores, U32 voqs) {
  constexpr U32 portsPerCore = 64;
  U32 core = std::min(cores, mostCores) - 1;
  if (core == Hardware::Loam::aggregateCore.value()) --core;
  return core * portsPerCore + voqs - 1;
}

}  // namespace

void checkCores(const SwitchState& state, Findings& findings) {
  const U32 voqs = state.status->coppClassNumVoqs;
  for (const auto& [fap, cores] : state.status->fapNumCores) {
    const auto find = [&, fap = fap](const std::string& problem) {
      findings.push_back({member("status", "fapNumCores", fap.value()), problem});
    };
    if (cores > mostCoresOfDrops) {
      find(std::to_string(cores) + " cores: drops shows at most " + std::to_string(mostCoresOfDrops) +
           ", ingress and cpu at most " + std::to_string(mostCores));
    }
    if (!state.perInputPortCoppVoqs || cores == 0 || voqs == 0) continue;
    const U32 port = highestVoqPort(cores, voqs);
    if (port > FapPortId::highest) {
      find("cpu needs FAP port " + std::to_string(port) + " (perInputPortCoppVoqs, coppClassNumVoqs " +
           std::to_string(voqs) + "), but the highest is " + std::to_string(FapPortId::highest));
    }
  }
}

void checkCopp(const SwitchState& state, Findings& findings) {
  constexpr U32 mostVoqs = LoamCounters::IngressTcCounter::capacity;
  const U32 voqs = state.status->coppClassNumVoqs;
  if (voqs <= mostVoqs) return;
  findings.push_back({member("status", "coppClassNumVoqs"),
                      std::to_string(voqs) + " VOQs: cpu shows at most " + std::to_string(mostVoqs)});
}

}  // namespace loamshow

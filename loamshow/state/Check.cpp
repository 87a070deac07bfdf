#include "loamshow/state/Check.h"

#include <array>

#include "loamshow/state/CheckParts.h"

namespace loamshow {

std::string step(std::string_view name) {
  std::string step = "/";
  for (const char c : name) {
    if (c == '~') step += "~0";
    if (c == '/') step += "~1";
    if (c != '~' && c != '/') step += c;
  }
  return step;
}

std::string longNameOf(std::string_view shortName) {
  constexpr std::array<std::pair<std::string_view, std::string_view>, 2> prefixes = {
      {{"et", "Ethernet"}, {"po", "Port-Channel"}}};
  const Mote::String lower = Mote::String(shortName).lowerCase();
  for (const auto& [abbreviation, prefix] : prefixes) {
    const std::string_view rest = shortName.substr(std::min(abbreviation.size(), shortName.size()));
    if (lower.view().starts_with(abbreviation) && !rest.empty() && rest[0] >= '0' && rest[0] <= '9') {
      return std::string(prefix).append(rest);
    }
  }
  return "";
}

std::string fapText(const SwitchState& state, Hardware::Loam::FapId fap) {
  const Mote::String* name = state.status->fapIdToName.find(fap);
  return name == nullptr ? "FAP " + std::to_string(fap.value()) : std::string(*name);
}

std::string fapProblem(const SwitchState& state, Hardware::Loam::FapId fap) {
  if (state.status->fapIdToName.contains(fap)) return "";
  return "fapIdToName has no FAP " + std::to_string(fap.value());
}

std::string coreProblem(const SwitchState& state, Hardware::Loam::FapId fap,
                        Hardware::Loam::LocalCoreId core) {
  const U16 cores = state.status->fapNumCores.get(fap);
  if (core.value() < cores) return "";
  return fapText(state, fap) + " has no core " + std::to_string(core.value()) + " (fapNumCores is " +
         std::to_string(cores) + ")";
}

std::vector<Finding> check(const SwitchState& state) {
  Findings findings;
  checkInterfaces(state, findings);
  checkCores(state, findings);
  checkPorts(state, findings);
  checkCopp(state, findings);
  checkCounters(state, findings);
  checkDebug(state, findings);
  return findings;
}

}  // namespace loamshow

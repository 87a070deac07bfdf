#pragma once

// The parts of the check, one per subject, and shared functions. Each part appends to `findings`, in order.

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "loamshow/state/Check.h"

namespace loamshow {

using Findings = std::vector<Finding>;

/// A step of a JSON pointer, with its slash.
std::string step(std::string_view name);
inline std::string step(U64 number) {
  return "/" + std::to_string(number);
}

/// A JSON pointer: member("status", "portMap", 34).
template <class... Steps>
std::string member(const Steps&... steps) {
  return (step(steps) + ...);
}

/// The keys of a hash collection in ascending order: interfaces by name, others by number.
template <class Key>
std::vector<Key> ascending(std::vector<Key> keys) {
  if constexpr (std::is_same_v<Key, Nexo::IntfId>) {
    std::sort(keys.begin(), keys.end(), [](Key a, Key b) { return a.stringValue() < b.stringValue(); });
  } else {
    std::sort(keys.begin(), keys.end());
  }
  return keys;
}

/// "Ethernet1/1" for "Et1/1", "Port-Channel1" for "Po1", case-insensitive; empty for a text that does not
/// look like a short name.
std::string longNameOf(std::string_view shortName);

/// A FAP in messages: its name, or "FAP 7" if it has none.
std::string fapText(const SwitchState& state, Hardware::Loam::FapId fap);

/// The problem with a reference to a FAP or a core; empty for one that the switch has. The switch does not
/// have the null FAP.
std::string fapProblem(const SwitchState& state, Hardware::Loam::FapId fap);
std::string coreProblem(const SwitchState& state, Hardware::Loam::FapId fap,
                        Hardware::Loam::LocalCoreId core);

void checkInterfaces(const SwitchState& state, Findings& findings);
void checkCores(const SwitchState& state, Findings& findings);
void checkPorts(const SwitchState& state, Findings& findings);
void checkCopp(const SwitchState& state, Findings& findings);
void checkCounters(const SwitchState& state, Findings& findings);
void checkDebug(const SwitchState& state, Findings& findings);

}  // namespace loamshow

#include "loamshow/commands/Warnings.h"

#include <algorithm>
#include <unordered_set>

#include "loamshow/cli/IntfArguments.h"
#include "loamshow/state/Coverage.h"
#include "loamshow/state/DebugNames.h"
#include "loamshow/text/InputError.h"
#include "loamshow/text/NearMiss.h"

namespace loamshow {

namespace {

/// Adds a warning if the key of a name is unknown.
void addUnknown(std::string_view what, std::string_view name, std::string_view key,
                const std::vector<std::string>& known, std::vector<std::string>& warnings) {
  if (std::ranges::find(known, key) != known.end()) return;
  warnings.push_back("no " + std::string(what) + ' ' + quoted(name) + " on any FAP" +
                     nearMiss(name, {known.begin(), known.end()}));
}

}  // namespace

std::vector<std::string> warnings(const CommandLine& line, const SwitchState& state) {
  std::vector<std::string> warnings;
  if (!state.warning.empty()) warnings.push_back(state.warning);
  if (line.block) {
    const Mote::String key = Mote::String(*line.block).lowerCase();
    addUnknown("counter block", *line.block, key, debugBlocks(state), warnings);
  }
  if (line.snapshot) {
    addUnknown("snapshot", *line.snapshot, *line.snapshot, debugSnapshots(state), warnings);
  }
  if (line.interfaces.empty()) return warnings;
  std::unordered_set<std::string_view> seen;
  for (const Nexo::IntfId intf : selectInterfaces(state.interfaces, line.interfaces)) {
    if (!seen.insert(intf.stringValue().view()).second) continue;
    const std::string why = whyNoRows(state, line.command, intf);
    if (why.empty()) continue;
    warnings.push_back(printable(intf.stringValue()) + ": " + line.command + " has no rows for it (" + why +
                       ')');
  }
  return warnings;
}

}  // namespace loamshow

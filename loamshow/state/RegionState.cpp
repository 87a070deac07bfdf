#include "loamshow/state/RegionState.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <string_view>
#include <utility>

#include "loamshow/json/JsonWriter.h"
#include "loamshow/state/Capture.h"
#include "loamshow/state/StateFile.h"
#include "loamshow/text/InputError.h"
#include "platform/Keel.h"
#include "platform/counteragent/RegionReader.h"

namespace loamshow {

namespace {

using namespace LoamCounters;
using std::chrono::nanoseconds;

/// A time as in a state file, in milliseconds.
Mote::String timeText(nanoseconds sinceEpoch) {
  const auto milliseconds = std::chrono::floor<std::chrono::milliseconds>(sinceEpoch).count();
  const auto seconds = milliseconds / 1000;
  std::string text(Keel::utcTimestampString(Vane::Seconds(static_cast<double>(seconds))).view());
  text[text.find(' ')] = 'T';
  const std::string fraction = std::to_string(1000 + milliseconds % 1000);
  return text + '.' + fraction.substr(1) + 'Z';
}

/// The warning about a writer that has given no sign of life for long; empty if it has.
std::string silence(const std::string& name, nanoseconds now, U64 last) {
  constexpr U64 second = 1'000'000'000;
  constexpr U64 longest = 10 * second;
  const auto passed = static_cast<U64>(now.count()) - last;
  if (last >= static_cast<U64>(now.count()) || passed <= longest) return {};
  return name + ": last written " + std::to_string(passed / second) + " s ago";
}

void takeManagers(const Region::PtrConst& region, std::vector<DebugFap>& faps) {
  Vane::HashMap<Mote::String, Brim::Counters::ShmemManager::PtrConst> managers;
  for (const Region::Manager& manager : region->managers()) {
    managers.set(manager.fap, Mote::make<RegionShmemManager>(region, manager));
  }
  for (DebugFap& fap : faps) fap.manager = managers.remove(fap.name);
  for (const auto& [fap, manager] : managers) {
    throw InputError(std::string(region->name().view()) + ": debug counters of " + printable(fap) +
                     ", which its description does not have");
  }
}

}  // namespace

bool isRegion(int fd) {
  std::array<char, RegionHeader::expectedMagic.size()> begin{};
  return ::pread(fd, begin.data(), begin.size(), 0) == ssize_t{begin.size()} &&
         std::string_view(begin.data(), begin.size()) == RegionHeader::expectedMagic;
}

SwitchState regionState(const std::string& name, int fd) {
  const auto region = Mote::make<Region>(fd, name);
  JsonText description(region->description());
  region->requireIntact();
  SwitchState state = parseState(name, std::move(description));
  const nanoseconds now = std::chrono::system_clock::now().time_since_epoch();
  state.takenAt = timeText(now);
  state.isLive = true;
  state.warning = silence(name, now, region->heartbeat());
  state.counters = Mote::make<RegionTables>(region);
  takeManagers(region, state.debugFaps);
  return state;
}

CounterRegionWriter publish(const SwitchState& state, const std::string& path) {
  std::string description;
  JsonWriter out(description, JsonWriter::Layout::oneLine);
  captureDescription(state, out);
  std::vector<DebugCounters> debug;
  for (const DebugFap& fap : state.debugFaps) {
    if (fap.manager != nullptr) debug.push_back({fap.name, fap.manager});
  }
  return {path, description, *state.counters, debug};
}

void surviveTruncatedRegions() {
  struct sigaction action {};
  action.sa_flags = SA_SIGINFO;
  action.sa_sigaction = [](int signal, siginfo_t* fault, void* /*context*/) {
    const int error = errno;
    // The failed access is repeated, and ends the process unless the page was replaced.
    if (!coverRegionHole(fault->si_addr)) ::signal(signal, SIG_DFL);
    errno = error;
  };
  ::sigaction(SIGBUS, &action, nullptr);
}

}  // namespace loamshow

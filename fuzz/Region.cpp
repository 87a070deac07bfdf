// A counter region with damaged bytes: either rejected with a message that names it, or readable.

#include <sys/mman.h>
#include <unistd.h>

#include "fuzz/Fuzz.h"
#include "loamshow/state/Capture.h"
#include "loamshow/state/StateFile.h"
#include "platform/counteragent/RegionImage.h"
#include "platform/counteragent/RegionReader.h"

namespace {

using namespace LoamCounters;

std::string wholeRegion() {
  const loamshow::SwitchState state = loamshow::parseState("state", R"({
    "counters": {
      "ingress": [{"intfId": "E1", "queues": [[1, 2, 3, 4], [5, 6, 7, 8]]}, {"coreId": 1, "intfId": "E1"},
                  {"fapId": 1, "intfId": "E2"}],
      "egress": {"E1": {}}, "egressTm": {"E2": {}}, "egressLag": {"P": {}}, "egressAcl": {"P": 1},
      "egressMtu": {"0": {}, "1": {}}},
    "debug": {"faps": {"F1": {"snapshots": {"now": [{}, {}, {}], "then": []}}, "F2": {"snapshots": {}}}}})");
  std::vector<DebugCounters> debug;
  for (const loamshow::DebugFap& fap : state.debugFaps) debug.push_back({fap.name, fap.manager});
  return regionImage("{}", *state.counters, debug);
}

void readAll(const Region::PtrConst& region) {
  constexpr std::chrono::milliseconds noWait{0};
  const auto tables = Mote::make<RegionTables>(region, noWait);
  loamshow::SwitchState state;
  state.counters = tables;
  for (const Region::Manager& fap : region->managers()) {
    state.debugFaps.push_back({fap.fap, nullptr, Mote::make<RegionShmemManager>(region, fap, noWait)});
  }
  std::string text;
  loamshow::JsonWriter out(text, loamshow::JsonWriter::Layout::oneLine);
  loamshow::capture(state, out);  // reads every record
  loamshow::parseState("copy", text);
  for (const auto& [intf, place] : region->interfaces()) {
    tables->ingressTcCounter(Hardware::Loam::nullFap, Hardware::Loam::aggregateCore, intf);
    tables->ingressCounter({intf, Hardware::Loam::nullFap, Hardware::Loam::aggregateCore, 79});
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::string whole = wholeRegion();
  loamfuzz::Input input(data, size);
  std::string region = whole;
  region.resize(region.size() - (input.number(8) == 0 ? input.number(region.size()) : 0));
  while (!input.atEnd()) {
    // Replaces or slightly changes a word anywhere in the region.
    const std::size_t at = input.number(whole.size() / 8) * 8;
    U64 word = 0;
    if (at + sizeof word > region.size()) continue;
    std::memcpy(&word, &region[at], sizeof word);
    const U64 value = input.number(~U64{0}) >> input.number(64);
    word = input.flag() ? word + 8 * (value % 32) - 128 : value;
    std::memcpy(&region[at], &word, sizeof word);
  }
  const int fd = ::memfd_create("fuzz", MFD_CLOEXEC);
  loamfuzz::require(::write(fd, region.data(), region.size()) == static_cast<ssize_t>(region.size()));
  try {
    readAll(Mote::make<Region>(fd, "R"));
  } catch (const Vane::Exception& error) {
    loamfuzz::require(std::string_view(error.what()).starts_with("R: "));
  }
  ::close(fd);
  return 0;
}

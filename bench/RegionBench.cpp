// A counter region, compared with a state file and with memory, for 5,000 interfaces on eight cores.

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>

#include "bench/Benches.h"
#include "bench/Call.h"
#include "bench/Rounds.h"
#include "bench/Switch.h"
#include "loamshow/state/RegionState.h"
#include "platform/counteragent/RegionReader.h"

namespace loambench {

namespace {

using namespace LoamCounters;

constexpr std::size_t interfaces = 5000;
constexpr std::size_t cores = 8;

/// The switch in memory, as a state file, and in a region.
struct Switches {
  Switches() {
    std::ofstream(file) << stateFile(busy, loamshow::JsonWriter::Layout::indented);
    const int fd = ::open(region.c_str(), O_RDONLY | O_CLOEXEC);
    tables = Mote::make<RegionTables>(Mote::make<Region>(fd, region));
    ::close(fd);
  }
  Switches(const Switches&) = delete;
  Switches& operator=(const Switches&) = delete;
  ~Switches() {
    writer.remove();
    std::filesystem::remove(file);
  }

  BusySwitch busy{interfaces, cores};
  std::string region = "/dev/shm/loambench-region." + std::to_string(::getpid());
  std::string file = "/dev/shm/loambench-state." + std::to_string(::getpid());
  CounterRegionWriter writer = loamshow::publish(busy.state, region);
  RecordTables::PtrConst tables;
};

Way readingAll(const RecordTables& tables, const std::vector<RecordTables::IngressKey>& keys) {
  return here([&] {
    U64 sum = 0;
    for (const auto& [source, intf] : keys) {
      sum += tables.ingressTcCounter(source.fapId, source.coreId, intf).total.enqueuedPackets;
    }
    if (sum == 0) std::abort();
  });
}

std::vector<double> processes() {
  const Switches switches;
  const Way onFile = running(loamshow({"-s", switches.file, "queues"}));
  const Way onRegion = running(loamshow({"-s", switches.region, "queues"}));
  const std::vector<Times> times = inRounds(15, {onFile, [&] {
                                                   switches.writer.alive();
                                                   return onRegion();
                                                 }});
  return {ratio(times[1], times[0])};
}

std::vector<double> records() {
  const Switches switches;
  const RecordTables& memory = *switches.busy.state.counters;
  const RecordTables& region = *switches.tables;
  // Memory has the records of a core next to each other, a region those of an interface.
  const std::vector<RecordTables::IngressKey> inMemory = memory.ingressKeys();
  std::vector<RecordTables::IngressKey> inRegion;
  for (std::size_t i = 0; i < inMemory.size() / cores; ++i) {
    const Nexo::IntfId intf = inMemory[i].intfId;
    for (const RecordTables::Source source : region.ingressSources(intf)) inRegion.push_back({source, intf});
  }
  auto random = inMemory;
  std::shuffle(random.begin(), random.end(), std::mt19937());
  const std::vector<Times> times = inRounds(51, {readingAll(memory, inMemory), readingAll(region, inRegion),
                                                 readingAll(memory, random), readingAll(region, random)});
  return {ratio(times[1], times[0]), ratio(times[3], times[2])};
}

}  // namespace

void addRegions(Measurements& all) {
  all.push_back({{{"region: loamshow queues / on the state file",
                   "a process of loamshow queues on a region, over the same switch's indented state file",
                   atMost(0.25)}},
                 processes});
  all.push_back({{{"region: reading a record / in memory",
                   "reading the ingress records of a region, over those in memory, both in the order of "
                   "their addresses",
                   atMost(1.5)},
                  {"region: reading a random record / in memory",
                   "the same in random order, which mostly waits for memory",
                   {}}},
                 records});
}

}  // namespace loambench

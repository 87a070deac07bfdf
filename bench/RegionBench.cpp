// A counter region, compared with a state file and with memory, for 5,000 interfaces on eight cores.

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>

#include "bench/Benches.h"
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
    std::ofstream(file) << busyStateFile(interfaces, loamshow::JsonWriter::Layout::indented);
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

/// The CPU time of `loamshow queues` into /dev/null, in milliseconds.
double queuesTime(const std::string& source) {
  std::array<std::string, 4> words = {LOAMSHOW, "-s", source, "queues"};
  std::array<char*, 5> arguments = {words[0].data(), words[1].data(), words[2].data(), words[3].data(),
                                    nullptr};
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t child = 0;
  if (::posix_spawn(&child, LOAMSHOW, &actions, nullptr, arguments.data(), environ) != 0) std::abort();
  ::posix_spawn_file_actions_destroy(&actions);
  int status = 0;
  rusage usage{};
  if (::wait4(child, &status, 0, &usage) != child || status != 0) std::abort();
  const auto milliseconds = [](const timeval& time) {
    return 1e3 * static_cast<double>(time.tv_sec) + 1e-3 * static_cast<double>(time.tv_usec);
  };
  return milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime);
}

U64 readAll(const RecordTables& tables, const std::vector<RecordTables::IngressKey>& keys) {
  U64 sum = 0;
  for (const auto& [source, intf] : keys) {
    sum += tables.ingressTcCounter(source.fapId, source.coreId, intf).total.enqueuedPackets;
  }
  return sum;
}

}  // namespace

void addRegions() {
  addFigure("queues process on a region, CPU time over that on the state file", "", "<= 0.25", [] {
    const Switches switches;
    double region = 0;
    double file = 0;
    for (int i = 0; i < 11; ++i) {
      switches.writer.alive();
      region += queuesTime(switches.region);
      file += queuesTime(switches.file);
    }
    return region / file;
  });
  addComparison("reading every ingress record of 5,000 interfaces on eight cores", 51, [] {
    const auto switches = std::make_shared<Switches>();
    const auto keys = switches->busy.state.counters->ingressKeys();
    return std::vector<Competitor>{{"memory",
                                    [=] {
                                      if (readAll(*switches->busy.state.counters, keys) == 0) std::abort();
                                    },
                                    ""},
                                   {"region",
                                    [=] {
                                      if (readAll(*switches->tables, keys) == 0) std::abort();
                                    },
                                    "<= 1.5"}};
  });
}

}  // namespace loambench

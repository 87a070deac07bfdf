// Complete commands, compared with a lower bound: the same writes of bytes that are already formatted.

#include <fcntl.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <memory>
#include <thread>

#include "LoamCounters/DebugCountersPrinter/DebugCountersPrinter.h"
#include "bench/Benches.h"
#include "bench/Rounds.h"
#include "bench/Switch.h"
#include "bench/Values.h"
#include "platform/Keel.h"
#include "platform/tabula.h"

namespace loambench {

namespace {

using namespace LoamCounters;
using namespace Brim::Counters;

constexpr const char* commands[] = {"queues", "ingress", "drops", "cpu"};
const char* formatName(U32 format) {
  return format == tabula::formatText ? "text" : "JSON";
}

/// The destination of an output.
class Sink {
 public:
  Sink() = default;
  Sink(const Sink&) = delete;
  Sink& operator=(const Sink&) = delete;
  virtual ~Sink() = default;
  virtual int fd() = 0;
};

class NullSink : public Sink {
 public:
  ~NullSink() override { ::close(fd_); }
  int fd() override { return fd_; }

 private:
  int fd_ = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
};

/// A file in memory, overwritten each time.
class FileSink : public Sink {
 public:
  ~FileSink() override { ::close(fd_); }
  int fd() override {
    ::lseek(fd_, 0, SEEK_SET);
    return fd_;
  }

 private:
  int fd_ = ::memfd_create("bench", MFD_CLOEXEC);
};

/// A pipe that a thread empties.
class PipeSink : public Sink {
 public:
  PipeSink() {
    if (::pipe2(ends_, O_CLOEXEC) != 0) std::abort();
    drain_ = std::thread([end = ends_[0]] {
      std::vector<char> block(std::size_t{64} * 1024);
      while (::read(end, block.data(), block.size()) > 0) {
      }
    });
  }
  ~PipeSink() override {
    ::close(ends_[1]);
    drain_.join();
    ::close(ends_[0]);
  }
  int fd() override { return ends_[1]; }

 private:
  int ends_[2] = {-1, -1};
  std::thread drain_;
};

template <class SinkType>
void addFloor(const std::string& name, U32 format, const std::string& where, const char* target) {
  addComparison(name + ", " + formatName(format) + ", " + where, 101, [=] {
    const auto busy = std::make_shared<BusySwitch>(2000);
    const Answer answer = command(*busy, name, format);
    const auto writes = std::make_shared<Writes>(writesOf(answer));
    const auto sink = std::make_shared<SinkType>();
    return std::vector<Competitor>{{"floor", [=] { writeAll(sink->fd(), *writes); }, ""},
                                   {"ours", [=, busy = busy] { answer(sink->fd()); }, target}};
  });
}

void addFloors() {
  for (const char* name : commands) {
    for (const U32 format : {tabula::formatText, tabula::formatJson}) {
      addFloor<NullSink>(name, format, "/dev/null", "<= 1.4");
      addFloor<FileSink>(name, format, "file in memory", "<= 1.12");
      addFloor<PipeSink>(name, format, "drained pipe", "<= 1.25");
    }
  }
}

/// A debug report of 200 blocks of 500 counters, with their values.
struct DebugReport {
  static constexpr int blocks = 200;
  static constexpr U32 counters = 500;

  DebugReport() {
    const auto directory = Mote::make<CounterDescriptorDir>();
    for (int i = 0; i < blocks; ++i) {
      const auto block = Mote::make<CounterBlockDescriptorPtrDir>();
      for (U32 j = 0; j < counters; ++j) {
        const auto counter = Mote::make<CounterDescriptor>();
        counter->displayName = "Counter of some events " + std::to_string(j);
        counter->offset = static_cast<U32>(values.size());
        counter->numInstances = 1;
        block->counterDescriptors.set("counter" + std::to_string(j), counter);
        const Vane::Seconds time(1e9 + static_cast<double>(busyCount(values.size()) % 100'000'000));
        values.push_back({busyCount(values.size()), time, time, {}, false});
      }
      directory->blockToDescriptor.set("block" + std::to_string(i), block);
    }
    directory->validIs(true);
    directory->readinessIs(1);
    const auto descriptor = Mote::make<FapDescriptor>();
    descriptor->counterDescriptorDir = directory;
    descriptors->fapDescriptorIs("Fap0", descriptor);
    const auto manager = Mote::make<MemoryShmemManager>();
    manager->values.set("current", values);
    managers->shmemMgrIs("Fap0", manager);
  }
  void print(int fd) const {
    debugCountersPrinterFactory()->printDebugCountersPerAFap(managers, descriptors, static_cast<U32>(fd),
                                                             tabula::formatText, "current", false, {});
  }
  /// Formats its times, to measure their part of the cost.
  void formatTimes() const {
    std::size_t size = 0;
    for (const Counter& value : values) {
      size += Keel::utcTimestampString(Keel::switchTimeToUtc(value.firstUpdate)).size();
      size += Keel::utcTimestampString(Keel::switchTimeToUtc(value.lastUpdate)).size();
    }
    if (size == 0) std::abort();
  }

  std::vector<Counter> values;
  FapDescriptorMapping::Ptr descriptors = fapDescriptorMappingFactory();
  ShmemMgrMapping::Ptr managers = shmemMgrMappingFactory();
};

void addDebugReport() {
  addComparison("debug report, 200 blocks of 500, /dev/null", 21, [] {
    const auto report = std::make_shared<DebugReport>();
    const auto writes = std::make_shared<Writes>(writesOf([=](int fd) { report->print(fd); }));
    const auto sink = std::make_shared<NullSink>();
    return std::vector<Competitor>{{"floor and times",
                                    [=] {
                                      writeAll(sink->fd(), *writes);
                                      report->formatTimes();
                                    },
                                    ""},
                                   {"ours", [=] { report->print(sink->fd()); }, "<= 1.4"},
                                   {"times", [=] { report->formatTimes(); }, ""}};
  });
}

void addGrowth() {
  for (const U32 format : {tabula::formatText, tabula::formatJson}) {
    addComparison(std::string("queues, ") + formatName(format) + ", time per row by interfaces", 21, [=] {
      const auto sink = std::make_shared<NullSink>();
      const auto answers = [=](std::size_t interfaces, int repeat) {
        const auto busy = std::make_shared<BusySwitch>(interfaces);
        return [=, answer = command(*busy, "queues", format)] {
          for (int i = 0; i < repeat; ++i) answer(sink->fd());
          return busy.get();
        };
      };
      return std::vector<Competitor>{{"1,000", answers(1000, 100), ""},
                                     {"10,000", answers(10'000, 10), "0.85 to 1.15"},
                                     {"100,000", answers(100'000, 1), "0.85 to 1.15"}};
    });
  }
}

/// The kilobytes by which a child process grows at most during a command.
long peakGrowth(const Answer& answer) {
  int result[2];
  if (::pipe(result) != 0) std::abort();
  const pid_t child = ::fork();
  if (child == 0) {
    const auto status = [](const char* field) {
      std::ifstream file("/proc/self/status");
      for (std::string line; std::getline(file, line);) {
        if (line.starts_with(field)) return std::stol(line.substr(line.find(':') + 1));
      }
      return 0L;
    };
    const int null = ::open("/dev/null", O_WRONLY);
    std::ofstream("/proc/self/clear_refs") << 5;
    const long before = status("VmRSS");
    answer(null);
    const long growth = status("VmHWM") - before;
    if (::write(result[1], &growth, sizeof growth) != sizeof growth) ::_exit(1);
    ::_exit(0);
  }
  long growth = -1;
  ::close(result[1]);
  if (::read(result[0], &growth, sizeof growth) != sizeof growth) growth = -1;
  ::close(result[0]);
  ::waitpid(child, nullptr, 0);
  return growth;
}

void addMemory() {
  // 32 rows per interface: eight queues from each of four cores.
  const auto peak = [](std::size_t interfaces) {
    const BusySwitch busy(interfaces);
    return peakGrowth(command(busy, "ingress", tabula::formatText));
  };
  addFigure("peak memory at 1,000,000 rows above that at 1,000", "kB", "<= 256",
            [=] { return static_cast<double>(peak(31'250) - peak(32)); });
}

/// Runs a program until its first byte of output, or its end.
void runToFirstByte(const char* path, const std::vector<const char*>& arguments) {
  int pipe[2];
  if (::pipe2(pipe, O_CLOEXEC) != 0) std::abort();
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_adddup2(&actions, pipe[1], STDOUT_FILENO);
  std::vector<std::string> words(arguments.begin(), arguments.end());
  words.insert(words.begin(), path);
  std::vector<char*> argv;
  argv.reserve(words.size() + 1);
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  pid_t child = 0;
  if (::posix_spawn(&child, path, &actions, nullptr, argv.data(), environ) != 0) std::abort();
  ::posix_spawn_file_actions_destroy(&actions);
  ::close(pipe[1]);
  char first = 0;
  [[maybe_unused]] const ssize_t got = ::read(pipe[0], &first, 1);
  ::close(pipe[0]);
  ::waitpid(child, nullptr, 0);
}

void addStart() {
  addComparison("loamshow queues on the sample, to its first byte", 201, [] {
    return std::vector<Competitor>{{"true", [] { runToFirstByte("/bin/true", {}); }, ""},
                                   {"loamshow", [] { runToFirstByte(LOAMSHOW, {"queues"}); }, "reported"}};
  });
}

}  // namespace

void addCommands() {
  addFloors();
  addDebugReport();
  addGrowth();
  addMemory();
  addStart();
}

}  // namespace loambench

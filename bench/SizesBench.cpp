// How the time and the memory of a command grow with the number of interfaces.

#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>

#include "bench/Benches.h"
#include "bench/Rounds.h"
#include "bench/Switch.h"
#include "platform/tabula.h"

namespace loambench {

namespace {

std::vector<double> timePerRow(U32 format) {
  const BusySwitch small(1000);
  const BusySwitch large(10'000);
  const BusySwitch largest(100'000);
  // All print as many rows.
  const auto answers = [format](const BusySwitch& on, int repeat) {
    return here([repeat, answer = command(on, "queues", format)] {
      for (int i = 0; i < repeat; ++i) answer(nullFd());
    });
  };
  const std::vector<Times> times =
      inRounds(9, {answers(small, 100), answers(large, 10), answers(largest, 1)});
  return {ratio(times[1], times[0]), ratio(times[2], times[0])};
}

/// The kilobytes by which a child process grows at its peak while it answers.
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
    ::malloc_trim(0);                             // lest memory that was freed before hides growth
    std::ofstream("/proc/self/clear_refs") << 5;  // begins a new peak
    const long before = status("VmRSS");
    answer(nullFd());
    const long growth = status("VmHWM") - before;
    if (::write(result[1], &growth, sizeof growth) != sizeof growth) ::_exit(1);
    ::_exit(0);
  }
  long growth = 0;
  ::close(result[1]);
  if (::read(result[0], &growth, sizeof growth) != sizeof growth) std::abort();
  ::close(result[0]);
  ::waitpid(child, nullptr, 0);
  return growth;
}

double memoryOfAMillionRows() {
  // 32 rows an interface: eight queues from each of four cores.
  const auto peak = [](std::size_t interfaces) {
    const BusySwitch busy(interfaces);
    return peakGrowth(command(busy, "ingress", tabula::formatText));
  };
  return static_cast<double>(peak(31'250) - peak(32));
}

}  // namespace

void addSizes(Measurements& all) {
  for (const U32 format : {tabula::formatText, tabula::formatJson}) {
    const std::string what = format == tabula::formatText ? "queues, text: " : "queues, JSON: ";
    const auto figure = [&](const std::string& interfaces) {
      return Figure{what + interfaces + " / 1,000 interfaces",
                    "the time of a row on a switch of " + interfaces + " interfaces, over one of 1,000",
                    {0.85, 1.15}};
    };
    all.push_back({{figure("10,000"), figure("100,000")}, [format] { return timePerRow(format); }});
  }
  all.push_back({{{"ingress: memory of 1,000,000 rows",
                   "the peak memory of a command that prints 1,000,000 rows, above one that prints 1,000",
                   atMost(256), "kB"}},
                 [] { return std::vector{memoryOfAMillionRows()}; }});
}

}  // namespace loambench

// Commands: what they take above the floor, which is the same bytes in the same writes, already rendered.

#include <memory>

#include "bench/Benches.h"
#include "bench/CommandRows.h"
#include "bench/DebugReport.h"
#include "bench/Memory.h"
#include "bench/Rounds.h"
#include "bench/Switch.h"

namespace loambench {

namespace {

/// The time of an answer above the floor of its writes, over that of its rows in memory.
double aboveFloor(const std::string& what, int rounds, const Answer& answer, U32 format,
                  const PrintRows& rows) {
  const Writes writes = writesOf(answer);
  std::string expected;
  for (const std::string& part : writes) expected += part;
  const auto render = [&](std::string* kept) {
    MemoryPrinter printer(format, kept);
    rows(printer);
    printer.close();
  };
  std::string rendered;
  render(&rendered);
  requireSame(what, expected, rendered);

  const std::vector<Times> times =
      inRounds(rounds, {here([&] { answer(nullFd()); }), here([&] { writeAll(nullFd(), writes); }),
                        here([&] { render(nullptr); })});
  return (undisturbed(times[0]) - undisturbed(times[1])) / undisturbed(times[2]);
}

struct Command {
  const char* name;
  double most;
  int rounds;
};

constexpr Command commands[] = {
    {"queues", 1.25, 151}, {"ingress", 1.25, 151}, {"drops", 1.5, 101}, {"cpu", 1.5, 5001}};

}  // namespace

void addCommands(Measurements& all) {
  for (const Command& of : commands) {
    for (const U32 format : {tabula::formatText, tabula::formatJson}) {
      const std::string what = std::string(of.name) + (format == tabula::formatText ? ", text" : ", JSON");
      all.push_back({{{what + ": above its writes / rows in memory",
                       "what the command takes above the bare writes of its output, over printing its rows "
                       "into memory",
                       atMost(of.most)}},
                     [=] {
                       const BusySwitch busy(2000);
                       return std::vector{aboveFloor(what, of.rounds, command(busy, of.name, format), format,
                                                     rowsOf(busy, of.name, format))};
                     }});
    }
  }
  all.push_back({{{"debug: above its writes / rows in memory",
                   "the same for a debug report of 200 blocks of 500 counters; its lines are long, its "
                   "blocks and counters are sorted",
                   {}}},
                 [] {
                   const DebugReport report;
                   return std::vector{aboveFloor(
                       "debug report", 21, [&](int fd) { report.answer(fd); }, tabula::formatText,
                       [&](tabula::Printer& printer) { report.printRows(printer); })};
                 }});
}

}  // namespace loambench

// State files of 5,000 interfaces on eight cores: loading one, and processes that load one.

#include <simdjson.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "bench/Benches.h"
#include "bench/Call.h"
#include "bench/Rounds.h"
#include "bench/Switch.h"
#include "loamshow/now/Answer.h"
#include "loamshow/state/StateFile.h"

namespace loambench {

namespace {

using Layout = loamshow::JsonWriter::Layout;

constexpr std::size_t interfaces = 5000;
constexpr std::size_t cores = 8;

std::string stateText(Layout layout) {
  return stateFile(BusySwitch(interfaces, cores), layout);
}

void parse(const std::string& text) {
  simdjson::dom::parser parser;
  if (parser.parse(text).error() != simdjson::SUCCESS) std::abort();
}

void load(const std::string& text) {
  if (loamshow::parseState("bench", text).interfaces.size() != interfaces) std::abort();
}

/// A state file in memory that a child process can open.
class MemoryFile {
 public:
  explicit MemoryFile(const std::string& text) { writeAll(fd_, {text}); }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;
  ~MemoryFile() { ::close(fd_); }

  std::string path() const { return "/proc/" + std::to_string(::getpid()) + "/fd/" + std::to_string(fd_); }

 private:
  int fd_ = ::memfd_create("state", MFD_CLOEXEC);
};

/// Loading, and a process that loads and answers, by the time of a parse; its memory by the text's size.
std::vector<double> againstParse(Layout layout) {
  const std::string text = stateText(layout);
  const MemoryFile file(text);
  const std::vector<std::string> queues = loamshow({"-s", file.path(), "queues"});
  const std::vector<Times> times =
      inRounds(15, {here([&] { parse(text); }), here([&] { load(text); }), running(queues)});
  Call call(queues, Call::Output::pipe);
  const double peak = call.peakMemory();
  call.cpuTime();
  return {ratio(times[1], times[0]), ratio(times[2], times[0]), peak / static_cast<double>(text.size())};
}

/// Loads two states and shows the queues of the second one, or what they counted since the first.
void showAfterTwoLoads(const std::string& text, bool isSince) {
  loamshow::CommandLine line;
  line.command = "queues";
  loamshow::SwitchState then = loamshow::parseState("then", text);
  loamshow::History history("now");
  if (isSince) history.beginAt("then", then);
  loamshow::answer(line, history.advance(loamshow::parseState("now", text)), "", static_cast<U32>(nullFd()));
}

std::vector<double> sinceOverTwoLoads() {
  const std::string text = stateText(Layout::oneLine);
  const std::vector<Times> times = inRounds(
      15, {here([&] { showAfterTwoLoads(text, false); }), here([&] { showAfterTwoLoads(text, true); })});
  return {ratio(times[1], times[0])};
}

std::vector<double> topOverIngress() {
  const MemoryFile file(stateText(Layout::oneLine));
  const std::vector<Times> times = inRounds(15, {running(loamshow({"-s", file.path(), "ingress", "--json"})),
                                                 running(loamshow({"-s", file.path(), "top"}))});
  return {ratio(times[1], times[0])};
}

std::vector<double> startOverTrue() {
  const std::vector<Times> times =
      inRounds(101, {running({"/bin/true"}), running(loamshow({"--sample", "queues"}))});
  return {ratio(times[1], times[0])};
}

}  // namespace

void addPrograms(Measurements& all) {
  for (const auto& [layout, name] :
       {std::pair(Layout::oneLine, "compact"), std::pair(Layout::indented, "indented")}) {
    const std::string what = std::string("state file, ") + name + ": ";
    all.push_back(
        {{{what + "loading / parse",
           "loading a state file of 5,000 interfaces, over a parse of the same text into a tree", atMost(2)},
          {what + "loamshow queues / parse", "a process of loamshow queues on the file, over the same parse",
           atMost(2.5)},
          {what + "memory of loamshow queues / size",
           "the peak memory of this process, by the size of the file", atMost(4)}},
         [layout = layout] { return againstParse(layout); }});
  }
  all.push_back(
      {{{"queues --since: with it / two loads",
         "loading two states and showing what was counted in between, over showing the second", atMost(1.1)}},
       sinceOverTwoLoads});
  all.push_back(
      {{{"top: top / ingress --json", "a process of loamshow top, over loamshow ingress --json", atMost(2)}},
       topOverIngress});
  all.push_back({{{"start: loamshow --sample queues / true",
                   "a process of loamshow queues on the sample, over one that does nothing",
                   {}}},
                 startOverTrue});
}

}  // namespace loambench

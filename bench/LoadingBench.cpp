// Loading a state file of 5,000 interfaces and eight cores, compared with parsing the same text into a tree.

#include <fcntl.h>
#include <simdjson.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "bench/Benches.h"
#include "bench/Rounds.h"
#include "bench/Switch.h"
#include "loamshow/now/Answer.h"
#include "loamshow/state/StateFile.h"

namespace loambench {

namespace {

using Layout = loamshow::JsonWriter::Layout;

constexpr std::size_t interfaces = 5000;

void parse(const std::string& text) {
  simdjson::dom::parser parser;
  if (parser.parse(text).error() != simdjson::SUCCESS) std::abort();
}

/// A state file in memory that a child process can open.
class StateFile {
 public:
  explicit StateFile(const std::string& text) : size_(text.size()) {
    for (std::size_t at = 0; at < text.size();) {
      const ssize_t written = ::write(fd_, text.data() + at, text.size() - at);
      if (written <= 0) std::abort();
      at += static_cast<std::size_t>(written);
    }
  }
  StateFile(const StateFile&) = delete;
  StateFile& operator=(const StateFile&) = delete;
  ~StateFile() { ::close(fd_); }

  std::string path() const { return "/proc/" + std::to_string(::getpid()) + "/fd/" + std::to_string(fd_); }
  std::size_t size() const { return size_; }

 private:
  std::size_t size_;
  int fd_ = ::memfd_create("state", MFD_CLOEXEC);
};

/// A process of loamshow on a state file, with output to a pipe or to /dev/null.
class Call {
 public:
  enum class Output { pipe, null };

  Call(const StateFile& file, Output output, const std::vector<std::string>& command = {"queues"}) {
    if (::pipe2(pipe_, O_CLOEXEC) != 0) std::abort();
    std::vector<std::string> words = {LOAMSHOW, "-s", file.path()};
    words.insert(words.end(), command.begin(), command.end());
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    if (output == Output::pipe) {
      ::posix_spawn_file_actions_adddup2(&actions, pipe_[1], STDOUT_FILENO);
    } else {
      ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    }
    if (::posix_spawn(&child_, LOAMSHOW, &actions, nullptr, arguments.data(), environ) != 0) std::abort();
    ::posix_spawn_file_actions_destroy(&actions);
    ::close(pipe_[1]);
  }
  Call(const Call&) = delete;
  Call& operator=(const Call&) = delete;
  ~Call() { ::close(pipe_[0]); }

  /// The peak memory so far in bytes, after output to the pipe has begun; the rest of the output does not fit
  /// into the pipe, so the process is still running. The figure that the kernel reports at its end is at
  /// least the peak of its parent.
  double peakMemory() const {
    char first = 0;
    if (::read(pipe_[0], &first, 1) != 1) std::abort();
    std::ifstream status("/proc/" + std::to_string(child_) + "/status");
    for (std::string line; std::getline(status, line);) {
      if (line.starts_with("VmHWM:")) return 1024.0 * std::stod(line.substr(6));
    }
    std::abort();
  }
  /// Reads the output to its end, and returns the resources used.
  rusage end() const {
    std::vector<char> block(std::size_t{64} * 1024);
    while (::read(pipe_[0], block.data(), block.size()) > 0) {
    }
    int status = 0;
    rusage usage{};
    if (::wait4(child_, &status, 0, &usage) != child_ || status != 0) std::abort();
    return usage;
  }

 private:
  int pipe_[2] = {-1, -1};
  pid_t child_ = 0;
};

double milliseconds(const timeval& time) {
  return 1e3 * static_cast<double>(time.tv_sec) + 1e-3 * static_cast<double>(time.tv_usec);
}

double cpuTimeOfThisProcess() {
  return 1e3 * static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

/// The CPU time of a process relative to that of a parse: the median of several pairs.
double callOverParse(const std::string& text) {
  const StateFile file(text);
  std::vector<double> ratios(11);
  for (double& ratio : ratios) {
    const double before = cpuTimeOfThisProcess();
    parse(text);
    const double parsed = cpuTimeOfThisProcess() - before;
    const rusage usage = Call(file, Call::Output::null).end();
    ratio = (milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime)) / parsed;
  }
  std::nth_element(ratios.begin(), ratios.begin() + 5, ratios.end());
  return ratios[5];
}

double cpuTimeOf(const Call& call) {
  const rusage usage = call.end();
  return milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime);
}

/// The CPU time of `top` relative to that of `ingress --json`, both including loading: the median of several
/// pairs.
double topOverIngress() {
  const StateFile file(busyStateFile(interfaces, Layout::oneLine));
  std::vector<double> ratios(11);
  for (double& ratio : ratios) {
    const double ingress = cpuTimeOf(Call(file, Call::Output::null, {"ingress", "--json"}));
    ratio = cpuTimeOf(Call(file, Call::Output::null, {"top"})) / ingress;
  }
  std::nth_element(ratios.begin(), ratios.begin() + 5, ratios.end());
  return ratios[5];
}

/// Loads two states and shows the queues of the second one, or the counts since the first.
void showAfterTwoLoads(const std::string& text, bool isSince) {
  static const int null = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
  loamshow::CommandLine line;
  line.command = "queues";
  loamshow::SwitchState then = loamshow::parseState("then", text);
  loamshow::History history("now");
  if (isSince) history.beginAt("then", then);
  loamshow::answer(line, history.advance(loamshow::parseState("now", text)), "", static_cast<U32>(null));
}

double memoryOfCall(const std::string& text) {
  const StateFile file(text);
  const Call call(file, Call::Output::pipe);
  const double peak = call.peakMemory();
  call.end();
  return peak / static_cast<double>(file.size());
}

}  // namespace

void addLoading() {
  for (const auto& [layout, name] :
       {std::pair(Layout::oneLine, "one line"), std::pair(Layout::indented, "as captured")}) {
    const std::string of = std::string("5,000 interfaces on 8 cores, ") + name + ", ";
    addComparison(of + "loading", 15, [layout = layout] {
      const auto text = std::make_shared<std::string>(busyStateFile(interfaces, layout));
      return std::vector<Competitor>{
          {"parse", [=] { parse(*text); }, ""},
          {"ours",
           [=] {
             if (loamshow::parseState("bench", *text).interfaces.size() != interfaces) std::abort();
           },
           "<= 2"}};
    });
    addFigure(of + "CPU time of loamshow queues over a parse", "", "<= 2.5",
              [layout = layout] { return callOverParse(busyStateFile(interfaces, layout)); });
    addFigure(of + "peak memory of loamshow queues by the file's size", "", "<= 4",
              [layout = layout] { return memoryOfCall(busyStateFile(interfaces, layout)); });
  }
  addComparison("5,000 interfaces on 8 cores, two loads and queues", 15, [] {
    const auto text = std::make_shared<std::string>(busyStateFile(interfaces, Layout::oneLine));
    return std::vector<Competitor>{{"of the second", [=] { showAfterTwoLoads(*text, false); }, ""},
                                   {"since the first", [=] { showAfterTwoLoads(*text, true); }, "<= 1.1"}};
  });
  addFigure("5,000 interfaces on 8 cores, CPU time of top over ingress --json", "", "<= 2", topOverIngress);
}

}  // namespace loambench

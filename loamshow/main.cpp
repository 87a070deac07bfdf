#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <system_error>

#include "loamshow/cli/CommandLine.h"
#include "loamshow/cli/Completion.h"
#include "loamshow/commands/CheckReport.h"
#include "loamshow/commands/Interrupts.h"
#include "loamshow/commands/Output.h"
#include "loamshow/commands/Plugin.h"
#include "loamshow/commands/RegistryReport.h"
#include "loamshow/commands/Warnings.h"
#include "loamshow/json/JsonWriter.h"
#include "loamshow/now/Answer.h"
#include "loamshow/now/Repeat.h"
#include "loamshow/state/Capture.h"
#include "loamshow/state/RegionState.h"
#include "loamshow/state/StateFile.h"
#include "loamshow/text/InputError.h"
#include "platform/counteragent/Region.h"
#include "platform/tabula.h"

namespace loamshow {

namespace {

namespace fs = std::filesystem;

constexpr int exitWhole = 0;
constexpr int exitFailed = 1;
constexpr int exitUsage = 2;

constexpr U32 answerFd = STDOUT_FILENO;

fs::path programDirectory() {
  std::error_code unreadable;
  return fs::read_symlink("/proc/self/exe", unreadable).parent_path();
}

/// Empty if no switch is given.
std::string givenState(const CommandLine& line) {
  if (line.state) return *line.state;
  if (line.sample) return programDirectory() / LOAM_DATA_FROM_BIN / "sample-switch.json";
  const char* fromEnvironment = std::getenv("LOAM_STATE");  // NOLINT(concurrency-mt-unsafe): one thread
  return fromEnvironment == nullptr ? "" : fromEnvironment;
}

std::string statePath(const CommandLine& line) {
  std::string path = givenState(line);
  if (path.empty()) {
    throw InputError("no switch given: name its state file with -s or LOAM_STATE, or use --sample");
  }
  return path;
}

std::string pluginPath(const CommandLine& line) {
  constexpr const char* fileName = "LoamCounters.so";
  // dlopen searches the system's directories for a name without a slash.
  if (line.plugin) return line.plugin->find('/') == std::string::npos ? "./" + *line.plugin : *line.plugin;
  const fs::path beside = programDirectory() / fileName;
  std::error_code unreadable;
  return fs::exists(beside, unreadable) ? beside : programDirectory() / LOAM_PLUGIN_FROM_BIN / fileName;
}

int exitOfOperation() {
  return tabula::operationInterrupted() ? Interrupts::exitStatus : exitWhole;
}

/// Reports a problem on standard error.
int complain(int status, std::string_view problem) {
  warn(problem);
  return status;
}

int answerWith(const std::function<void(const Sink&)>& write) {
  const Interrupts interrupts;
  print(write, answerFd);
  return exitOfOperation();
}

int answerWith(std::string_view text) {
  return answerWith([&](const Sink& sink) { sink(text); });
}

/// The switch of a command that reads it once.
SwitchState stateOf(const CommandLine& line) {
  SwitchState state = loadStateFile(statePath(line));
  if (!state.warning.empty()) warn(state.warning);
  return state;
}

/// Runs a command that shows counts.
int show(const CommandLine& line) {
  const Source source(statePath(line));
  if (statePath(line) == "-") {
    if (line.every) throw InputError("--every: expected a file, as standard input can be read only once");
    if (line.since == "-") throw InputError("--since: expected a file, as standard input is the switch");
  }
  History history(source.name());
  if (line.since) {
    const Source since(*line.since);
    SwitchState state = since.read();
    if (state.isLive) throw InputError(since.name() + ": expected a state file, not a counter region");
    history.beginAt(since.name(), std::move(state));
  }
  if (line.every) {
    loadPlugin(pluginPath(line));
    const Interrupts interrupts;
    repeat(line, source, std::move(history), answerFd);
    return exitOfOperation();
  }
  const Shown shown = history.advance(source.read());
  loadPlugin(pluginPath(line));
  for (const std::string& warning : warnings(line, shown.state)) warn(warning);
  const Interrupts interrupts;
  answer(line, shown, "", answerFd);
  return exitOfOperation();
}

int run(const CommandLine& line) {
  if (!line.notice.empty()) return answerWith(line.notice);
  if (line.command == "registry") {
    loadPlugin(pluginPath(line));
    return answerWith(line.format == tabula::formatJson ? registryJson() : registryListing());
  }
  if (line.command == "check") {
    const std::vector<Finding> findings = check(stateOf(line));
    const int status =
        answerWith(line.format == tabula::formatJson ? checkJson(findings) : checkListing(findings));
    return status == exitWhole && !findings.empty() ? exitFailed : status;
  }
  if (line.command == "capture") {
    const SwitchState state = stateOf(line);
    return answerWith([&](const Sink& sink) {
      JsonWriter out(sink, JsonWriter::Layout::indented);
      capture(state, out);
    });
  }
  return show(line);
}

/// Whether names can be read from a state without waiting, as for a pipe.
bool isFile(const std::string& path) {
  std::error_code unreadable;
  return fs::is_regular_file(path, unreadable);
}

/// Completion for shells: prints the candidates for the last word, one per line; fails if it is a file name.
int complete(int argc, char** argv) {
  Completion completion = completeCommandLine(argc, argv);
  const bool namesOfState = completion.kind == Names::interfaces || completion.kind == Names::blocks ||
                            completion.kind == Names::snapshots;
  const std::string state = givenState(completion.line);
  if (namesOfState && isFile(state)) completeName(completion, loadStateFile(state));
  std::string lines;
  for (const std::string& word : completion.words) lines += word + '\n';
  const int status = answerWith(lines);
  return completion.kind == Names::files ? exitFailed : status;
}

}  // namespace

}  // namespace loamshow

int main(int argc, char** argv) {
  using namespace loamshow;
  // A closed reader appears as EPIPE, which is not reported.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);  // a file at its size limit: EFBIG
  surviveTruncatedRegions();
  try {
    constexpr std::string_view forShells = "complete";
    if (argc > 2 && argv[1] == forShells) return complete(argc - 1, argv + 1);
    return run(parseCommandLine(argc, argv));
  } catch (const InputError& error) {
    return complain(exitUsage, error.what());
  } catch (const LoamCounters::RegionException& error) {
    return complain(exitUsage, error.what());
  } catch (const std::system_error& error) {
    return error.code() == std::errc::broken_pipe ? exitFailed : complain(exitFailed, error.what());
  } catch (const std::exception& error) {
    return complain(exitFailed, error.what());
  }
}

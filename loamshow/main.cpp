#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <system_error>

#include "loamshow/cli/CommandLine.h"
#include "loamshow/cli/Completion.h"
#include "loamshow/commands/CheckReport.h"
#include "loamshow/commands/Interrupts.h"
#include "loamshow/commands/Plugin.h"
#include "loamshow/commands/RegistryReport.h"
#include "loamshow/commands/ShowCommands.h"
#include "loamshow/commands/Warnings.h"
#include "loamshow/json/JsonWriter.h"
#include "loamshow/state/Capture.h"
#include "loamshow/state/StateFile.h"
#include "loamshow/text/InputError.h"
#include "platform/tabula.h"

namespace loamshow {

namespace {

namespace fs = std::filesystem;

constexpr int exitWhole = 0;
constexpr int exitFailed = 1;
constexpr int exitUsage = 2;
constexpr int exitInterrupted = 130;

constexpr U32 answerFd = STDOUT_FILENO;

fs::path programDirectory() {
  std::error_code unreadable;
  return fs::read_symlink("/proc/self/exe", unreadable).parent_path();
}

/// Empty when no switch is given.
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
  // A name without a slash would be looked for where the system keeps its libraries.
  if (line.plugin) return line.plugin->find('/') == std::string::npos ? "./" + *line.plugin : *line.plugin;
  const fs::path beside = programDirectory() / fileName;
  std::error_code unreadable;
  return fs::exists(beside, unreadable) ? beside : programDirectory() / LOAM_PLUGIN_FROM_BIN / fileName;
}

int exitOfOperation() {
  return tabula::operationInterrupted() ? exitInterrupted : exitWhole;
}

/// Prints what `write` passes to the sink that it is given.
template <class Write>
int printPieces(Write write) {
  const Interrupts interrupts;
  tabula::endingOnInterrupt([&] {
    tabula::Printer printer(answerFd, tabula::formatText, true, false, true, 0);
    write([&](std::string_view piece) { printer.addFrills<"%s">(piece); });
    printer.close();
  });
  return exitOfOperation();
}

/// Says on standard error what is wrong.
int complain(int status, std::string_view problem) {
  std::cerr << "loamshow: " << problem << std::endl;
  return status;
}

int print(std::string_view text) {
  return printPieces([&](auto sink) { sink(text); });
}

int run(const CommandLine& line) {
  if (!line.notice.empty()) return print(line.notice);
  if (line.command == "registry") {
    loadPlugin(pluginPath(line));
    return print(line.format == tabula::formatJson ? registryJson() : registryListing());
  }
  const SwitchState state = loadStateFile(statePath(line));
  if (line.command == "check") {
    const std::vector<Finding> findings = check(state);
    const int status =
        print(line.format == tabula::formatJson ? checkJson(findings) : checkListing(findings));
    return status == exitWhole && !findings.empty() ? exitFailed : status;
  }
  if (line.command == "capture") {
    return printPieces([&](auto sink) {
      JsonWriter out(sink, JsonWriter::Layout::indented);
      capture(state, out);
    });
  }
  mountProcessWide(state);
  loadPlugin(pluginPath(line));
  for (const std::string& warning : warnings(line, state)) complain(exitWhole, warning);
  const Interrupts interrupts;
  runShowCommand(line, state, answerFd);
  return exitOfOperation();
}

/// Whether the names of a state can be looked up at once: that of a pipe would be waited for.
bool isFile(const std::string& path) {
  std::error_code unreadable;
  return fs::is_regular_file(path, unreadable);
}

/// For the completion of shells: prints what the last word can become, a line each; fails where it names a
/// file.
int complete(int argc, char** argv) {
  Completion completion = completeCommandLine(argc, argv);
  const bool namesOfState = completion.kind == Names::interfaces || completion.kind == Names::blocks ||
                            completion.kind == Names::snapshots;
  const std::string state = givenState(completion.line);
  if (namesOfState && isFile(state)) completeName(completion, loadStateFile(state));
  std::string lines;
  for (const std::string& word : completion.words) lines += word + '\n';
  const int status = print(lines);
  return completion.kind == Names::files ? exitFailed : status;
}

}  // namespace

}  // namespace loamshow

int main(int argc, char** argv) {
  using namespace loamshow;
  // A reader that has seen enough is no failure to speak of: the write then fails with EPIPE.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);  // a file at its size limit: EFBIG
  try {
    constexpr std::string_view forShells = "complete";
    if (argc > 2 && argv[1] == forShells) return complete(argc - 1, argv + 1);
    return run(parseCommandLine(argc, argv));
  } catch (const InputError& error) {
    return complain(exitUsage, error.what());
  } catch (const std::system_error& error) {
    return error.code() == std::errc::broken_pipe ? exitFailed : complain(exitFailed, error.what());
  } catch (const std::exception& error) {
    return complain(exitFailed, error.what());
  }
}

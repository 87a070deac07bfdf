#pragma once

// Every command and option of loamshow. Parsing, help, completion and "did you mean" are derived from these
// two tables: to add a command or an option, add a line.

#include <algorithm>
#include <array>
#include <iterator>
#include <string>
#include <string_view>
#include <type_traits>

#include "loamshow/cli/CommandLine.h"
#include "platform/tabula.h"

namespace loamshow {

/// The kinds of names to which a word of the command line can be completed.
enum class Names : U8 { none, files, interfaces, commands, blocks, snapshots };

// The order of the members makes the tables easy to read.
// NOLINTBEGIN(clang-analyzer-optin.performance.Padding)
struct Command {
  std::string_view name;
  std::string_view arguments{};  // as in the help; empty: none
  Names names = Names::none;     // kind of its arguments
  std::string_view help;
  std::string_view example{};  // arguments of the example in the help
  bool hasJson = true;
};

struct Option {
  std::string_view name{};    // without hyphens; empty: a letter only
  char letter = '\0';         // '\0': none
  std::string_view value{};   // as in the help: a placeholder, or all values ("text|json"); empty: none
  Names names = Names::none;  // kind of its value
  std::string_view help;
  std::string_view commands{};  // commands with this option, separated by blanks; empty: all
  bool isGlobal = true;         // also accepted before the command
  /// Throws InputError, "expected ...", for an invalid value.
  void (*set)(CommandLine& line, const std::string& value);
};
// NOLINTEND(clang-analyzer-optin.performance.Padding)

/// Sets a member: to true, or to the option's value.
template <auto member>
void set(CommandLine& line, [[maybe_unused]] const std::string& value) {
  if constexpr (std::is_same_v<decltype(member), bool CommandLine::*>) {
    line.*member = true;
  } else {
    line.*member = value;
  }
}

inline void setFormat(CommandLine& line, const std::string& value) {
  line.format = value == "text" ? tabula::formatText : tabula::formatJson;
}

void setEvery(CommandLine& line, const std::string& value);
void setCount(CommandLine& line, const std::string& value);
void setMost(CommandLine& line, const std::string& value);
inline void setBy(CommandLine& line, const std::string& value) {
  line.byOctets = value == "octets";
}

/// The commands that show counts.
inline constexpr std::string_view showCommands = "queues ingress cpu drops acl mtu debug top";

inline constexpr Command commands[] = {
    {.name = "queues",
     .arguments = "[INTF...]",
     .names = Names::interfaces,
     .help = "Ingress and egress queue counters of interfaces",
     .example = "Et1/1-3,Po1"},
    {.name = "ingress",
     .arguments = "[INTF...]",
     .names = Names::interfaces,
     .help = "Ingress VOQ counters of interfaces per FAP core",
     .example = "Ethernet5/1 --json"},
    {.name = "cpu", .help = "CPU queue counters per CoPP class", .example = "--summary"},
    {.name = "drops",
     .arguments = "[INTF...]",
     .names = Names::interfaces,
     .help = "Queue counters of interfaces that dropped packets",
     .example = "Et5/1-4"},
    {.name = "acl",
     .arguments = "[INTF...]",
     .names = Names::interfaces,
     .help = "Egress ACL drop counters of interfaces",
     .example = "--state switch.json"},
    {.name = "mtu", .help = "Egress MTU counters per FAP", .example = "--json"},
    {.name = "debug",
     .help = "Debug counters per FAP, as text",
     .example = "--drops --block cgm",
     .hasJson = false},
    {.name = "top",
     .arguments = "[INTF...]",
     .names = Names::interfaces,
     .help = "Where packets are dropped, worst first",
     .example = "--since earlier.json -n 20"},
    {.name = "capture",
     .help = "Write the switch's state as a state file",
     .example = "--state switch.json > copy.json"},
    {.name = "registry", .help = "Types and operations the plug-in registers", .example = "--json"},
    {.name = "check", .help = "Contradictions in the switch's state", .example = "--state switch.json"},
    {.name = "help",
     .arguments = "[COMMAND]",
     .names = Names::commands,
     .help = "Help for the program or for a command",
     .example = "queues"},
};

inline constexpr Option options[] = {
    {.name = "state",
     .letter = 's',
     .value = "SOURCE",
     .names = Names::files,
     .help = "State file or counter region of the switch,\n'-' for standard input (default: $LOAM_STATE)",
     .set = set<&CommandLine::state>},
    {.name = "sample", .help = "Use the fictitious sample switch", .set = set<&CommandLine::sample>},
    {.name = "format",
     .letter = 'f',
     .value = "text|json",
     .help = "Output format (default: text)",
     .set = setFormat},
    {.name = "json", .letter = 'j', .help = "Short for --format json", .set = setFormat},
    {.name = "since",
     .value = "FILE",
     .names = Names::files,
     .help = "Show what was counted since an earlier state file",
     .commands = showCommands,
     .set = set<&CommandLine::since>},
    {.name = "every",
     .value = "SECONDS",
     .help = "Repeat, with the counts since the previous output",
     .commands = showCommands,
     .set = setEvery},
    {.name = "count",
     .value = "N",
     .help = "Stop after N outputs of --every",
     .commands = showCommands,
     .set = setCount},
    {.name = "plugin",
     .value = "FILE",
     .names = Names::files,
     .help = "Plug-in to load instead of the installed one",
     .set = set<&CommandLine::plugin>},
    {.name = "help", .letter = 'h', .help = "Print help and exit", .set = set<&CommandLine::help>},
    {.name = "version", .help = "Print the version and exit", .set = set<&CommandLine::version>},
    {.name = "internal",
     .help = "Add special interfaces and fabric multicast queues",
     .commands = "queues ingress top",
     .isGlobal = false,
     .set = set<&CommandLine::internal>},
    {.name = "detail",
     .help = "Accepted for compatibility; no effect",
     .commands = "queues ingress",
     .isGlobal = false,
     .set = set<&CommandLine::detail>},
    {.name = "summary",
     .help = "Sum over the whole switch",
     .commands = "cpu",
     .isGlobal = false,
     .set = set<&CommandLine::summary>},
    {.name = "per-port",
     .help = "Treat each CoPP class as having a VOQ per input port",
     .commands = "cpu",
     .isGlobal = false,
     .set = set<&CommandLine::perPort>},
    {.letter = 'n',
     .value = "N",
     .help = "Number of rows, 0 for all (default: 10)",
     .commands = "top",
     .isGlobal = false,
     .set = setMost},
    {.name = "by",
     .value = "packets|octets",
     .help = "What to rank by (default: packets)",
     .commands = "top",
     .isGlobal = false,
     .set = setBy},
    {.name = "snapshot",
     .value = "NAME",
     .names = Names::snapshots,
     .help = "Snapshot to read values from (default: current)",
     .commands = "debug",
     .isGlobal = false,
     .set = set<&CommandLine::snapshot>},
    {.name = "drops",
     .help = "Drop counters only",
     .commands = "debug",
     .isGlobal = false,
     .set = set<&CommandLine::drops>},
    {.name = "block",
     .value = "NAME",
     .names = Names::blocks,
     .help = "One counter block only (case-insensitive)",
     .commands = "debug",
     .isGlobal = false,
     .set = set<&CommandLine::block>},
};

/// Calls a function for each part of a list until it returns true. Returns whether it did.
template <class Function>
constexpr bool anyPart(std::string_view list, char separator, Function function) {
  while (!list.empty()) {
    const std::size_t size = std::min(list.find(separator), list.size());
    if (function(list.substr(0, size))) return true;
    list.remove_prefix(std::min(size + 1, list.size()));
  }
  return false;
}

/// The command of that name; null if there is none.
constexpr const Command* findCommand(std::string_view name) {
  const auto* found = std::ranges::find(commands, name, &Command::name);
  return found == std::end(commands) ? nullptr : found;
}

/// The option of that name; null if there is none.
constexpr const Option* findOption(std::string_view name) {
  const auto* found = std::ranges::find(options, name, &Option::name);
  return name.empty() || found == std::end(options) ? nullptr : found;
}

/// The option of that letter; null if there is none.
constexpr const Option* findOption(char letter) {
  const auto* found = std::ranges::find(options, letter, &Option::letter);
  return letter == '\0' || found == std::end(options) ? nullptr : found;
}

constexpr bool takes(const Command& command, const Option& option) {
  return option.commands.empty() ||
         anyPart(option.commands, ' ', [&](std::string_view name) { return name == command.name; });
}

/// The option as users type it: "--state", or "-n".
inline std::string typed(const Option& option) {
  return option.name.empty() ? std::string("-") + option.letter : "--" + std::string(option.name);
}

/// Whether an option has a unique name or letter, and its commands exist.
constexpr bool isSound(const Option& option) {
  const auto isUnknown = [](std::string_view name) {
    return std::ranges::count(commands, name, &Command::name) != 1;
  };
  const bool hasName = std::ranges::count(options, option.name, &Option::name) == 1;
  const bool hasLetter = std::ranges::count(options, option.letter, &Option::letter) == 1;
  return (option.name.empty() ? hasLetter : hasName) && (option.letter == '\0' || hasLetter) &&
         !anyPart(option.commands, ' ', isUnknown);
}

static_assert(std::ranges::all_of(options, isSound));

}  // namespace loamshow

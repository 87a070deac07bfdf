#include "loamshow/CommandLine.h"

#include <CLI/CLI.hpp>
#include <sstream>

#include "loamshow/JsonDocument.h"
#include "platform/tabula.h"

namespace loamshow {

namespace {

CLI::App* addCommand(CLI::App& app, CommandLine& line, const std::string& name,
                     const std::string& description) {
  CLI::App* command = app.add_subcommand(name, description);
  command->fallthrough();  // the general options may follow the command, too
  command->callback([&line, name] { line.command = name; });
  return command;
}

void addInterfaces(CLI::App* command, CommandLine& line) {
  command->add_option("INTF", line.interfaces,
                      "Interfaces: long or short names, lists, ranges (Et1/1-3,Po1)");
}

void addInternal(CLI::App* command, CommandLine& line) {
  command->add_flag("--internal", line.internal,
                    "Add the chips' special interfaces and fabric multicast queues");
  command->add_flag("--detail", line.detail, "Accepted; the answer is the same");
}

/// What is wrong with the usage. The parser misses a command before it looks at what stands in its place.
std::string problem(const CLI::App& app, const CLI::ParseError& error) {
  const std::vector<std::string> unknown = app.remaining();
  if (dynamic_cast<const CLI::RequiredError*>(&error) == nullptr || unknown.empty()) return error.what();
  return (unknown.front().starts_with('-') ? "no such option " : "no such command ") + unknown.front();
}

}  // namespace

CommandLine parseCommandLine(int argc, char** argv) {
  CommandLine line;
  CLI::App app("Shows where traffic waits or is lost in the queues of a switch.", "loamshow");
  app.require_subcommand(1);
  app.set_version_flag("--version", "loamshow " LOAM_VERSION);
  app.add_option("-s,--state", line.state,
                 "State file of the switch, - for standard input (default: $LOAM_STATE, else the sample)");
  std::string formatName = "text";
  CLI::Option* format = app.add_option("-f,--format", formatName, "Format of the answer (default: text)")
                            ->check(CLI::IsMember({"text", "json"}))
                            ->option_text("text|json");
  app.add_flag_callback(
         "-j,--json", [&] { formatName = "json"; }, "Short for --format json")
      ->excludes(format);
  app.add_option("--plugin", line.plugin, "Plug-in library to load instead of the installed one");

  CLI::App* queues = addCommand(app, line, "queues", "Ingress and egress queue counters of interfaces");
  addInterfaces(queues, line);
  addInternal(queues, line);
  CLI::App* ingress = addCommand(app, line, "ingress", "Ingress VOQ counters of interfaces per FAP core");
  addInterfaces(ingress, line);
  addInternal(ingress, line);
  CLI::App* cpu = addCommand(app, line, "cpu", "CPU queue counters per CoPP class");
  cpu->add_flag("--summary", line.summary, "One view of the whole switch instead of one per FAP core");
  cpu->add_flag("--per-port", line.perPort, "A class has one VOQ per input port");
  addInterfaces(addCommand(app, line, "drops", "Queue counters of interfaces that dropped packets"), line);
  addInterfaces(addCommand(app, line, "acl", "Egress ACL drop counters of interfaces"), line);
  addCommand(app, line, "mtu", "Egress MTU counters per FAP");
  CLI::App* debug = addCommand(app, line, "debug", "Debug counters per FAP");
  debug->add_option("--snapshot", line.snapshot, "Snapshot of the values (default: current)");
  debug->add_flag("--drops", line.drops, "Drop counters only");
  debug->add_option("--block", line.block, "One counter block, its name in any case");
  addCommand(app, line, "registry", "What the plug-in registered");

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() != 0) throw InputError(problem(app, error) + " (see --help)");
    std::ostringstream out;
    app.exit(error, out, out);
    line.notice = out.str();
  }
  line.format = formatName == "json" ? tabula::formatJson : tabula::formatText;
  return line;
}

}  // namespace loamshow

#include "loamshow/CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <sstream>

#include "loamshow/JsonDocument.h"
#include "platform/tabula.h"

namespace loamshow {

namespace {

// The parser gives some words a meaning of its own: "++", and lists in brackets. In front of such a word the
// quote stands for nothing but itself.
constexpr char quote = '\x01';

std::string quoted(const std::string& word, bool isPlain) {
  const bool hasMeaning = word == "++" || word.starts_with('[') || word.starts_with(quote);
  return hasMeaning || (isPlain && word.starts_with('-')) ? quote + word : word;
}

/// Gives an option the text that was typed; of several, the last.
CLI::Option* plain(CLI::Option* option) {
  const auto unquote = [](const std::string& word) { return word.substr(word.starts_with(quote) ? 1 : 0); };
  return option->transform(unquote, "", "");
}

template <class Text>
CLI::Option* addText(CLI::App& app, const std::string& names, Text& text, const std::string& description) {
  return plain(app.add_option(names, text, description))->take_last();
}

CLI::App* addCommand(CLI::App& app, CommandLine& line, const std::string& name,
                     const std::string& description) {
  CLI::App* command = app.add_subcommand(name, description);
  command->fallthrough();  // the general options may follow the command, too
  command->footer("General options, which may follow the command, too: loamshow --help");
  command->callback([&line, name] { line.command = name; });
  return command;
}

void addInterfaces(CLI::App* command, CommandLine& line) {
  plain(command->add_option("INTF", line.interfaces,
                            "Interfaces: long or short names, lists, ranges (Et1/1-3,Po1)"));
}

void addInternal(CLI::App* command, CommandLine& line) {
  command->add_flag("--internal", line.internal,
                    "Add the chips' special interfaces and fabric multicast queues");
  command->add_flag("--detail", line.detail, "Accepted; the answer is the same");
}

/// The option of that name, of the program or of one of its commands; null when there is none.
const CLI::Option* findOption(const CLI::App& app, const std::string& name) {
  const CLI::Option* option = app.get_option_no_throw(name);
  for (const CLI::App* command : app.get_subcommands({})) {
    if (option == nullptr) option = command->get_option_no_throw(name);
  }
  return option;
}

/// The words of the command line as the parser is to read them: last first, as it wants them.
std::vector<std::string> words(const CLI::App& app, int argc, char** argv) {
  std::vector<std::string> words;
  bool isPlain = false;  // behind "--"
  for (int i = 1; i < argc; ++i) {
    const std::string word = argv[i];
    if (!isPlain && word == "--") {
      isPlain = true;
      continue;
    }
    const std::size_t equals = isPlain || !word.starts_with("--") ? std::string::npos : word.find('=');
    const std::string name = word.substr(0, equals);
    const CLI::Option* option = equals == std::string::npos ? nullptr : findOption(app, name);
    if (option == nullptr) {
      words.push_back(quoted(word, isPlain));
    } else if (option->get_expected_max() == 0) {
      throw InputError(name + " takes no value (see --help)");
    } else {
      words.push_back(name);  // apart: the parser takes an empty value for none
      words.push_back(quoted(word.substr(equals + 1), true));
    }
  }
  std::reverse(words.begin(), words.end());
  return words;
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
  addText(app, "-s,--state", line.state,
          "State file of the switch, - for standard input (default: $LOAM_STATE, else the sample)");
  std::string formatName = "text";
  CLI::Option* format = addText(app, "-f,--format", formatName, "Format of the answer (default: text)")
                            ->check(CLI::IsMember({"text", "json"}))
                            ->option_text("text|json");
  app.add_flag_callback(
         "-j,--json", [&] { formatName = "json"; }, "Short for --format json")
      ->excludes(format);
  addText(app, "--plugin", line.plugin, "Plug-in library to load instead of the installed one");

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
  addText(*debug, "--snapshot", line.snapshot, "Snapshot of the values (default: current)");
  debug->add_flag("--drops", line.drops, "Drop counters only");
  addText(*debug, "--block", line.block, "One counter block, its name in any case");
  addCommand(app, line, "registry", "What the plug-in registered");

  try {
    app.parse(words(app, argc, argv));
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

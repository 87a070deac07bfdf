#include "loamshow/cli/CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <map>
#include <sstream>

#include "loamshow/text/InputError.h"
#include "loamshow/text/NearMiss.h"
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

std::string unquoted(const std::string& word) {
  return word.substr(word.starts_with(quote) ? 1 : 0);
}

/// Gives an option the text that was typed; of several, the last.
CLI::Option* plain(CLI::Option* option) {
  return option->transform(unquoted, "", "");
}

constexpr const char* fileValue = "FILE";

template <class Text>
CLI::Option* addText(CLI::App& app, const std::string& names, Text& text, const std::string& value,
                     const std::string& description) {
  return plain(app.add_option(names, text, description))->type_name(value)->take_last();
}

CLI::App* addCommand(CLI::App& app, CommandLine& line, const std::string& name,
                     const std::string& description, const std::string& example) {
  CLI::App* command = app.add_subcommand(name, description);
  command->group("Commands");
  command->fallthrough();  // the general options may follow the command, too
  command->footer("Example:\n  loamshow " + name + example +
                  "\n\nGeneral options, which may follow the command, too: loamshow --help");
  command->callback([&line, name] { line.command = name; });
  return command;
}

constexpr const char* intfArgument = "INTF";

void addInterfaces(CLI::App* command, CommandLine& line) {
  plain(
      command->add_option(intfArgument, line.interfaces, "Interfaces by long or short names, lists, ranges"))
      ->option_text("...");
}

void addInternal(CLI::App* command, CommandLine& line) {
  command->add_flag("--internal", line.internal, "Add special interfaces and fabric multicast queues");
  command->add_flag("--detail", line.detail, "Accepted; the answer is the same");
}

const std::vector<std::string> formats = {"text", "json"};

/// The program's options and commands, which fill in what the command line asks for.
struct Parser {
  Parser();

  CommandLine line;
  std::string format = formats[0];
  CLI::App app{"Shows where traffic waits or is lost in the queues of a switch.", "loamshow"};
};

Parser::Parser() {
  app.require_subcommand(1);
  app.get_formatter()->column_width(28);
  app.get_formatter()->label("SUBCOMMAND", "COMMAND [ARGUMENTS]");
  app.get_formatter()->label("Positionals", "Arguments");
  app.footer("An example of each command: loamshow COMMAND --help");
  app.set_version_flag("--version", "loamshow " LOAM_VERSION, "Print the version and exit");
  app.set_help_flag("-h,--help", "Print this help and exit");
  addText(app, "-s,--state", line.state, fileValue,
          "State of the switch, - for standard input\n(default: $LOAM_STATE, else a sample)");
  CLI::Option* text = addText(app, "-f,--format", format, "text|json", "Format of the answer (text)");
  text->check(CLI::IsMember(formats))->option_text("text|json");
  app.add_flag_callback(
         "-j,--json", [this] { format = formats[1]; }, "Short for --format json")
      ->excludes(text)
      ->option_text(" ");
  addText(app, "--plugin", line.plugin, fileValue, "Plug-in to load instead of the installed one");
  const auto add = [this](const char* name, const char* description, const char* example) {
    return addCommand(app, line, name, description, example);
  };

  CLI::App* queues = add("queues", "Ingress and egress queue counters of interfaces", " Et1/1-3,Po1");
  addInterfaces(queues, line);
  addInternal(queues, line);
  CLI::App* ingress =
      add("ingress", "Ingress VOQ counters of interfaces per FAP core", " Ethernet5/1 --json");
  addInterfaces(ingress, line);
  addInternal(ingress, line);
  CLI::App* cpu = add("cpu", "CPU queue counters per CoPP class", " --summary");
  cpu->add_flag("--summary", line.summary, "The whole switch in one view, not per FAP core");
  cpu->add_flag("--per-port", line.perPort, "A class has one VOQ per input port");
  addInterfaces(add("drops", "Queue counters of interfaces that dropped packets", " Et5/1-4"), line);
  addInterfaces(add("acl", "Egress ACL drop counters of interfaces", " --state switch.json"), line);
  add("mtu", "Egress MTU counters per FAP", " --json");
  CLI::App* debug = add("debug", "Debug counters per FAP", " --drops --block cgm");
  addText(*debug, "--snapshot", line.snapshot, "NAME", "Snapshot of the values (current)");
  debug->add_flag("--drops", line.drops, "Drop counters only");
  addText(*debug, "--block", line.block, "NAME", "One counter block, its name in any case");
  add("registry", "What the plug-in registered", " --json");
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

/// Words, and what they mean.
using Choices = std::map<std::string, std::string>;

Choices commands(const CLI::App& app) {
  Choices choices;
  for (const CLI::App* command : app.get_subcommands({})) {
    choices.emplace(command->get_name(), command->get_description());
  }
  return choices;
}

/// The options that may stand on a command line: the program's, and those of the command that is on it.
Choices options(const CLI::App& app) {
  Choices choices;
  for (const CLI::Option* option : app.get_options()) {
    for (const std::string& name : option->get_lnames()) {
      choices.emplace("--" + name, option->get_description());
    }
  }
  for (const CLI::App* command : app.get_subcommands()) choices.merge(options(*command));
  return choices;
}

std::vector<std::string_view> names(const Choices& choices) {
  std::vector<std::string_view> names;
  for (const auto& [name, description] : choices) names.push_back(name);
  return names;
}

/// What is wrong with the usage. The parser misses a command before it looks at what stands in its place.
std::string problem(const CLI::App& app, const CLI::ParseError& error) {
  const bool lacksCommand = dynamic_cast<const CLI::RequiredError*>(&error) != nullptr;
  const std::vector<std::string> unknown = app.remaining(true);
  if (unknown.empty()) {
    return lacksCommand ? "expected a command: " + CLI::detail::join(names(commands(app)), ", ")
                        : error.what();
  }
  const bool isOption = unknown.front().starts_with('-');
  const std::string word = unquoted(unknown.front());
  std::string text = lacksCommand ? (isOption ? "no such option " : "no such command ") + word : error.what();
  if (!isOption && !lacksCommand) return text;
  return text + nearMiss(word, names(isOption ? options(app) : commands(app)));
}

}  // namespace

CommandLine parseCommandLine(int argc, char** argv) {
  Parser parser;
  CLI::App& app = parser.app;
  try {
    app.parse(words(app, argc, argv));
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() != 0) throw InputError(problem(app, error) + " (see --help)");
    std::ostringstream out;
    app.exit(error, out, out);
    parser.line.notice = out.str();
  }
  parser.line.format = parser.format == formats[1] ? tabula::formatJson : tabula::formatText;
  return parser.line;
}

Completion completeCommandLine(int argc, char** argv) {
  const std::string typed = argv[argc - 1];
  const std::string before = argv[argc - 2];
  const std::size_t equals = typed.starts_with("--") ? typed.find('=') : std::string::npos;
  const std::string name = equals == std::string::npos ? before : typed.substr(0, equals);
  Parser parser;
  const CLI::App& app = parser.app;
  try {
    parser.app.parse(words(app, argc - 1, argv));
  } catch (const CLI::ParseError&) {
    // Not complete, of course; what is there has been read.
  }
  Completion completion{Completion::Kind::words, {}, parser.line};
  Choices choices;
  const CLI::Option* option = name.starts_with('-') ? findOption(app, name) : nullptr;
  if (option != nullptr && option->get_expected_max() > 0) {
    if (option->get_type_name() == fileValue) completion.kind = Completion::Kind::file;
    if (option != app.get_option("--format")) return completion;
    for (const std::string& format : formats) choices.emplace(typed.substr(0, equals + 1) + format, "");
  } else if (typed.starts_with('-')) {
    choices = options(app);
  } else if (app.get_subcommands().empty()) {
    choices = commands(app);
  } else if (app.get_subcommands().front()->get_option_no_throw(intfArgument) != nullptr) {
    completion.kind = Completion::Kind::interface;
  }
  for (const auto& [word, meaning] : choices) {
    if (!word.starts_with(typed)) continue;
    completion.words.push_back(word + '\t' + meaning.substr(0, meaning.find('\n')));
  }
  return completion;
}

}  // namespace loamshow

#include "loamshow/cli/Help.h"

#include <utility>
#include <vector>

namespace loamshow {

namespace {

/// Terms with their meanings, which may have several lines.
using Terms = std::vector<std::pair<std::string, std::string_view>>;

/// Formats the terms in one column and their meanings in another.
std::string columns(const Terms& terms) {
  std::size_t width = 0;
  for (const auto& [term, meaning] : terms) width = std::max(width, term.size());
  std::string text;
  for (const auto& [term, meaning] : terms) {
    std::string start = "  " + term + std::string(width - term.size() + 2, ' ');
    anyPart(meaning, '\n', [&](std::string_view line) {
      text += start;
      text += line;
      text += '\n';
      start.assign(width + 4, ' ');
      return false;
    });
  }
  return text;
}

std::string term(const Option& option) {
  std::string text = option.letter == '\0' ? "    " : std::string("-") + option.letter;
  if (option.letter != '\0' && !option.name.empty()) text += ", ";
  if (!option.name.empty()) text += "--" + std::string(option.name);
  return option.value.empty() ? text : text + ' ' + std::string(option.value);
}

std::string term(const Command& command) {
  return std::string(command.name) + (command.arguments.empty() ? "" : " ") + std::string(command.arguments);
}

}  // namespace

std::string programHelp() {
  Terms ofCommands;
  Terms ofOptions;
  for (const Command& command : commands) ofCommands.emplace_back(term(command), command.help);
  for (const Option& option : options) {
    if (option.isGlobal) ofOptions.emplace_back(term(option), option.help);
  }
  return "Usage: loamshow [OPTIONS] COMMAND [ARGUMENTS]\n"
         "Shows where traffic is queued or dropped in a switch.\n"
         "\nCommands:\n" +
         columns(ofCommands) + "\nGlobal options, before or after the command:\n" + columns(ofOptions) +
         "\nOptions and an example of a command: loamshow help COMMAND\n";
}

std::string commandHelp(const Command& command) {
  const std::string name(command.name);
  Terms ofOptions;
  for (const Option& option : options) {
    if (!option.commands.empty() && takes(command, option)) ofOptions.emplace_back(term(option), option.help);
  }
  std::string text = "Usage: loamshow " + term(command) + (ofOptions.empty() ? "" : " [OPTIONS]") + '\n' +
                     std::string(command.help) + ".\n";
  if (command.names == Names::interfaces) {
    text +=
        "\nINTF is an interface name, a list or a range: Ethernet1/1, et1/1, Et1/1-3,Po1.\n"
        "By default, all interfaces are shown.\n";
  }
  if (!ofOptions.empty()) text += "\nOptions:\n" + columns(ofOptions);
  return text + "\nExample:\n  loamshow " + name + ' ' + std::string(command.example) +
         "\n\nGlobal options: loamshow help\n";
}

}  // namespace loamshow

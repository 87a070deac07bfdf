#include "loamshow/cli/CommandLine.h"

#include <args.hxx>
#include <utility>

#include "loamshow/cli/CommandTable.h"
#include "loamshow/cli/Help.h"
#include "loamshow/text/InputError.h"
#include "loamshow/text/NearMiss.h"

namespace loamshow {

namespace {

/// Turns a list separated by blanks into "a, b and c", if `last` is " and ".
std::string enumerated(std::string_view list, std::string_view last) {
  std::string text;
  anyPart(list, ' ', [&](std::string_view part) {
    const bool isLast = part.data() + part.size() == list.data() + list.size();
    if (!text.empty()) text += isLast ? last : std::string_view(", ");
    text += part;
    return false;
  });
  return text;
}

bool isChoice(const Option& option) {
  return option.value.find('|') != std::string_view::npos;
}

std::string expectedValue(const Option& option) {
  std::string choices(option.value);
  std::ranges::replace(choices, '|', ' ');
  return "expected " + (isChoice(option) ? enumerated(choices, " or ") : "a " + choices);
}

void setValue(const Option& option, CommandLine& line, const std::string& value) {
  const auto isValue = [&](std::string_view choice) { return choice == value; };
  const bool isEmptyName = option.names == Names::files && value.empty();
  if (isEmptyName || (isChoice(option) && !anyPart(option.value, '|', isValue))) {
    throw InputError(expectedValue(option));
  }
  option.set(line, value);
}

std::string unknownCommand(const std::string& word) {
  std::vector<std::string_view> names;
  for (const Command& command : commands) names.push_back(command.name);
  return "unknown command " + quoted(word) + nearMiss(word, names);
}

/// `command` is null if none was given yet.
std::string unknownOption(const std::string& word, const Command* command) {
  std::vector<std::string> words;
  for (const Option& option : options) {
    if (command == nullptr || takes(*command, option)) words.push_back(typed(option));
  }
  return "unknown option " + quoted(word) + nearMiss(word, {words.begin(), words.end()});
}

/// Collects the words of a command line one by one, and the first problem with them.
class Words {
 public:
  /// The command, then its arguments.
  void addPlain(const std::string& word) {
    if (hasCommand_) {
      line_.interfaces.push_back(word);
    } else {
      line_.command = word;
      hasCommand_ = true;
    }
  }

  /// `value` is null if there is none.
  void addOption(const Option& option, const std::string* value) {
    given_.push_back({&option, hasCommand_});
    try {
      if (value == nullptr && !option.value.empty()) throw InputError(expectedValue(option));
      setValue(option, line_, value == nullptr ? "" : *value);
    } catch (const InputError& error) {
      addProblem(typed(option) + ": " + error.what() + (value == nullptr ? "" : ", not " + quoted(*value)));
    }
  }

  void addUnknownOption(const std::string& word) {
    if (!unknownOption_) unknownOption_ = word;
  }

  void addProblem(const std::string& problem) {
    if (problem_.empty()) problem_ = problem;
  }

  ReadLine result() {
    const Command* command = findCommand(line_.command);
    if (hasCommand_ && command == nullptr) addProblem(unknownCommand(line_.command));
    if (unknownOption_) addProblem(unknownOption(*unknownOption_, command));
    if (!hasCommand_) addProblem("expected a command: " + commandList());
    if (command != nullptr) addProblem(problemOf(*command));
    return {line_, problem_};
  }

 private:
  struct Given {
    const Option* option;
    bool isAfterCommand;
  };

  static std::string commandList() {
    std::string list;
    for (const Command& command : commands) list += (list.empty() ? "" : ", ") + std::string(command.name);
    return list;
  }

  /// The problem with the options and arguments of a known command; empty if there is none.
  std::string problemOf(const Command& command) const {
    const std::string name(command.name);
    for (const auto& [option, isAfterCommand] : given_) {
      if (!takes(command, *option)) {
        return name + " does not take " + typed(*option) + ", an option of " +
               enumerated(option->commands, " and ");
      }
      if (!isAfterCommand && !option->isGlobal) {
        return typed(*option) + " belongs after the command: loamshow " + name + ' ' + typed(*option);
      }
    }
    if (command.arguments.empty() && !line_.interfaces.empty()) {
      return name + " takes no arguments, but " + quoted(line_.interfaces.front()) + " is one";
    }
    if (command.names == Names::commands) {
      for (const std::string& word : line_.interfaces) {
        if (findCommand(word) == nullptr) return unknownCommand(word);
      }
      if (line_.interfaces.size() > 1) return name + " takes one command";
    }
    if (line_.state && line_.sample) return "--state and --sample name two switches: expected one of them";
    if (line_.count && !line_.every) return "--count needs --every";
    if (line_.internal && command.name == "top" && !line_.interfaces.empty()) {
      return "--internal adds interfaces to all others: expected no interface names";
    }
    if (!command.hasJson && line_.format == tabula::formatJson) return name + ": the report has no JSON form";
    return "";
  }

  CommandLine line_;
  bool hasCommand_ = false;
  std::vector<Given> given_;
  std::optional<std::string> unknownOption_;
  std::string problem_;
};

/// Matches every option for the parsing library, so that this code decides which options exist.
class AnyOption : public args::FlagBase {
 public:
  AnyOption(args::Group& parser, Words& words) : FlagBase("", "", args::Matcher{'h'}), words_(words) {
    parser.Add(*this);
  }

  FlagBase* Match(const args::EitherFlag& flag) override {
    word_ = flag.str("-", "--");
    option_ = flag.isShort ? findOption(flag.shortFlag) : findOption(flag.longFlag);
    if (option_ == nullptr) words_.addUnknownOption(word_);
    return this;
  }

  /// The value is optional for the library, so that it does not take another option as one; this code checks
  /// it.
  // NOLINTNEXTLINE(bugprone-exception-escape): the minimum is not above the maximum
  args::Nargs NumberOfArguments() const noexcept override {
    return {0, option_ != nullptr && !option_->value.empty() ? 1U : 0U};
  }

  void ParseValue(const std::vector<std::string>& values) override {
    if (option_ != nullptr) words_.addOption(*option_, values.empty() ? nullptr : values.data());
  }

  /// Reports the only error of the library: a value for the option matched last, which takes none.
  void reportValue() const {
    if (option_ != nullptr) words_.addProblem(word_ + " takes no value");
  }

 private:
  Words& words_;
  std::string word_;
  const Option* option_ = nullptr;
};

class AnyWord : public args::PositionalBase {
 public:
  AnyWord(args::Group& parser, Words& words) : PositionalBase("", ""), words_(words) { parser.Add(*this); }

  void ParseValue(const std::string& word) override { words_.addPlain(word); }

 private:
  Words& words_;
};

}  // namespace

ReadLine readCommandLine(int argc, const char* const* argv) {
  Words words;
  args::ArgumentParser parser("");
  const AnyOption anyOption(parser, words);
  const AnyWord anyWord(parser, words);
  try {
    parser.ParseCLI(argc, argv);
  } catch (const args::Error&) {
    anyOption.reportValue();
  }
  return words.result();
}

CommandLine parseCommandLine(int argc, const char* const* argv) {
  auto [line, problem] = readCommandLine(argc, argv);
  const Command* command = findCommand(line.command);
  if (line.version) {
    line.notice = "loamshow " LOAM_VERSION "\n";
  } else if (line.help && (command != nullptr || line.command.empty())) {
    line.notice = command == nullptr ? programHelp() : commandHelp(*command);
  } else if (!problem.empty()) {
    throw InputError(problem + " (see --help)");
  } else if (command->names == Names::commands) {
    line.notice =
        line.interfaces.empty() ? programHelp() : commandHelp(*findCommand(line.interfaces.front()));
  }
  return line;
}

}  // namespace loamshow

#include "loamshow/cli/Completion.h"

#include "loamshow/cli/IntfArguments.h"
#include "loamshow/state/DebugNames.h"

namespace loamshow {

namespace {

/// Adds a word of the tables if it begins with the typed text.
void add(Completion& completion, std::string word, std::string_view meaning = {}) {
  if (!word.starts_with(completion.typed)) return;
  meaning = meaning.substr(0, meaning.find('\n'));
  completion.words.push_back(completion.before + std::move(word) + '\t' + std::string(meaning));
}

void addCommands(Completion& completion) {
  for (const Command& command : commands) add(completion, std::string(command.name), command.help);
}

/// The option of a word, if the next word is its value; otherwise null.
const Option* optionWithValue(std::string_view word) {
  const Option* option = nullptr;
  if (word.starts_with("--")) {
    option = findOption(word.substr(2));
  } else if (word.size() == 2 && word.front() == '-') {
    option = findOption(word.back());
  }
  return option == nullptr || option->value.empty() ? nullptr : option;
}

}  // namespace

Completion completeCommandLine(int argc, const char* const* argv) {
  Completion completion;
  completion.line = readCommandLine(argc - 1, argv).line;
  completion.typed = argv[argc - 1];
  const std::size_t equals =
      completion.typed.starts_with("--") ? completion.typed.find('=') : std::string::npos;
  std::string_view name = argv[argc - 2];
  if (equals != std::string::npos) {
    completion.before = completion.typed.substr(0, equals + 1);
    completion.typed.erase(0, equals + 1);
    name = std::string_view(completion.before).substr(0, equals);
  }
  const Command* command = findCommand(completion.line.command);
  if (const Option* option = optionWithValue(name)) {
    completion.kind = option->names;
    if (option->names != Names::none) return completion;
    anyPart(option->value, '|', [&](std::string_view choice) {
      if (option->value != choice) add(completion, std::string(choice));
      return false;
    });
  } else if (completion.typed.starts_with('-')) {
    for (const Option& candidate : options) {
      const bool fits = command == nullptr ? candidate.isGlobal : takes(*command, candidate);
      if (fits && !candidate.name.empty()) add(completion, typed(candidate), candidate.help);
    }
  } else if (command == nullptr) {
    if (completion.line.command.empty()) addCommands(completion);
  } else if (command->names == Names::commands) {
    addCommands(completion);
  } else {
    completion.kind = command->names;
  }
  return completion;
}

void completeName(Completion& completion, const SwitchState& state) {
  std::vector<std::string> names;
  if (completion.kind == Names::interfaces) {
    names = completeInterface(state.interfaces, completion.typed);
  } else if (completion.kind == Names::blocks) {
    names = debugBlocks(state);
    completion.typed = Mote::String(completion.typed).lowerCase();
  } else if (completion.kind == Names::snapshots) {
    names = debugSnapshots(state);
  }
  for (const std::string& name : names) {
    if (completion.kind == Names::interfaces || name.starts_with(completion.typed)) {
      completion.words.push_back(completion.before + name);
    }
  }
}

}  // namespace loamshow

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/Mote.h"

namespace loamshow {

/// What the command line asks for.
struct CommandLine {
  std::string command;
  std::optional<std::string> state;
  std::optional<std::string> plugin;
  U32 format = 1;  // of the answer: 1 text, 2 JSON
  std::vector<std::string> interfaces;
  bool internal = false;
  bool detail = false;
  bool summary = false;
  bool perPort = false;
  std::string snapshot = "current";
  bool drops = false;
  std::optional<std::string> block;

  /// Text to print instead of running a command: help, or the version.
  std::string notice;
};

/// Raises InputError for wrong usage.
CommandLine parseCommandLine(int argc, char** argv);

/// What the last word of a command line, which is being typed, can become.
struct Completion {
  enum class Kind : U8 { words, interface, file };

  Kind kind;
  std::vector<std::string> words;  // of that kind: each with a tab and what it means, in a line
  CommandLine line;                // what stands before
};

/// Raises InputError where what stands before is not to be understood.
Completion completeCommandLine(int argc, char** argv);

}  // namespace loamshow

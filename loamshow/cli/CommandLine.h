#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/tabula.h"

namespace loamshow {

/// What the command line asks for.
struct CommandLine {
  std::string command;
  std::optional<std::string> state;
  bool sample = false;
  std::optional<std::string> plugin;
  U32 format = tabula::formatText;  // of the answer: text or JSON
  std::vector<std::string> interfaces;
  bool internal = false;
  bool detail = false;
  bool summary = false;
  bool perPort = false;
  std::optional<std::string> snapshot;
  bool drops = false;
  std::optional<std::string> block;
  std::size_t most = 10;  // rows of `top`; 0: all
  bool byOctets = false;  // `top` ranks by octets instead of packets
  std::optional<std::string> since;
  std::optional<double> every;  // seconds
  std::optional<U64> count;     // of answers
  bool help = false;
  bool version = false;

  /// Text to print instead of running a command: help, or the version.
  std::string notice;
};

/// Raises InputError for wrong usage.
CommandLine parseCommandLine(int argc, const char* const* argv);

/// A command line as far as it can be read.
struct ReadLine {
  CommandLine line;
  std::string problem;  // the first one; empty: none
};

/// Reads a command line without refusing it: for completion, whose line is still being typed.
ReadLine readCommandLine(int argc, const char* const* argv);

}  // namespace loamshow

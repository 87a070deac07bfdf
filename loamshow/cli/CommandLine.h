#pragma once

// Parses the command line.

#include <optional>
#include <string>
#include <vector>

#include "platform/tabula.h"

namespace loamshow {

/// The contents of the command line.
struct CommandLine {
  std::string command;
  std::vector<std::string> interfaces;
  std::optional<std::string> state;
  std::optional<std::string> plugin;
  std::optional<std::string> snapshot;
  std::optional<std::string> block;
  std::optional<std::string> since;
  std::optional<double> every;      // seconds
  std::optional<U64> count;         // number of outputs
  std::size_t most = 10;            // rows of `top`; 0: all
  U32 format = tabula::formatText;  // output format: text or JSON
  bool byOctets = false;            // `top` ranks by octets instead of packets
  bool sample = false;
  bool internal = false;
  bool detail = false;
  bool summary = false;
  bool perPort = false;
  bool drops = false;
  bool help = false;
  bool version = false;

  /// Text to print instead of running a command: help, or the version.
  std::string notice;
};

/// Throws InputError for wrong usage.
CommandLine parseCommandLine(int argc, const char* const* argv);

/// The readable part of a command line.
struct ReadLine {
  CommandLine line;
  std::string problem;  // the first problem; empty: none
};

/// Reads a command line that may be wrong or incomplete: for completion.
ReadLine readCommandLine(int argc, const char* const* argv);

}  // namespace loamshow

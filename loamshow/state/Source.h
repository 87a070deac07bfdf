#pragma once

// Sources of states.

#include <cstddef>
#include <string>

#include "loamshow/state/Switch.h"
#include "loamshow/text/InputError.h"

namespace loamshow {

/// A source that currently cannot be opened or read.
class Unreadable : public InputError {
 public:
  using InputError::InputError;
};

/// The source of a switch's state: a state file or a counter region, recognized by its content, or standard
/// input, which can be read once.
class Source {
 public:
  /// The size limit of a state file, in bytes, so that an endless file does not exhaust the memory.
  static constexpr std::size_t mostBytes = std::size_t{1} << 30;

  /// `path` is a file; "-" means standard input. Does not open it yet.
  explicit Source(std::string path, std::size_t most = mostBytes);

  /// The source's name in messages.
  const std::string& name() const { return name_; }

  /// Opens the source and reads its current state. Throws Unreadable, another InputError for an invalid
  /// state, or RegionException for a damaged region.
  SwitchState read() const;

 private:
  std::string path_;
  std::string name_;
  std::size_t most_;
};

}  // namespace loamshow

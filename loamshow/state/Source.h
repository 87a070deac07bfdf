#pragma once

#include <cstddef>
#include <string>

#include "loamshow/state/Switch.h"
#include "loamshow/text/InputError.h"

namespace loamshow {

/// A source that cannot be opened or read at this time.
class Unreadable : public InputError {
 public:
  using InputError::InputError;
};

/// Where a switch's state comes from: a state file or a counter region, whichever its content is, or standard
/// input, which can be read once.
class Source {
 public:
  /// The largest state file that is read, in bytes, so that a file without an end does not exhaust the
  /// memory.
  static constexpr std::size_t mostBytes = std::size_t{1} << 30;

  /// `path` names a file; "-" is standard input. Nothing is opened yet.
  explicit Source(std::string path, std::size_t most = mostBytes);

  /// The source in messages.
  const std::string& name() const { return name_; }

  /// Opens the source and reads the state that it holds now. Raises Unreadable, or another InputError for
  /// what is read and is no state, RegionException for a damaged region.
  SwitchState read() const;

 private:
  std::string path_;
  std::string name_;
  std::size_t most_;
};

}  // namespace loamshow

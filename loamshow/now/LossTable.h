#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "loamshow/commands/Output.h"
#include "loamshow/now/Losses.h"

namespace loamshow {

/// What the losses are of. Names and times are empty where they are not known.
struct LossTitle {
  std::string_view switchName;
  std::string_view takenAt;
  /// How long the losses took, rounded to a tenth; never 0.
  std::optional<double> seconds;
};

/// Writes the `most` worst losses (0: all) as a table of 80 columns, wider only where names or counts are
/// long.
void writeLossTable(const LossTitle& title, const Losses& losses, std::size_t most, const Sink& sink);
/// Writes them as one JSON document on a line.
void writeLossJson(const LossTitle& title, const Losses& losses, std::size_t most, const Sink& sink);

}  // namespace loamshow

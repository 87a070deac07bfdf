#pragma once

// Output of `top`.

#include <optional>
#include <string>
#include <string_view>

#include "loamshow/commands/Output.h"
#include "loamshow/now/Losses.h"

namespace loamshow {

/// The title of the table. Names and times are empty if not known.
struct LossTitle {
  std::string_view switchName;
  std::string_view takenAt;
  /// The interval of the losses, rounded to 0.1; never 0.
  std::optional<double> seconds;
};

/// Writes the `most` worst losses (0: all) as a table of 80 columns, or more if names or counts are long.
void writeLossTable(const LossTitle& title, const Losses& losses, std::size_t most, const Sink& sink);
/// Writes them as one JSON document on one line.
void writeLossJson(const LossTitle& title, const Losses& losses, std::size_t most, const Sink& sink);

}  // namespace loamshow

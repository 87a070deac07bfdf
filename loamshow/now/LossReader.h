#pragma once

// From the commands' JSON output to the rows of `top`.

#include <string_view>
#include <vector>

#include "loamshow/json/JsonReader.h"
#include "loamshow/now/Losses.h"

namespace loamshow {

/// Reads the dropped packets from the commands' JSON output.
class LossReader {
 public:
  explicit LossReader(Losses& losses) : losses_(losses) {}

  /// Adds the rows of a command's output. Throws InputError for output of an unexpected form. Read `ingress`
  /// before `queues`: VOQs of `queues` are added only for interfaces that `ingress` does not show.
  void read(std::string_view command, JsonReader& answer);

 private:
  using Rules = U32;  // one bit per rule

  void walk(JsonValue object, Rules active, std::size_t depth);
  bool note(std::string_view key, std::size_t rule, std::size_t depth);
  void addRow(JsonValue counts, std::size_t rule);

  Losses& losses_;
  // The names on the path to the current counts.
  LossName interface_ = LossName::none;
  LossName source_ = LossName::none;
  std::string_view queue_;

  /// Where a name was last read as a source and as an interface.
  struct Seen {
    U32 asSource = 0;     // number of the output
    U32 asInterface = 0;  // number of the collection
    bool inIngress = false;
  };
  Seen& seen(LossName name);

  std::vector<Seen> seen_;  // indexed by name
  // Outputs and collections of interfaces share one numbering, from 1.
  U32 answer_ = 0;
  U32 collection_ = 0;
};

}  // namespace loamshow

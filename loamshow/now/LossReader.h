#pragma once

#include <string_view>
#include <vector>

#include "loamshow/json/JsonReader.h"
#include "loamshow/now/Losses.h"

namespace loamshow {

/// Reads what was dropped from the commands' JSON answers.
class LossReader {
 public:
  explicit LossReader(Losses& losses) : losses_(losses) {}

  /// Adds the rows of a command's answer. Raises InputError for an answer of another form. Read `ingress`
  /// before `queues`, of which only the VOQs of interfaces that `ingress` does not show are added.
  void read(std::string_view command, JsonReader& answer);

 private:
  using Rules = U32;  // a bit for each of them

  void walk(JsonValue object, Rules active, std::size_t depth);
  bool note(std::string_view key, std::size_t rule, std::size_t depth);
  void addRow(JsonValue counts, std::size_t rule);

  Losses& losses_;
  // The names on the way to the counts that are being read.
  LossName interface_ = LossName::none;
  LossName source_ = LossName::none;
  std::string_view queue_;

  /// Where a name has been seen last, as a source and as an interface.
  struct Seen {
    U32 asSource = 0;     // the answer
    U32 asInterface = 0;  // the collection
    bool inIngress = false;
  };
  Seen& seen(LossName name);

  std::vector<Seen> seen_;  // by name
  // Answers and collections of interfaces are numbered together, from 1.
  U32 answer_ = 0;
  U32 collection_ = 0;
};

}  // namespace loamshow

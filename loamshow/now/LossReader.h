#pragma once

#include <string_view>
#include <unordered_map>
#include <unordered_set>

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
  bool capture(std::string_view step, std::size_t rule, std::string_view key);
  void addRow(JsonValue counts, std::size_t rule);

  Losses& losses_;
  // The names on the way to the counts that are being read.
  const std::string* interface_ = nullptr;
  const std::string* source_ = nullptr;
  std::string_view queue_;

  /// What has been seen of an interface.
  struct Seen {
    U64 walk = 0;
    bool inIngress = false;
  };
  std::unordered_map<const std::string*, Seen> interfaces_;
  std::unordered_set<const std::string*> sources_;  // of the answer that is being read
  U64 walk_ = 0;                                    // counts the collections of interfaces
};

}  // namespace loamshow

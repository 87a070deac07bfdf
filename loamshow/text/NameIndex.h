#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/Mote.h"

namespace loamshow {

/// Many names, among which the one nearest to a mistyped word is looked for many times. A look-up's cost does
/// not grow with the number of names. The names' texts must outlive the index.
class NameIndex {
 public:
  explicit NameIndex(std::vector<std::string_view> names) : names_(std::move(names)) {}

  /// As nearMiss() of all names: "; did you mean X?", or empty. Of equally near names, the first one.
  std::string nearMiss(std::string_view word);

 private:
  /// A name with up to two of its characters left out. Two texts that are two mistakes apart at the most have
  /// one such shortening in common.
  struct Shortening {
    std::size_t hash;
    U32 name;  // its place in names_
    U32 leftOut;
  };

  void index();

  std::vector<std::string_view> names_;
  std::vector<Shortening> shortenings_;  // ascending by hash; made by the first look-up
};

}  // namespace loamshow

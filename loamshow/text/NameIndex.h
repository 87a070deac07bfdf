#pragma once

// "Did you mean" for many names.

#include <string>
#include <string_view>
#include <vector>

#include "platform/Mote.h"

namespace loamshow {

/// An index of names, for many searches of the name nearest to a mistyped word. The cost of a search does not
/// grow with the number of names. The texts of the names must outlive the index.
class NameIndex {
 public:
  explicit NameIndex(std::vector<std::string_view> names) : names_(std::move(names)) {}

  /// Like nearMiss() of all names: "; did you mean X?", or empty. Of several equally near names, the first
  /// one.
  std::string nearMiss(std::string_view word);

 private:
  /// A name with up to two characters left out. Two texts that differ by at most two mistakes have such a
  /// shortening in common.
  struct Shortening {
    std::size_t hash;
    U32 name;  // index in names_
    U32 leftOut;
  };

  void index();

  std::vector<std::string_view> names_;
  std::vector<Shortening> shortenings_;  // ascending by hash; created by the first search
};

}  // namespace loamshow

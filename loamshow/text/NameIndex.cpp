#include "loamshow/text/NameIndex.h"

#include <algorithm>
#include <functional>

#include "loamshow/text/NearMiss.h"

namespace loamshow {

namespace {

constexpr std::size_t mostMistakes = 2;
// The number of shortenings of a name is half the square of its length. Real names are not longer than this.
constexpr std::size_t longestName = 40;

/// Calls visit(hash, characters left out) for a text and each way to leave out `most` of its characters or
/// fewer, from the character `from` on.
template <class Visit>
void visitShortenings(const std::string& text, std::size_t from, std::size_t most, std::size_t leftOut,
                      const Visit& visit) {
  visit(std::hash<std::string>()(text), leftOut);
  if (leftOut == most) return;
  for (std::size_t at = from; at < text.size(); ++at) {
    std::string shorter = text;
    visitShortenings(shorter.erase(at, 1), at, most, leftOut + 1, visit);
  }
}

template <class Visit>
void visitShortenings(std::string_view name, std::size_t most, const Visit& visit) {
  if (name.size() > longestName) return;
  visitShortenings(std::string(Mote::String(name).lowerCase()), 0, most, 0, visit);
}

}  // namespace

void NameIndex::index() {
  for (U32 i = 0; i < names_.size(); ++i) {
    visitShortenings(names_[i], mostMistakes, [&](std::size_t hash, std::size_t leftOut) {
      shortenings_.push_back({hash, i, static_cast<U32>(leftOut)});
    });
  }
  std::sort(shortenings_.begin(), shortenings_.end(),
            [](const Shortening& a, const Shortening& b) { return a.hash < b.hash; });
}

std::string NameIndex::nearMiss(std::string_view word) {
  if (shortenings_.empty()) index();
  std::string found;
  for (std::size_t mistakes = 0; mistakes <= mostMistakes && found.empty(); ++mistakes) {
    std::vector<U32> candidates;
    visitShortenings(word, mistakes, [&](std::size_t hash, std::size_t) {
      auto at =
          std::lower_bound(shortenings_.begin(), shortenings_.end(), hash,
                           [](const Shortening& entry, std::size_t wanted) { return entry.hash < wanted; });
      for (; at != shortenings_.end() && at->hash == hash; ++at) {
        if (at->leftOut <= mistakes) candidates.push_back(at->name);
      }
    });
    std::sort(candidates.begin(), candidates.end());
    candidates.erase(std::unique(candidates.begin(), candidates.end()), candidates.end());
    std::vector<std::string_view> names;
    names.reserve(candidates.size());
    for (const U32 candidate : candidates) names.push_back(names_[candidate]);
    found = loamshow::nearMiss(word, names);
  }
  return found;
}

}  // namespace loamshow

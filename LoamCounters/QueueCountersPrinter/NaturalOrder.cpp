#include "LoamCounters/QueueCountersPrinter/NaturalOrder.h"

#include <algorithm>
#include <compare>
#include <string_view>

namespace LoamCounters {

namespace {

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

unsigned char lower(char c) {
  return static_cast<unsigned char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
}

std::string_view withoutLeadingZeros(std::string_view digits) {
  while (!digits.empty() && digits.front() == '0') digits.remove_prefix(1);
  return digits;
}

std::string_view withoutTrailingZeros(std::string_view digits) {
  while (!digits.empty() && digits.back() == '0') digits.remove_suffix(1);
  return digits;
}

/// One of the two strings, and the current position in it.
class Walk {
 public:
  Walk(std::string_view text, std::size_t at) : text_(text), at_(at) {}

  /// Whether the end is reached, after skipping the rest of a run of spaces.
  bool atEnd() {
    if (at_ > 0 && text_[at_ - 1] == ' ') {
      while (at_ < text_.size() && text_[at_] == ' ') ++at_;
    }
    return at_ == text_.size();
  }
  char here() const { return text_[at_]; }
  bool afterPoint() const { return at_ > 0 && text_[at_ - 1] == '.'; }
  /// The run of digits at the current position.
  std::string_view digits() const {
    std::size_t end = at_;
    while (end < text_.size() && isDigit(text_[end])) ++end;
    return text_.substr(at_, end - at_);
  }
  void pass(std::size_t count) { at_ += count; }

 private:
  std::string_view text_;
  std::size_t at_;
};

// Digits after a point are compared from the left, ignoring trailing zeros: a run that ends first is smaller.
// Other digits are compared by value: without leading zeros, the shorter run is the smaller number. The text
// before the digits is the same in both strings.
std::strong_ordering compareDigits(const Walk& a, const Walk& b) {
  if (a.afterPoint()) return withoutTrailingZeros(a.digits()) <=> withoutTrailingZeros(b.digits());
  const std::string_view left = withoutLeadingZeros(a.digits());
  const std::string_view right = withoutLeadingZeros(b.digits());
  const auto bySize = left.size() <=> right.size();
  return bySize != 0 ? bySize : left <=> right;
}

}  // namespace

bool naturalCompare(const Mote::String& a, const Mote::String& b) {
  // Names often have a common prefix. Skip the equal bytes, but not the run of digits that may contain the
  // first difference.
  std::size_t same = 0;
  const std::size_t shorter = std::min(a.size(), b.size());
  while (same < shorter && a.view()[same] == b.view()[same]) ++same;
  while (same > 0 && isDigit(a.view()[same - 1])) --same;

  Walk left(a, same);
  Walk right(b, same);
  for (;;) {
    const bool leftEnds = left.atEnd();
    if (right.atEnd()) return false;
    if (leftEnds) return true;
    if (isDigit(left.here()) && isDigit(right.here())) {
      const auto order = compareDigits(left, right);
      if (order != 0) return order < 0;
      left.pass(left.digits().size());
      right.pass(right.digits().size());
    } else {
      const unsigned char leftChar = lower(left.here());
      const unsigned char rightChar = lower(right.here());
      if (leftChar != rightChar) return leftChar < rightChar;
      left.pass(1);
      right.pass(1);
    }
  }
}

}  // namespace LoamCounters

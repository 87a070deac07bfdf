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
  digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size()));
  return digits;
}

std::string_view withoutTrailingZeros(std::string_view digits) {
  return digits.substr(0, digits.find_last_not_of('0') + 1);
}

/// One of the two strings, and how far the comparison has come in it.
class Walk {
 public:
  explicit Walk(std::string_view text) : text_(text) {}

  /// Whether the string is exhausted, once the rest of a run of spaces is passed over.
  bool atEnd() {
    if (at_ > 0 && text_[at_ - 1] == ' ') at_ = std::min(text_.find_first_not_of(' ', at_), text_.size());
    return at_ == text_.size();
  }
  char here() const { return text_[at_]; }
  bool afterPoint() const { return at_ > 0 && text_[at_ - 1] == '.'; }
  std::string_view digits() const {
    const std::size_t end = std::min(text_.find_first_not_of("0123456789", at_), text_.size());
    return text_.substr(at_, end - at_);
  }
  void pass(std::size_t count) { at_ += count; }

 private:
  std::string_view text_;
  std::size_t at_ = 0;
};

// Digits after a point compare from the left, with zeros at the end of no account: a run that ends first
// orders first. Other digits compare by value: without zeros at the front, the shorter run is the smaller
// number.
std::strong_ordering compareDigits(const Walk& a, const Walk& b) {
  if (a.afterPoint() && b.afterPoint()) {
    return withoutTrailingZeros(a.digits()) <=> withoutTrailingZeros(b.digits());
  }
  if (a.afterPoint()) return std::strong_ordering::greater;
  if (b.afterPoint()) return std::strong_ordering::equal;
  const std::string_view left = withoutLeadingZeros(a.digits());
  const std::string_view right = withoutLeadingZeros(b.digits());
  const auto bySize = left.size() <=> right.size();
  return bySize != 0 ? bySize : left <=> right;
}

}  // namespace

bool naturalCompare(const Mote::String& a, const Mote::String& b) {
  Walk left(a);
  Walk right(b);
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

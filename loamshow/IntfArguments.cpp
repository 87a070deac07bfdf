#include "loamshow/IntfArguments.h"

#include <charconv>
#include <string_view>
#include <unordered_map>

#include "loamshow/JsonDocument.h"

namespace loamshow {

namespace {

using Nexo::IntfId;

constexpr std::string_view digits = "0123456789";

std::string quoted(std::string_view text) {
  return '"' + std::string(text) + '"';
}

std::string lowerCase(std::string_view text) {
  return std::string(Mote::String(text).lowerCase().view());
}

/// The interfaces by everything that names them.
class Names {
 public:
  explicit Names(const std::vector<IntfId>& interfaces) {
    byExactName_.reserve(interfaces.size());
    byName_.reserve(2 * interfaces.size());
    for (const IntfId intf : interfaces) {
      byExactName_.emplace(intf.stringValue().view(), intf);
      add(intf, intf.stringValue());
      add(intf, intf.shortName());
    }
  }

  /// The interface of a name; the empty id when there is none.
  IntfId find(std::string_view name) const {
    const auto exact = byExactName_.find(name);
    if (exact != byExactName_.end()) return exact->second;
    const auto found = byName_.find(lowerCase(name));
    if (found == byName_.end()) return {};
    const auto& [first, second] = found->second;
    if (second != IntfId()) {
      throw InputError("ambiguous interface " + quoted(name) + ": " +
                       std::string(first.stringValue().view()) + " or " +
                       std::string(second.stringValue().view()));
    }
    return first;
  }

 private:
  /// The first interface of a name, and another one, if there is one.
  using Owners = std::pair<IntfId, IntfId>;

  void add(IntfId intf, std::string_view name) {
    const auto [at, isNew] = byName_.try_emplace(lowerCase(name), Owners{intf, IntfId()});
    if (!isNew && at->second.first != intf) at->second.second = intf;
  }

  std::unordered_map<std::string_view, IntfId> byExactName_;
  std::unordered_map<std::string, Owners> byName_;  // by lower-case name
};

/// One end of a range.
U64 bound(std::string_view number, std::string_view range) {
  U64 value = 0;
  const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value);
  const bool isNumber = !number.empty() && error == std::errc() && end == number.data() + number.size();
  const bool hasLeadingZero = number.size() > 1 && number.front() == '0';
  if (!isNumber || hasLeadingZero) {
    throw InputError("malformed range " + quoted(range) +
                     ": expected a number without leading zeros, \"-\", and another");
  }
  return value;
}

/// Appends the members of a range: a name with a number at its end, "-", and the last number.
void appendRange(const Names& names, std::string_view range, std::size_t hyphen,
                 std::vector<IntfId>& selected) {
  const std::string_view left = range.substr(0, hyphen);
  const std::string_view prefix = left.substr(0, left.find_last_not_of(digits) + 1);
  const U64 first = bound(left.substr(prefix.size()), range);
  const U64 last = bound(range.substr(hyphen + 1), range);
  if (last < first) throw InputError("backwards range " + quoted(range));
  for (U64 number = first;; ++number) {
    const std::string name = std::string(prefix) + std::to_string(number);
    const IntfId intf = names.find(name);
    if (intf == IntfId()) throw InputError("no such interface " + quoted(name) + " of " + quoted(range));
    selected.push_back(intf);
    if (number == last) break;
  }
}

/// Whether a name that is no interface's is meant as a range: what follows its last hyphen is a number, or
/// nothing.
bool looksLikeRange(std::string_view name, std::size_t hyphen) {
  return hyphen != std::string_view::npos && hyphen > 0 &&
         name.find_first_not_of(digits, hyphen + 1) == std::string_view::npos;
}

void appendName(const Names& names, std::string_view name, std::vector<IntfId>& selected) {
  const IntfId intf = names.find(name);
  const std::size_t hyphen = name.rfind('-');
  if (intf != IntfId()) {
    selected.push_back(intf);
  } else if (looksLikeRange(name, hyphen)) {
    appendRange(names, name, hyphen, selected);
  } else {
    throw InputError("no such interface " + quoted(name));
  }
}

}  // namespace

std::vector<IntfId> selectInterfaces(const std::vector<IntfId>& interfaces,
                                     const std::vector<std::string>& arguments) {
  if (arguments.empty()) return interfaces;
  const Names names(interfaces);
  std::vector<IntfId> selected;
  for (const std::string_view argument : arguments) {
    const IntfId whole = names.find(argument);
    if (whole != IntfId()) {
      selected.push_back(whole);
      continue;
    }
    for (std::size_t begin = 0; begin <= argument.size();) {
      const std::size_t end = std::min(argument.find(',', begin), argument.size());
      appendName(names, argument.substr(begin, end - begin), selected);
      begin = end + 1;
    }
  }
  return selected;
}

}  // namespace loamshow

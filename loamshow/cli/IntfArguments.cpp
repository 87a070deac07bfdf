#include "loamshow/cli/IntfArguments.h"

#include <string_view>
#include <unordered_map>

#include "loamshow/text/InputError.h"
#include "loamshow/text/NearMiss.h"

namespace loamshow {

namespace {

using Nexo::IntfId;

constexpr std::string_view digits = "0123456789";

std::string lowerCase(std::string_view text) {
  return std::string(Mote::String(text).lowerCase().view());
}

/// The interfaces by long and short names.
class Names {
 public:
  explicit Names(const std::vector<IntfId>& interfaces) : interfaces_(interfaces) {
    byExactName_.reserve(interfaces.size());
    byName_.reserve(2 * interfaces.size());
    for (const IntfId intf : interfaces) {
      byExactName_.emplace(intf.stringValue().view(), intf);
      add(intf, intf.stringValue());
      add(intf, intf.shortName());
    }
  }

  /// The interface of a name; the empty id if there is none.
  IntfId find(std::string_view name) const {
    const auto exact = byExactName_.find(name);
    if (exact != byExactName_.end()) return exact->second;
    const auto found = byName_.find(lowerCase(name));
    if (found == byName_.end()) return {};
    const auto& [first, second] = found->second;
    if (second != IntfId()) {
      throw InputError("ambiguous interface " + quoted(name) + ": " + printable(first.stringValue()) +
                       " or " + printable(second.stringValue()));
    }
    return first;
  }

  [[noreturn]] void throwUnknown(std::string_view name) const {
    std::vector<std::string_view> names;
    for (const IntfId intf : interfaces_) {
      names.push_back(intf.stringValue());
      names.push_back(intf.shortName());
    }
    throw InputError("no such interface " + quoted(name) + nearMiss(name, names));
  }

 private:
  /// The first interface of a name, and a second one, if there is one.
  using Owners = std::pair<IntfId, IntfId>;

  void add(IntfId intf, std::string_view name) {
    const auto [at, isNew] = byName_.try_emplace(lowerCase(name), Owners{intf, IntfId()});
    if (!isNew && at->second.first != intf) at->second.second = intf;
  }

  const std::vector<IntfId>& interfaces_;
  std::unordered_map<std::string_view, IntfId> byExactName_;
  std::unordered_map<std::string, Owners> byName_;  // key: lower-case name
};

// Numbers in names may have any number of digits, so they are handled as text.

bool isNumber(std::string_view text) {
  const bool hasLeadingZero = text.size() > 1 && text.front() == '0';
  return !text.empty() && text.find_first_not_of(digits) == std::string_view::npos && !hasLeadingZero;
}

bool isLess(std::string_view left, std::string_view right) {
  return left.size() != right.size() ? left.size() < right.size() : left < right;
}

void increment(std::string& number) {
  std::size_t at = number.size();
  while (at > 0 && number[at - 1] == '9') number[--at] = '0';
  if (at == 0) {
    number.insert(number.begin(), '1');
  } else {
    ++number[at - 1];
  }
}

/// Whether a name that is not an interface's is meant as a range: after its last hyphen there is a number,
/// possibly of several parts, or nothing; or the part before a hyphen is an interface.
bool looksLikeRange(const Names& names, std::string_view name) {
  for (std::size_t at = name.find('-'); at != std::string_view::npos; at = name.find('-', at + 1)) {
    if (names.find(name.substr(0, at)) != IntfId()) return true;
  }
  const std::size_t hyphen = name.rfind('-');
  return hyphen != std::string_view::npos && hyphen > 0 &&
         name.find_first_not_of("0123456789/.", hyphen + 1) == std::string_view::npos;
}

/// Appends the members of a range: a name that ends with a number, "-", and the last number.
void appendRange(const Names& names, std::string_view range, std::vector<IntfId>& selected) {
  const std::size_t hyphen = range.rfind('-');
  const std::string_view left = range.substr(0, hyphen);
  const std::string prefix(left.substr(0, left.find_last_not_of(digits) + 1));
  std::string number(left.substr(prefix.size()));
  const std::string_view last = range.substr(hyphen + 1);
  if (!isNumber(number) || !isNumber(last)) {
    throw InputError("malformed range " + quoted(range) +
                     ": expected a name, \"-\" and the last number, without leading zeros, as in Et1/1-4");
  }
  if (isLess(last, number)) throw InputError("descending range " + quoted(range));
  for (;; increment(number)) {
    const IntfId intf = names.find(prefix + number);
    if (intf == IntfId()) {
      throw InputError("no such interface " + quoted(prefix + number) + " (in range " + quoted(range) + ")");
    }
    selected.push_back(intf);
    if (number == last) break;
  }
}

/// Appends the interfaces of a member of a list, or of a single argument.
void appendMember(const Names& names, std::string_view name, std::string_view list,
                  std::vector<IntfId>& selected) {
  const IntfId intf = names.find(name);
  if (intf != IntfId()) {
    selected.push_back(intf);
  } else if (name.empty() && !list.empty()) {
    throw InputError("empty name in list " + quoted(list) +
                     ": expected names with commas between, as in Et1/1,Po1");
  } else if (looksLikeRange(names, name)) {
    appendRange(names, name, selected);
  } else if (name.data() != list.data() && digits.find(name.front()) != std::string_view::npos) {
    throw InputError("incomplete name " + quoted(name) + " in list " + quoted(list) +
                     ": expected complete names or a range, as in Et1/1,Et1/2 or Et1/1-2");
  } else {
    names.throwUnknown(name);
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
      appendMember(names, argument.substr(begin, end - begin), argument, selected);
      begin = end + 1;
    }
  }
  return selected;
}

std::vector<std::string> completeInterface(const std::vector<IntfId>& interfaces, std::string_view typed) {
  const std::string prefix = lowerCase(typed);
  std::vector<std::string> names;
  for (const auto nameOf : {&IntfId::stringValue, &IntfId::shortName}) {
    for (const IntfId intf : interfaces) {
      const Mote::String& name = (intf.*nameOf)();
      if (lowerCase(name).starts_with(prefix)) names.emplace_back(name.view());
    }
    if (!names.empty()) return names;
  }
  const std::size_t list = typed.rfind(',') + 1;
  if (list > 0) names = completeInterface(interfaces, typed.substr(list));
  for (std::string& name : names) name.insert(0, typed.substr(0, list));
  return names;
}

}  // namespace loamshow

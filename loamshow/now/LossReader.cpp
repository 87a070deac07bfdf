#include "loamshow/now/LossReader.h"

#include <algorithm>
#include <array>
#include <bit>
#include <span>
#include <utility>

namespace loamshow {

namespace {

/// The path to an object of counts in a command's output: names of members. A name in braces matches any
/// member, whose name becomes a part of the row.
struct Rule {
  std::string_view command;
  LossKind kind;
  std::string_view path;
  std::string_view packets = "droppedPackets";
};

constexpr Rule rules[] = {
    {"ingress", LossKind::voq, "sources/{source}/interfaces/{interface}/trafficClasses/{queue}"},
    {"queues", LossKind::voq, "ingressVoqCounters/interfaces/{interface}/trafficClasses/{queue}"},
    {"queues", LossKind::egressUnicast,
     "egressQueueCounters/interfaces/{interface}/ucastQueues/trafficClasses/{queue}/dropPrecedences/DP0-3"},
    {"queues", LossKind::egressMulticast,
     "egressQueueCounters/interfaces/{interface}/mcastQueues/trafficClasses/{queue}/dropPrecedences/DP0-3"},
    {"cpu", LossKind::cpuVoq, "ingressVoqs/sources/{source}/cpuClasses/{interface}/ports/{queue}"},
    {"cpu", LossKind::cpuEgressUnicast, "egressQueues/sources/all/cpuPorts/{interface}/ucastQueues/queues/0"},
    {"cpu", LossKind::cpuEgressMulticast,
     "egressQueues/sources/all/cpuPorts/{interface}/mcastQueues/queues/0"},
    {"acl", LossKind::acl, "interfaces/{interface}", "mlagPackets"},
    {"mtu", LossKind::mtu, "destinations/{source}"},
};

constexpr std::size_t ingressRule = 0;
constexpr std::size_t lagRule = 1;

/// A step of a path.
struct Step {
  enum class Kind : U8 { end, literal, source, interface, queue };

  Kind kind = Kind::end;
  std::string_view name;

  bool matches(std::string_view key) const { return kind != Kind::literal || name == key; }
};

constexpr Step stepOf(std::string_view name) {
  if (name == "{source}") return {Step::Kind::source, name};
  if (name == "{interface}") return {Step::Kind::interface, name};
  if (name == "{queue}") return {Step::Kind::queue, name};
  return {Step::Kind::literal, name};
}

constexpr std::size_t longestPath = 8;

struct Path {
  std::array<Step, longestPath + 1> steps;  // and the end of the path
  bool hasSource = false;
  bool hasInterface = false;
  bool hasQueue = false;
};

/// Indexed by rule.
constexpr auto paths = [] {
  std::array<Path, std::size(rules)> split{};
  for (std::size_t rule = 0; rule < split.size(); ++rule) {
    Path& path = split[rule];
    std::string_view rest = rules[rule].path;
    for (std::size_t depth = 0; !rest.empty(); ++depth) {
      const std::size_t size = std::min(rest.find('/'), rest.size());
      const Step step = stepOf(rest.substr(0, size));
      path.steps[depth] = step;
      path.hasSource |= step.kind == Step::Kind::source;
      path.hasInterface |= step.kind == Step::Kind::interface;
      path.hasQueue |= step.kind == Step::Kind::queue;
      rest.remove_prefix(std::min(size + 1, rest.size()));
    }
  }
  return split;
}();

}  // namespace

void LossReader::read(std::string_view command, JsonReader& answer) {
  Rules active = 0;
  for (std::size_t rule = 0; rule < std::size(rules); ++rule) {
    if (rules[rule].command == command) active |= Rules{1} << rule;
  }
  answer_ = ++collection_;
  walk(answer.root(), active, 0);
  answer.finish();
}

void LossReader::walk(JsonValue object, Rules active, std::size_t depth) {
  for (JsonMembers in(object); in.next();) {
    Rules matching = 0;
    for (Rules rest = active; rest != 0; rest &= rest - 1) {
      const auto rule = static_cast<std::size_t>(std::countr_zero(rest));
      if (paths[rule].steps[depth].matches(in.key())) matching |= rest & -rest;
    }
    if (matching == 0) continue;
    // Rules with the same path so far have the same kind of name next.
    const auto first = static_cast<std::size_t>(std::countr_zero(matching));
    if (!note(in.key(), first, depth)) continue;
    const Step::Kind next = paths[first].steps[depth + 1].kind;
    if (next == Step::Kind::end) {
      addRow(in.value(), first);
    } else {
      if (next == Step::Kind::interface) ++collection_;
      walk(in.value(), matching, depth + 1);
    }
  }
}

/// Stores a name of the row; false if the member's contents are not wanted. A repeated name may lead to
/// repeated rows.
bool LossReader::note(std::string_view key, std::size_t rule, std::size_t depth) {
  const Step::Kind kind = paths[rule].steps[depth].kind;
  if (kind == Step::Kind::queue) {
    queue_ = key;
  } else if (kind == Step::Kind::source) {
    source_ = losses_.name(key);
    if (std::exchange(seen(source_).asSource, answer_) == answer_) losses_.expectScattered();
  } else if (kind == Step::Kind::interface) {
    interface_ = losses_.name(key);
    Seen& known = seen(interface_);
    if (std::exchange(known.asInterface, collection_) == collection_) losses_.expectScattered();
    if (rule == ingressRule) known.inIngress = true;
    return rule != lagRule || !known.inIngress;
  }
  return true;
}

LossReader::Seen& LossReader::seen(LossName name) {
  const auto number = static_cast<std::size_t>(name);
  if (number >= seen_.size()) seen_.resize(number + 1);
  return seen_[number];
}

void LossReader::addRow(JsonValue counts, std::size_t rule) {
  Loss loss{.kind = rules[rule].kind};
  const std::string_view names[] = {rules[rule].packets, "droppedBytes"};
  U64 numbers[] = {0, 0};
  counts.members(std::span(names, countsOctets(loss.kind) ? 2 : 1), numbers);
  loss.packets = numbers[0];
  loss.octets = numbers[1];
  if (loss.packets == 0 && loss.octets == 0) return;
  const Path& path = paths[rule];
  if (path.hasInterface) loss.interface = interface_;
  if (path.hasSource) loss.source = source_;
  if (path.hasQueue && !queue_.empty()) loss.queue = losses_.name(queue_);
  // The totals of policers have empty queue names.
  if (loss.kind == LossKind::cpuVoq && loss.queue == LossName::none) loss.kind = LossKind::cpuPolicer;
  losses_.add(loss);
}

}  // namespace loamshow

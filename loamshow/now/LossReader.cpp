#include "loamshow/now/LossReader.h"

#include <algorithm>
#include <array>
#include <bit>
#include <span>

namespace loamshow {

namespace {

/// Where an answer holds dropped packets: the names of the members on the way to an object of counts. A name
/// in braces stands for any member, and that member's name belongs to the row.
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

constexpr std::size_t longestPath = 8;
using Path = std::array<std::string_view, longestPath + 1>;  // an empty name behind the last one

constexpr auto paths = [] {
  std::array<Path, std::size(rules)> split{};
  for (std::size_t rule = 0; rule < split.size(); ++rule) {
    std::string_view rest = rules[rule].path;
    for (std::size_t depth = 0; !rest.empty(); ++depth) {
      const std::size_t size = std::min(rest.find('/'), rest.size());
      split[rule][depth] = rest.substr(0, size);
      rest.remove_prefix(std::min(size + 1, rest.size()));
    }
  }
  return split;
}();

bool matches(std::string_view step, std::string_view key) {
  return step == key || step.starts_with('{');
}

}  // namespace

void LossReader::read(std::string_view command, JsonReader& answer) {
  Rules active = 0;
  for (std::size_t rule = 0; rule < std::size(rules); ++rule) {
    if (rules[rule].command == command) active |= Rules{1} << rule;
  }
  sources_.clear();
  walk(answer.root(), active, 0);
  answer.finish();
}

void LossReader::walk(JsonValue object, Rules active, std::size_t depth) {
  for (JsonMembers in(object); in.next();) {
    Rules matching = 0;
    for (Rules rest = active; rest != 0; rest &= rest - 1) {
      const auto rule = static_cast<std::size_t>(std::countr_zero(rest));
      if (matches(paths[rule][depth], in.key())) matching |= rest & -rest;
    }
    if (matching == 0) continue;
    // Rules that have come the same way have the same name in braces next.
    const auto first = static_cast<std::size_t>(std::countr_zero(matching));
    if (!capture(paths[first][depth], first, in.key())) continue;
    if (paths[first][depth + 1].empty()) {
      addRow(in.value(), first);
    } else {
      if (paths[first][depth + 1] == "{interface}") ++walk_;
      walk(in.value(), matching, depth + 1);
    }
  }
}

/// Notes a name of the row; false when what is under it is not wanted. A name that is there again may bring
/// rows that are there already.
bool LossReader::capture(std::string_view step, std::size_t rule, std::string_view key) {
  if (step == "{queue}") {
    queue_ = key;
  } else if (step == "{source}") {
    source_ = losses_.name(key);
    if (!sources_.insert(source_).second) losses_.expectScattered();
  } else if (step == "{interface}") {
    interface_ = losses_.name(key);
    Seen& seen = interfaces_[interface_];
    if (seen.walk == walk_) losses_.expectScattered();
    seen.walk = walk_;
    if (rule == ingressRule) seen.inIngress = true;
    return rule != lagRule || !seen.inIngress;
  }
  return true;
}

void LossReader::addRow(JsonValue counts, std::size_t rule) {
  const auto has = [&](std::string_view name) {
    return rules[rule].path.find(name) != std::string_view::npos;
  };
  Loss loss{.kind = rules[rule].kind};
  const std::string_view names[] = {rules[rule].packets, "droppedBytes"};
  U64 numbers[] = {0, 0};
  counts.members(std::span(names, countsOctets(loss.kind) ? 2 : 1), numbers);
  loss.packets = numbers[0];
  loss.octets = numbers[1];
  if (loss.packets == 0 && loss.octets == 0) return;
  if (has("{interface}")) loss.interface = interface_;
  if (has("{source}")) loss.source = source_;
  if (has("{queue}") && !queue_.empty()) loss.queue = losses_.name(queue_);
  // The totals of policers are queues without a name.
  if (loss.kind == LossKind::cpuVoq && loss.queue == nullptr) loss.kind = LossKind::cpuPolicer;
  losses_.add(loss);
}

}  // namespace loamshow

// Finds counters that no command reads, and totals that are not the sum of their queues.

#include <array>

#include "loamshow/state/CheckParts.h"
#include "loamshow/text/NameIndex.h"

namespace loamshow {

namespace {

using Hardware::Loam::FapId;
using LoamCounters::CounterQuad;
using LoamCounters::RecordTables;
using Nexo::IntfId;

constexpr U8 anyEntry = 56;

/// The interfaces of the switch: those in any collection except the counters, and fabric multicast queues.
class KnownInterfaces {
 public:
  explicit KnownInterfaces(const SwitchState& state) : names_({}) {
    for (const IntfId intf : state.interfaces) add(intf);
    for (const auto& [intf, port] : state.status->intfIdToSppid) add(intf);
    for (const auto& [port, intf] : state.status->sppidToIntfId) add(intf);
    for (const auto& [place, intf] : state.status->portMapToIntfId) add(intf);
    for (const auto& [intf, member] : state.internalLagStatus->lagIngressVoqCounterTable) add(intf);
    const U32 mcastVoqs = state.fabricMcastVoqMax.value() - state.fabricMcastVoqMin.value();
    for (U32 i = 0; i <= mcastVoqs; ++i) add(IntfId("FabricMcast" + std::to_string(i)));
    std::vector<std::string_view> names;
    for (const IntfId intf : ascending(known_.keys())) names.emplace_back(intf.stringValue());
    names_ = NameIndex(std::move(names));
  }

  /// Empty for an interface of the switch.
  std::string problem(IntfId intf) {
    if (known_.contains(intf)) return "";
    const std::string name(intf.stringValue());
    if (name.empty()) return "no interface name";
    const std::string longName = longNameOf(name);
    const bool isShort = !longName.empty() && known_.contains(IntfId(longName));
    return "the switch has no interface " + name +
           (isShort ? "; did you mean " + longName + "?" : names_.nearMiss(name));
  }

 private:
  void add(IntfId intf) {
    if (intf != IntfId()) known_.set(intf, true);
  }

  Vane::HashMap<IntfId, bool> known_;
  NameIndex names_;
};

/// Why an interface's FAP does not use records of that mode; empty if it does, or if there is no FAP.
std::string modeProblem(const SwitchState& state, IntfId intf, bool queueMode) {
  const Hardware::Loam::SystemPhyPortId* port = state.status->intfIdToSppid.find(intf);
  const FapId fap = state.status->portMap(port == nullptr ? Hardware::Loam::nullPort : *port).fapId;
  const Hardware::Loam::FapRevMajor major = state.status->fapRevision.get(fap).major;
  if (fap.isNull() || LoamCounters::useEgqQueueMode(major) == queueMode) return "";
  return std::string("never shown: ") + fapText(state, fap) + " runs in " + (queueMode ? "port" : "queue") +
         " mode (major revision " + std::to_string(major) + ")";
}

/// Empty for a total that is the sum of its quads, modulo 2^64.
std::string totalProblem(const CounterQuad& total, const CounterQuad& sum) {
  const std::array<std::pair<U64 CounterQuad::*, const char*>, 4> counts = {
      {{&CounterQuad::enqueuedPackets, " enqueued packets"},
       {&CounterQuad::enqueuedBytes, " enqueued bytes"},
       {&CounterQuad::droppedPackets, " dropped packets"},
       {&CounterQuad::droppedBytes, " dropped bytes"}}};
  for (const auto& [count, text] : counts) {
    if (total.*count == sum.*count) continue;
    return std::to_string(total.*count) + text + ", but the sum of the queues is " +
           std::to_string(sum.*count);
  }
  return "";
}

template <class Record>
CounterQuad sumOfQuads(const Record& record) {
  CounterQuad sum{};
  for (std::size_t i = 0; i < Record::quads; ++i) sum += record.quad(4 * i);
  return sum;
}

class CountersCheck {
 public:
  CountersCheck(const SwitchState& state, Findings& findings)
      : state_(state), tables_(*state.counters), findings_(findings), known_(state) {}

  void ingress() {
    const std::vector<RecordTables::IngressKey> keys = tables_.ingressKeys();
    for (std::size_t i = 0; i < keys.size(); ++i) {
      const auto& [source, intf] = keys[i];
      const std::string unknownFap = fapProblem(state_, source.fapId);
      find(unknownFap, "ingress", i, "fapId");
      if (unknownFap.empty()) find(coreProblem(state_, source.fapId, source.coreId), "ingress", i, "coreId");
      find(known_.problem(intf), "ingress", i, "intfId");
      const LoamCounters::IngressTcCounter record =
          tables_.ingressTcCounter(source.fapId, source.coreId, intf);
      CounterQuad sum{};
      for (const CounterQuad& queue : record.queues()) sum += queue;
      find(totalProblem(record.total, sum), "ingress", i, "total");
    }
  }

  void egress() {
    for (const IntfId intf : ascending(tables_.egressKeys())) {
      intfRecord("egress", intf, modeProblem(state_, intf, false), tables_.egressCounter({intf, anyEntry}));
    }
    for (const IntfId intf : ascending(tables_.egressTmKeys())) {
      intfRecord("egressTm", intf, modeProblem(state_, intf, true),
                 tables_.egressTmCounter({intf, anyEntry}));
    }
    for (const IntfId intf : ascending(tables_.egressLagKeys())) {
      intfRecord("egressLag", intf, "", tables_.egressLagCounter({intf, anyEntry}));
    }
    for (const IntfId intf : ascending(tables_.egressAclKeys())) {
      find(known_.problem(intf), "egressAcl", intf.stringValue());
    }
    for (const FapId fap : ascending(tables_.egressMtuKeys())) {
      find(fapProblem(state_, fap), "egressMtu", fap.value());
    }
  }

 private:
  template <class Record>
  void intfRecord(std::string_view table, IntfId intf, const std::string& modeProblem, const Record& record) {
    find(known_.problem(intf), table, intf.stringValue());
    find(modeProblem, table, intf.stringValue());
    find(totalProblem(record.total, sumOfQuads(record)), table, intf.stringValue(), "total");
  }

  template <class... Steps>
  void find(const std::string& problem, const Steps&... steps) {
    if (!problem.empty()) findings_.push_back({member("counters", steps...), problem});
  }

  const SwitchState& state_;
  const RecordTables& tables_;
  Findings& findings_;
  KnownInterfaces known_;
};

}  // namespace

void checkCounters(const SwitchState& state, Findings& findings) {
  CountersCheck check(state, findings);
  check.ingress();
  check.egress();
}

}  // namespace loamshow

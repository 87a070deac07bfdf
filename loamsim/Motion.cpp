#include "loamsim/Motion.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace loamsim {

using namespace LoamCounters;

namespace {

constexpr double secondsToDouble = 3600;

EgressCounterKey keyOf(Nexo::IntfId intf) {
  constexpr U8 everyEntry = 56;
  return {intf, everyEntry};
}

}  // namespace

U64 Motion::Growth::take() {
  constexpr double most = 0x1p62;
  const double whole = std::floor(std::min(due, most));
  due -= whole;
  return static_cast<U64>(whole);
}

Motion::Growth Motion::growthOf(U64 count) const {
  return {static_cast<double>(count) / secondsToDouble * speed_};
}

Motion::Flow Motion::flowOf(U64 packets, U64 octets) const {
  if (packets == 0) return {};
  return {growthOf(packets), octets / packets,
          static_cast<double>(octets % packets) / static_cast<double>(packets)};
}

void Motion::addQueue(Queues& to, const CounterQuad& counts) const {
  to.queues.push_back({counts, flowOf(counts.enqueuedPackets, counts.enqueuedBytes),
                       flowOf(counts.droppedPackets, counts.droppedBytes)});
}

template <class Record>
void Motion::addEgress(std::vector<Egress<Record>>& to, Nexo::IntfId intf, const Record& record) const {
  Egress<Record>& egress = to.emplace_back();
  egress.total = record.total;
  egress.intf = intf;
  egress.record = record;
  for (U64 first = 0; first < record.counts.size(); first += 4) addQueue(egress, record.quad(first));
}

void Motion::addDebug(const loamshow::DebugFap& fap) {
  if (fap.manager == nullptr) return;
  for (const auto& [snapshot, count] : fap.manager->snapshots()) {
    Debug& debug = debug_.emplace_back(Debug{fap.name, snapshot, {}, {}});
    for (U32 i = 0; i < count; ++i) {
      debug.counters.push_back(fap.manager->counter(snapshot, i));
      debug.growths.push_back(growthOf(debug.counters.back().value));
    }
  }
}

Motion::Motion(const loamshow::SwitchState& state, double speed, U64 seed)
    : speed_(speed), offset_(state.switchTimeOffset), random_(seed) {
  const RecordTables& tables = *state.counters;
  for (const RecordTables::IngressKey& key : tables.ingressKeys()) {
    const auto record = tables.ingressTcCounter(key.source.fapId, key.source.coreId, key.intfId);
    Ingress& ingress = ingress_.emplace_back(Ingress{{record.total, {}}, key});
    for (const IngressCounter& queue : record.queues()) addQueue(ingress, queue);
  }
  for (const auto intf : tables.egressKeys()) addEgress(egress_, intf, tables.egressCounter(keyOf(intf)));
  for (const auto intf : tables.egressTmKeys()) {
    addEgress(egressTm_, intf, tables.egressTmCounter(keyOf(intf)));
  }
  for (const auto intf : tables.egressLagKeys()) {
    addEgress(egressLag_, intf, tables.egressLagCounter(keyOf(intf)));
  }
  const auto countOf = [&](Keel::MaybeU63 value) { return Count{value, growthOf(value.value())}; };
  for (const auto intf : tables.egressAclKeys()) {
    acl_.push_back({intf, countOf(tables.egressAclCounter(keyOf(intf)))});
  }
  for (const FapId fap : tables.egressMtuKeys()) {
    const EgressMtuCounter counter = tables.egressMtuEnqDropCounter(fap);
    mtu_.push_back({fap, countOf(counter.enqueuedPackets()), countOf(counter.droppedPackets()),
                    tables.egressMtuTotalCounter(fap)});
  }
  for (const loamshow::DebugFap& fap : state.debugFaps) addDebug(fap);
}

/// A factor from 0 to 2, on average 1.
double Motion::uneven() {
  return std::uniform_real_distribution<double>(0, 2)(random_);
}

/// Whether to release accumulated drops: every few seconds.
bool Motion::burst(double seconds) {
  constexpr double secondsBetween = 4;
  return uneven() * secondsBetween < 2 * seconds;
}

void Motion::move(Queues& queues, double seconds) {
  const auto octets = [](const Flow& flow, U64 packets) {
    return packets * flow.wholeOctets + static_cast<U64>(static_cast<double>(packets) * flow.restOctets);
  };
  for (Queue& queue : queues.queues) {
    Growth& enqueued = queue.enqueued.packets;
    Growth& dropped = queue.dropped.packets;
    enqueued.due += enqueued.perSecond * seconds * uneven();
    dropped.due += dropped.perSecond * seconds;
    CounterQuad step{};
    step.enqueuedPackets = enqueued.take();
    step.enqueuedBytes = octets(queue.enqueued, step.enqueuedPackets);
    if (dropped.due >= 1 && burst(seconds)) {
      step.droppedPackets = dropped.take();
      step.droppedBytes = octets(queue.dropped, step.droppedPackets);
    }
    queue.counts += step;
    queues.total += step;
  }
}

/// Moves a count and returns the step: 0 for a count without value.
U64 Motion::move(Count& count, U64 by) {
  constexpr U64 most = ~U64{0} >> 1U;
  if (count.value.null()) return 0;
  count.value = Keel::MaybeU63(static_cast<std::int64_t>((count.value.value() + by) & most));
  return by;
}

template <class Record>
const Record& Motion::moved(Egress<Record>& egress, double seconds) {
  move(egress, seconds);
  egress.record.total = egress.total;
  for (U64 i = 0; const Queue& queue : egress.queues) {
    egress.record.quadIs(typename Record::Index(4 * i++), queue.counts);
  }
  return egress.record;
}

void Motion::moveDebug(Debug& debug, double seconds, const CounterRegionWriter& writer) {
  const std::chrono::duration<double> utc = std::chrono::system_clock::now().time_since_epoch();
  const Vane::Seconds now(utc.count() - offset_.value());
  for (U32 i = 0; Brim::Counters::Counter & counter : debug.counters) {
    Growth& growth = debug.growths[i];
    growth.due += growth.perSecond * seconds * uneven();
    if (const U64 step = growth.take()) {
      counter.value += step;
      counter.lastUpdate = now;
    }
    writer.debugCounterIs(debug.fap, debug.snapshot, i++, counter);
  }
}

void Motion::advance(double seconds, const CounterRegionWriter& writer) {
  for (Ingress& ingress : ingress_) {
    move(ingress, seconds);
    IngressTcCounter record({ingress.total}, {});
    for (std::size_t i = 0; IngressCounter & queue : record.unsetQueues(ingress.queues.size())) {
      queue = {ingress.queues[i++].counts};
    }
    const auto& [source, intf] = ingress.key;
    writer.ingressIs(source.fapId, source.coreId, intf, record);
  }
  for (auto& egress : egress_) writer.egressIs(egress.intf, moved(egress, seconds));
  for (auto& egress : egressTm_) writer.egressTmIs(egress.intf, moved(egress, seconds));
  for (auto& egress : egressLag_) writer.egressLagIs(egress.intf, moved(egress, seconds));
  for (Acl& acl : acl_) {
    Growth& growth = acl.count.growth;
    growth.due += growth.perSecond * seconds * uneven();
    move(acl.count, growth.take());
    writer.egressAclIs(acl.intf, acl.count.value);
  }
  for (Mtu& mtu : mtu_) {
    Growth& enqueued = mtu.enqueued.growth;
    Growth& dropped = mtu.dropped.growth;
    enqueued.due += enqueued.perSecond * seconds * uneven();
    dropped.due += dropped.perSecond * seconds;
    U64 step = move(mtu.enqueued, enqueued.take());
    if (burst(seconds)) step += move(mtu.dropped, dropped.take());
    Count total{mtu.total, {}};
    move(total, step);
    mtu.total = total.value;
    writer.egressMtuIs(mtu.fap, {mtu.enqueued.value, mtu.dropped.value, mtu.total});
  }
  for (Debug& debug : debug_) moveDebug(debug, seconds, writer);
}

}  // namespace loamsim

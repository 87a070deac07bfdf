#include "loamshow/now/Difference.h"

#include <utility>

namespace loamshow {

namespace {

using Brim::Counters::Counter;
using Brim::Counters::ShmemManager;
using namespace LoamCounters;

U64 since(U64 now, U64 then) {
  return now < then ? now : now - then;
}

Keel::MaybeU63 since(Keel::MaybeU63 now, Keel::MaybeU63 then) {
  if (now.null() || then.null()) return now;
  return Keel::MaybeU63(static_cast<std::int64_t>(since(now.value(), then.value())));
}

CounterQuad since(const CounterQuad& now, const CounterQuad& then) {
  const bool cleared = now.enqueuedPackets < then.enqueuedPackets || now.enqueuedBytes < then.enqueuedBytes ||
                       now.droppedPackets < then.droppedPackets || now.droppedBytes < then.droppedBytes;
  if (cleared) return now;
  return {now.enqueuedPackets - then.enqueuedPackets, now.enqueuedBytes - then.enqueuedBytes,
          now.droppedPackets - then.droppedPackets, now.droppedBytes - then.droppedBytes};
}

/// Subtracts `then` from `now`.
void subtract(IngressTcCounter& now, const IngressTcCounter& then) {
  now.total = {since(now.total, then.total)};
  for (std::size_t i = 0; i < now.queues().size(); ++i) {
    const IngressCounterIndex queue(i);
    now.queueIs(queue, {since(now[queue], then[queue])});
  }
}

template <class Record>
Record subtracted(Record now, const Record& then) {
  using Index = typename Record::Index;
  now.total = since(now.total, then.total);
  for (U64 first = 0; first < now.counts.size(); first += 4) {
    now.quadIs(Index(first), since(now.quad(first), then.quad(first)));
  }
  return now;
}

/// The records of `now`, with the counts since `then`.
class DifferenceTables : public RecordTables {
 public:
  DifferenceTables(PtrConst now, PtrConst then) : now_(std::move(now)), then_(std::move(then)) {}

  IngressTcCounter ingressTcCounter(FapId fap, LocalCoreId core, Nexo::IntfId intf) const override {
    if (!isSum(fap, core)) return record(fap, core, intf);
    IngressTcCounter sum;
    for (const Source& source : now_->ingressSources(intf)) {
      const IngressTcCounter part = record(source.fapId, source.coreId, intf);
      sum.total += part.total;
      for (std::size_t i = 0; i < part.queues().size(); ++i) {
        const IngressCounterIndex queue(i);
        sum.queueIs(queue, {sum[queue] + part[queue]});
      }
    }
    return sum;
  }
  IngressCounter ingressCounter(const IngressCounterKey& key) const override {
    if (isSum(key.fapId, key.coreId)) {
      return ingressTcCounter(key.fapId, key.coreId, key.intfId)[IngressCounterIndex(key.trafficClass)];
    }
    return {since(now_->ingressCounter(key), then_->ingressCounter(key))};
  }
  EgressCounter egressCounter(const EgressCounterKey& key) const override {
    return subtracted(now_->egressCounter(key), then_->egressCounter(key));
  }
  EgressTmCounter egressTmCounter(const EgressCounterKey& key) const override {
    return subtracted(now_->egressTmCounter(key), then_->egressTmCounter(key));
  }
  EgressLagCounter egressLagCounter(const EgressCounterKey& key) const override {
    return subtracted(now_->egressLagCounter(key), then_->egressLagCounter(key));
  }
  Keel::MaybeU63 egressAclCounter(const EgressCounterKey& key) const override {
    return since(now_->egressAclCounter(key), then_->egressAclCounter(key));
  }
  EgressMtuCounter egressMtuEnqDropCounter(FapId fap) const override {
    const EgressMtuCounter now = now_->egressMtuEnqDropCounter(fap);
    const EgressMtuCounter then = then_->egressMtuEnqDropCounter(fap);
    return {since(now.enqueuedPackets(), then.enqueuedPackets()),
            since(now.droppedPackets(), then.droppedPackets()),
            since(now.totalCounter(), then.totalCounter())};
  }
  Keel::MaybeU63 egressMtuTotalCounter(FapId fap) const override {
    return since(now_->egressMtuTotalCounter(fap), then_->egressMtuTotalCounter(fap));
  }

  std::vector<IngressKey> ingressKeys() const override { return now_->ingressKeys(); }
  std::vector<Source> ingressSources(Nexo::IntfId intf) const override { return now_->ingressSources(intf); }
  std::vector<Nexo::IntfId> egressKeys() const override { return now_->egressKeys(); }
  std::vector<Nexo::IntfId> egressTmKeys() const override { return now_->egressTmKeys(); }
  std::vector<Nexo::IntfId> egressLagKeys() const override { return now_->egressLagKeys(); }
  std::vector<Nexo::IntfId> egressAclKeys() const override { return now_->egressAclKeys(); }
  std::vector<FapId> egressMtuKeys() const override { return now_->egressMtuKeys(); }

 private:
  static bool isSum(FapId fap, LocalCoreId core) {
    return fap.isNull() && core == Hardware::Loam::aggregateCore;
  }
  IngressTcCounter record(FapId fap, LocalCoreId core, Nexo::IntfId intf) const {
    IngressTcCounter counter = now_->ingressTcCounter(fap, core, intf);
    subtract(counter, then_->ingressTcCounter(fap, core, intf));
    return counter;
  }

  const PtrConst now_;
  const PtrConst then_;
};

/// The debug counters of `now`, with the values since `then`.
class DifferenceManager : public ShmemManager {
 public:
  DifferenceManager(PtrConst now, PtrConst then) : now_(std::move(now)), then_(std::move(then)) {}

  Counter counter(const Mote::String& snapshot, U32 index) const override {
    Counter counter = now_->counter(snapshot, index);
    counter.value = since(counter.value, then_->counter(snapshot, index).value);
    return counter;
  }
  std::vector<Snapshot> snapshots() const override { return now_->snapshots(); }

 private:
  const PtrConst now_;
  const PtrConst then_;
};

}  // namespace

SwitchState since(SwitchState now, const SwitchState& then) {
  now.counters = Mote::make<DifferenceTables>(now.counters, then.counters);
  Vane::HashMap<Mote::String, ShmemManager::PtrConst> managers;
  for (const DebugFap& fap : then.debugFaps) managers.set(fap.name, fap.manager);
  for (DebugFap& fap : now.debugFaps) {
    const ShmemManager::PtrConst earlier = managers.get(fap.name);
    if (fap.manager == nullptr || earlier == nullptr) continue;
    fap.manager = Mote::make<DifferenceManager>(fap.manager, earlier);
  }
  return now;
}

}  // namespace loamshow

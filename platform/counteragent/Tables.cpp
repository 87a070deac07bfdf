#include "platform/counteragent/Tables.h"

#include <algorithm>

namespace LoamCounters {

namespace {

U32 sourceNumber(FapId fap, LocalCoreId core) {
  return (U32{fap.value()} << 16U) | core.value();
}

/// Where a source is among the places, or where it belongs.
template <class Places>
auto placeOf(Places& places, U32 number) {
  return std::lower_bound(places.begin(), places.end(), number,
                          [](const auto& place, U32 wanted) { return place.source < wanted; });
}

}  // namespace

bool MemoryCounterTables::ingressIs(FapId fap, LocalCoreId core, Nexo::IntfId intf,
                                    const IngressTcCounter& counter) {
  Sources& sources = ingress_[intf];
  const U32 number = sourceNumber(fap, core);
  const auto at = placeOf(sources.places, number);
  if (at != sources.places.end() && at->source == number) return false;
  const std::span<const IngressCounter> queues = counter.queues();
  sources.places.insert(
      at, {number, static_cast<U32>(sources.counters.size()), static_cast<U32>(1 + queues.size())});
  sources.counters.push_back(counter.total);
  sources.counters.insert(sources.counters.end(), queues.begin(), queues.end());

  sources.sum.resize(std::max(sources.sum.size(), 1 + queues.size()));
  sources.sum[0] += counter.total;
  for (std::size_t i = 0; i < queues.size(); ++i) sources.sum[1 + i] += queues[i];
  return true;
}

std::span<const IngressCounter> MemoryCounterTables::findIngress(FapId fap, LocalCoreId core,
                                                                 Nexo::IntfId intf) const {
  const Sources* sources = ingress_.find(intf);
  if (sources == nullptr) return {};
  if (fap.isNull() && core == Hardware::Loam::aggregateCore) return sources->sum;
  const U32 number = sourceNumber(fap, core);
  const auto at = placeOf(sources->places, number);
  if (at == sources->places.end() || at->source != number) return {};
  return {&sources->counters[at->begin], at->size};
}

IngressTcCounter MemoryCounterTables::ingressTcCounter(FapId fap, LocalCoreId core, Nexo::IntfId intf) const {
  const std::span<const IngressCounter> found = findIngress(fap, core, intf);
  return found.empty() ? IngressTcCounter() : IngressTcCounter(found.front(), found.subspan(1));
}

IngressCounter MemoryCounterTables::ingressCounter(const IngressCounterKey& key) const {
  const std::span<const IngressCounter> found = findIngress(key.fapId, key.coreId, key.intfId);
  const std::size_t queue = std::size_t{1} + IngressCounterIndex(key.trafficClass).value();
  return queue < found.size() ? found[queue] : IngressCounter();
}

EgressCounter MemoryCounterTables::egressCounter(const EgressCounterKey& key) const {
  return egress.get(key.intfId);
}

EgressTmCounter MemoryCounterTables::egressTmCounter(const EgressCounterKey& key) const {
  return egressTm.get(key.intfId);
}

EgressLagCounter MemoryCounterTables::egressLagCounter(const EgressCounterKey& key) const {
  return egressLag.get(key.intfId);
}

Keel::MaybeU63 MemoryCounterTables::egressAclCounter(const EgressCounterKey& key) const {
  return egressAcl.get(key.intfId);
}

EgressMtuCounter MemoryCounterTables::egressMtuEnqDropCounter(FapId fap) const {
  return egressMtu.get(fap);
}

Keel::MaybeU63 MemoryCounterTables::egressMtuTotalCounter(FapId fap) const {
  return egressMtuTotal.get(fap);
}

}  // namespace LoamCounters

#include "platform/counteragent/Tables.h"

#include <algorithm>
#include <utility>

namespace LoamCounters {

namespace {

/// The position of a source among the places, or where to insert it.
template <class Places>
auto placeOf(Places& places, RecordTables::Source source) {
  return std::lower_bound(places.begin(), places.end(), source,
                          [](const auto& place, auto wanted) { return place.source < wanted; });
}

}  // namespace

bool MemoryCounterTables::ingressIs(FapId fap, LocalCoreId core, Nexo::IntfId intf,
                                    const IngressTcCounter& counter) {
  Sources& sources = ingress_[intf];
  const Source source{fap, core};
  const auto at = placeOf(sources.places, source);
  if (at != sources.places.end() && at->source == source) return false;
  const std::span<const IngressCounter> queues = counter.queues();
  IngressCounter* counters = take(1 + queues.size());
  counters[0] = counter.total;
  std::copy(queues.begin(), queues.end(), counters + 1);
  sources.places.insert(at, {source, static_cast<U32>(1 + queues.size()), counters});

  sources.sum.resize(std::max(sources.sum.size(), 1 + queues.size()));
  sources.sum[0] += counter.total;
  for (std::size_t i = 0; i < queues.size(); ++i) sources.sum[1 + i] += queues[i];
  order_.push_back({source, intf});
  return true;
}

IngressCounter* MemoryCounterTables::take(std::size_t count) {
  if (count > blockSize - used_) {
    blocks_.push_back(std::make_unique_for_overwrite<IngressCounter[]>(blockSize));
    used_ = 0;
  }
  return &blocks_.back()[std::exchange(used_, used_ + count)];
}

std::vector<RecordTables::Source> MemoryCounterTables::ingressSources(Nexo::IntfId intf) const {
  std::vector<Source> found;
  const Sources* sources = ingress_.find(intf);
  if (sources == nullptr) return found;
  for (const Sources::Place& place : sources->places) found.push_back(place.source);
  return found;
}

std::span<const IngressCounter> MemoryCounterTables::findIngress(FapId fap, LocalCoreId core,
                                                                 Nexo::IntfId intf) const {
  const Sources* sources = ingress_.find(intf);
  if (sources == nullptr) return {};
  if (fap.isNull() && core == Hardware::Loam::aggregateCore) return sources->sum;
  const Source source{fap, core};
  const auto at = placeOf(sources->places, source);
  if (at == sources->places.end() || at->source != source) return {};
  return {at->counters, at->size};
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

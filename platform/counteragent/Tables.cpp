#include "platform/counteragent/Tables.h"

#include <algorithm>

namespace LoamCounters {

namespace {

U32 sourceKey(FapId fap, LocalCoreId core) {
  return (U32{fap.value()} << 16U) | core.value();
}

}  // namespace

bool MemoryCounterTables::ingressIs(FapId fap, LocalCoreId core, Nexo::IntfId intf,
                                    const IngressTcCounter& counter) {
  Sources& sources = ingress_[intf];
  const U32 key = sourceKey(fap, core);
  const auto at = std::lower_bound(sources.byCore.begin(), sources.byCore.end(), key,
                                   [](const auto& source, U32 wanted) { return source.first < wanted; });
  if (at != sources.byCore.end() && at->first == key) return false;
  sources.byCore.emplace(at, key, counter);
  sources.sum += counter;
  return true;
}

const IngressTcCounter* MemoryCounterTables::findIngress(FapId fap, LocalCoreId core,
                                                         Nexo::IntfId intf) const {
  const auto found = ingress_.find(intf);
  if (found == ingress_.end()) return nullptr;
  const Sources& sources = found->second;
  if (fap.isNull() && core == Hardware::Loam::aggregateCore) return &sources.sum;
  const U32 key = sourceKey(fap, core);
  const auto at = std::lower_bound(sources.byCore.begin(), sources.byCore.end(), key,
                                   [](const auto& source, U32 wanted) { return source.first < wanted; });
  return at != sources.byCore.end() && at->first == key ? &at->second : nullptr;
}

IngressTcCounter MemoryCounterTables::ingressTcCounter(FapId fap, LocalCoreId core, Nexo::IntfId intf) const {
  const IngressTcCounter* record = findIngress(fap, core, intf);
  return record == nullptr ? IngressTcCounter() : *record;
}

IngressCounter MemoryCounterTables::ingressCounter(const IngressCounterKey& key) const {
  const IngressTcCounter* record = findIngress(key.fapId, key.coreId, key.intfId);
  return record == nullptr ? IngressCounter() : (*record)[IngressCounterIndex(key.trafficClass)];
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

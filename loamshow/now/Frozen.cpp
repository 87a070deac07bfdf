#include "loamshow/now/Frozen.h"

namespace loamshow {

namespace {

using Brim::Counters::MemoryShmemManager;
using Brim::Counters::ShmemManager;
using LoamCounters::EgressCounterKey;
using LoamCounters::MemoryCounterTables;
using LoamCounters::RecordTables;

RecordTables::Ptr copied(const RecordTables& tables) {
  const auto key = [](Nexo::IntfId intf) { return EgressCounterKey{intf, 0}; };
  auto copy = Mote::make<MemoryCounterTables>();
  for (const auto& [source, intf] : tables.ingressKeys()) {
    copy->ingressIs(source.fapId, source.coreId, intf,
                    tables.ingressTcCounter(source.fapId, source.coreId, intf));
  }
  for (const auto intf : tables.egressKeys()) copy->egress.set(intf, tables.egressCounter(key(intf)));
  for (const auto intf : tables.egressTmKeys()) copy->egressTm.set(intf, tables.egressTmCounter(key(intf)));
  for (const auto intf : tables.egressLagKeys()) {
    copy->egressLag.set(intf, tables.egressLagCounter(key(intf)));
  }
  for (const auto intf : tables.egressAclKeys()) {
    copy->egressAcl.set(intf, tables.egressAclCounter(key(intf)));
  }
  for (const auto fap : tables.egressMtuKeys()) {
    copy->egressMtu.set(fap, tables.egressMtuEnqDropCounter(fap));
    copy->egressMtuTotal.set(fap, tables.egressMtuTotalCounter(fap));
  }
  return copy;
}

ShmemManager::PtrConst copied(const ShmemManager& manager) {
  auto copy = Mote::make<MemoryShmemManager>();
  for (const auto& [name, size] : manager.snapshots()) {
    std::vector<Brim::Counters::Counter> counters;
    counters.reserve(size);
    for (U32 i = 0; i < size; ++i) counters.push_back(manager.counter(name, i));
    copy->values.set(name, std::move(counters));
  }
  return copy;
}

}  // namespace

SwitchState frozen(SwitchState state) {
  if (!state.isLive) return state;
  state.isLive = false;
  state.counters = copied(*state.counters);
  for (DebugFap& fap : state.debugFaps) {
    if (fap.manager != nullptr) fap.manager = copied(*fap.manager);
  }
  return state;
}

}  // namespace loamshow

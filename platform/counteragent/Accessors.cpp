#include "platform/counteragent/Accessors.h"

namespace LoamCounters {

namespace {

Mote::Ptr<const CounterTables> mountedTables(const Cortex::EntityManager::Ptr& entityManager) {
  if (entityManager == nullptr) return nullptr;
  return entityManager->mount<CounterTables>(CounterTables::path);
}

}  // namespace

CounterEngineAccessor::CounterEngineAccessor(const Hardware::Loam::Status::PtrConst&,
                                             const LoamTm::TmMapping::PtrConst&,
                                             const Hardware::Loam::InternalLagClientStatus::PtrConst&,
                                             const TrafficClassMapping::PtrConst&,
                                             const Cortex::EntityManager::Ptr& entityManager, bool)
    : tables_(mountedTables(entityManager)) {
}

IngressTcCounter CounterEngineAccessor::ingressTcCounter(FapId fap, LocalCoreId core,
                                                         Nexo::IntfId intf) const {
  return tables_ == nullptr ? IngressTcCounter() : tables_->ingressTcCounter(fap, core, intf);
}

IngressCounter CounterEngineAccessor::ingressCounter(const IngressCounterKey& key) const {
  return tables_ == nullptr ? IngressCounter() : tables_->ingressCounter(key);
}

EgressCounter CounterEngineAccessor::egressCounter(const EgressCounterKey& key) const {
  return tables_ == nullptr ? EgressCounter() : tables_->egressCounter(key);
}

EgressTmCounter CounterEngineAccessor::egressTmCounter(const EgressCounterKey& key) const {
  return tables_ == nullptr ? EgressTmCounter() : tables_->egressTmCounter(key);
}

EgressLagCounter CounterEngineAccessor::egressLagCounter(const EgressCounterKey& key) const {
  return tables_ == nullptr ? EgressLagCounter() : tables_->egressLagCounter(key);
}

EgressMtuCounter CounterEngineAccessor::egressMtuEnqDropCounter(FapId fap) const {
  return tables_ == nullptr ? EgressMtuCounter() : tables_->egressMtuEnqDropCounter(fap);
}

EgressAclCountersAccessor::EgressAclCountersAccessor(const Hardware::Loam::Status::PtrConst&,
                                                     const Hardware::Loam::CounterEngineStatus::PtrConst&,
                                                     const Cortex::EntityManager::Ptr& entityManager, bool)
    : tables_(mountedTables(entityManager)) {
}

Keel::MaybeU63 EgressAclCountersAccessor::egressAclCounter(const EgressCounterKey& key) {
  return tables_ == nullptr ? Keel::MaybeU63() : tables_->egressAclCounter(key);
}

Keel::MaybeU63 EgressAclCountersAccessor::egressMtuTotalCounter(FapId fap) {
  return tables_ == nullptr ? Keel::MaybeU63() : tables_->egressMtuTotalCounter(fap);
}

}  // namespace LoamCounters

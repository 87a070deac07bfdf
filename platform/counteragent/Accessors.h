#pragma once

#include <string_view>

#include "platform/Cortex.h"
#include "platform/LoamTm.h"
#include "platform/counteragent/Records.h"
#include "platform/counteragent/Tables.h"

namespace LoamCounters {

class TrafficClassMapping : public Mote::Node {
 public:
  using PtrConst = Mote::Ptr<const TrafficClassMapping>;
  static constexpr std::string_view vaneName = "LoamCounters::TrafficClassMapping";
};

/// Reads the counters that the counter engine keeps. Takes the tables mounted when it is made.
class CounterEngineAccessor : public Mote::Node {
 public:
  using Ptr = Mote::Ptr<CounterEngineAccessor>;
  using PtrConst = Mote::Ptr<const CounterEngineAccessor>;
  static constexpr std::string_view vaneName = "LoamCounters::CounterEngineAccessor";

  /// This platform's tables answer everything; of the arguments, only `entityManager` is used.
  CounterEngineAccessor(const Hardware::Loam::Status::PtrConst& loamStatus,
                        const LoamTm::TmMapping::PtrConst& tmMapping,
                        const Hardware::Loam::InternalLagClientStatus::PtrConst& internalLagStatus,
                        const TrafficClassMapping::PtrConst& trafficClassMapping,
                        const Cortex::EntityManager::Ptr& entityManager, bool skeinMountMode);

  IngressTcCounter ingressTcCounter(FapId fap, LocalCoreId core, Nexo::IntfId intf) const;
  IngressCounter ingressCounter(const IngressCounterKey& key) const;
  EgressCounter egressCounter(const EgressCounterKey& key) const;
  EgressTmCounter egressTmCounter(const EgressCounterKey& key) const;
  EgressLagCounter egressLagCounter(const EgressCounterKey& key) const;
  /// Never fills the record's total.
  EgressMtuCounter egressMtuEnqDropCounter(FapId fap) const;

 private:
  const Mote::Ptr<const CounterTables> tables_;
};

/// Reads the egress ACL counters and the egress MTU totals. Takes the tables mounted when it is made.
class EgressAclCountersAccessor : public Mote::Node {
 public:
  using Ptr = Mote::Ptr<EgressAclCountersAccessor>;
  static constexpr std::string_view vaneName = "LoamCounters::EgressAclCountersAccessor";

  /// Likewise.
  EgressAclCountersAccessor(const Hardware::Loam::Status::PtrConst& loamStatus,
                            const Hardware::Loam::CounterEngineStatus::PtrConst& counterEngineStatus,
                            const Cortex::EntityManager::Ptr& entityManager, bool isMountModeWriter);

  Keel::MaybeU63 egressAclCounter(const EgressCounterKey& key);
  Keel::MaybeU63 egressMtuTotalCounter(FapId fap);

 private:
  const Mote::Ptr<const CounterTables> tables_;
};

}  // namespace LoamCounters

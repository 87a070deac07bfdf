#pragma once

// The accessors through which the show commands read counters.

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

/// Reads the counters of the counter engine, from the tables that are mounted when it is created.
class CounterEngineAccessor : public Mote::Node {
 public:
  using Ptr = Mote::Ptr<CounterEngineAccessor>;
  using PtrConst = Mote::Ptr<const CounterEngineAccessor>;
  static constexpr std::string_view vaneName = "LoamCounters::CounterEngineAccessor";

  /// The tables of this platform have all counters, so only `entityManager` is used.
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
  /// The record's total never has a value.
  EgressMtuCounter egressMtuEnqDropCounter(FapId fap) const;

 private:
  const Mote::Ptr<const CounterTables> tables_;
};

/// Reads the egress ACL counters and the egress MTU totals, from the tables that are mounted when it is
/// created.
class EgressAclCountersAccessor : public Mote::Node {
 public:
  using Ptr = Mote::Ptr<EgressAclCountersAccessor>;
  static constexpr std::string_view vaneName = "LoamCounters::EgressAclCountersAccessor";

  /// Only `entityManager` is used.
  EgressAclCountersAccessor(const Hardware::Loam::Status::PtrConst& loamStatus,
                            const Hardware::Loam::CounterEngineStatus::PtrConst& counterEngineStatus,
                            const Cortex::EntityManager::Ptr& entityManager, bool isMountModeWriter);

  Keel::MaybeU63 egressAclCounter(const EgressCounterKey& key);
  Keel::MaybeU63 egressMtuTotalCounter(FapId fap);

 private:
  const Mote::Ptr<const CounterTables> tables_;
};

}  // namespace LoamCounters

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

/// What was handed to an accessor when it was made; equal when the objects are the same ones.
struct CounterEngineSources {
  Hardware::Loam::Status::PtrConst loamStatus;
  LoamTm::TmMapping::PtrConst tmMapping;
  Hardware::Loam::InternalLagClientStatus::PtrConst internalLagStatus;
  TrafficClassMapping::PtrConst trafficClassMapping;
  Cortex::EntityManager::Ptr entityManager;
  bool skeinMountMode = false;

  bool operator==(const CounterEngineSources&) const = default;
};

/// Reads the counters that the counter engine keeps. Takes the tables mounted when it is made.
class CounterEngineAccessor : public Mote::Node {
 public:
  using Ptr = Mote::Ptr<CounterEngineAccessor>;
  using PtrConst = Mote::Ptr<const CounterEngineAccessor>;
  static constexpr std::string_view vaneName = "LoamCounters::CounterEngineAccessor";

  explicit CounterEngineAccessor(CounterEngineSources sources);
  const CounterEngineSources& sources() const noexcept { return sources_; }

  IngressTcCounter ingressTcCounter(FapId fap, LocalCoreId core, Nexo::IntfId intf) const;
  IngressCounter ingressCounter(const IngressCounterKey& key) const;
  EgressCounter egressCounter(const EgressCounterKey& key) const;
  EgressTmCounter egressTmCounter(const EgressCounterKey& key) const;
  EgressLagCounter egressLagCounter(const EgressCounterKey& key) const;
  /// Never fills the record's total.
  EgressMtuCounter egressMtuEnqDropCounter(FapId fap) const;

 private:
  CounterEngineSources sources_;
  Mote::Ptr<const CounterTables> tables_;
};

struct EgressAclSources {
  Hardware::Loam::Status::PtrConst loamStatus;
  Hardware::Loam::CounterEngineStatus::PtrConst counterEngineStatus;
  Cortex::EntityManager::Ptr entityManager;
  bool isMountModeWriter = false;

  bool operator==(const EgressAclSources&) const = default;
};

/// Reads the egress ACL counters and the egress MTU totals. Takes the tables mounted when it is made.
class EgressAclCountersAccessor : public Mote::Node {
 public:
  using Ptr = Mote::Ptr<EgressAclCountersAccessor>;
  static constexpr std::string_view vaneName = "LoamCounters::EgressAclCountersAccessor";

  explicit EgressAclCountersAccessor(EgressAclSources sources);
  const EgressAclSources& sources() const noexcept { return sources_; }

  Keel::MaybeU63 egressAclCounter(const EgressCounterKey& key);
  Keel::MaybeU63 egressMtuTotalCounter(FapId fap);

 private:
  EgressAclSources sources_;
  Mote::Ptr<const CounterTables> tables_;
};

}  // namespace LoamCounters

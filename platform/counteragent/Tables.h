#pragma once

#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/counteragent/Records.h"

namespace LoamCounters {

/// A source of counters, mounted in the entity manager under `path`: memory, shared memory, or a test's own.
/// Reads may come from several threads at once. What is not there reads as zeros, or as a count without
/// value.
class CounterTables : public Mote::Node {
 public:
  static constexpr const char* path = "LoamCounters/counterTables";

  /// The null FAP and the aggregate core ask for the sum over all sources.
  virtual IngressTcCounter ingressTcCounter(FapId fap, LocalCoreId core, Nexo::IntfId intf) const = 0;
  virtual IngressCounter ingressCounter(const IngressCounterKey& key) const = 0;
  virtual EgressCounter egressCounter(const EgressCounterKey& key) const = 0;
  virtual EgressTmCounter egressTmCounter(const EgressCounterKey& key) const = 0;
  virtual EgressLagCounter egressLagCounter(const EgressCounterKey& key) const = 0;
  virtual Keel::MaybeU63 egressAclCounter(const EgressCounterKey& key) const = 0;
  virtual EgressMtuCounter egressMtuEnqDropCounter(FapId fap) const = 0;
  virtual Keel::MaybeU63 egressMtuTotalCounter(FapId fap) const = 0;
};

/// Counter tables in this process's memory. Whoever fills them is their only writer, before they are mounted.
class MemoryCounterTables : public CounterTables {
 public:
  /// False, and nothing stored, when there is an entry of that FAP, core and interface already.
  bool ingressIs(FapId fap, LocalCoreId core, Nexo::IntfId intf, const IngressTcCounter& counter);

  Vane::HashMap<Nexo::IntfId, EgressCounter> egress;
  Vane::HashMap<Nexo::IntfId, EgressTmCounter> egressTm;
  Vane::HashMap<Nexo::IntfId, EgressLagCounter> egressLag;
  Vane::HashMap<Nexo::IntfId, Keel::MaybeU63> egressAcl;
  Vane::HashMap<FapId, EgressMtuCounter> egressMtu;
  Vane::HashMap<FapId, Keel::MaybeU63> egressMtuTotal;

  IngressTcCounter ingressTcCounter(FapId fap, LocalCoreId core, Nexo::IntfId intf) const override;
  IngressCounter ingressCounter(const IngressCounterKey& key) const override;
  EgressCounter egressCounter(const EgressCounterKey& key) const override;
  EgressTmCounter egressTmCounter(const EgressCounterKey& key) const override;
  EgressLagCounter egressLagCounter(const EgressCounterKey& key) const override;
  Keel::MaybeU63 egressAclCounter(const EgressCounterKey& key) const override;
  EgressMtuCounter egressMtuEnqDropCounter(FapId fap) const override;
  Keel::MaybeU63 egressMtuTotalCounter(FapId fap) const override;

 private:
  /// One interface's counters by source, and their sum, kept ready since commands ask for it first.
  struct Sources {
    std::vector<std::pair<U32, IngressTcCounter>> byCore;  // in the order of their source keys
    IngressTcCounter sum;
  };

  const IngressTcCounter* findIngress(FapId fap, LocalCoreId core, Nexo::IntfId intf) const;

  std::unordered_map<Nexo::IntfId, Sources, Vane::Hash> ingress_;
};

}  // namespace LoamCounters

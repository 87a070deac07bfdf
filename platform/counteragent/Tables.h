#pragma once

#include <span>
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
  /// The counters of one interface, those of a source side by side: the total, then the queues as far as they
  /// are stored. The sources stand in the order of their numbers.
  struct Sources {
    struct Place {
      U32 source;
      U32 begin;
      U32 size;
    };
    std::vector<Place> places;
    std::vector<IngressCounter> counters;
    std::vector<IngressCounter> sum;  // of all sources, kept ready since commands ask for it first
  };

  /// A total and its queues; empty when there is no entry.
  std::span<const IngressCounter> findIngress(FapId fap, LocalCoreId core, Nexo::IntfId intf) const;

  Vane::DenseMap<Nexo::IntfId, Sources, Vane::Hash> ingress_;
};

}  // namespace LoamCounters

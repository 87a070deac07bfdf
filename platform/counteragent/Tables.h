#pragma once

// Counter tables: the interface between the accessors and a source of counters, and tables in memory.

#include <memory>
#include <span>
#include <vector>

#include "platform/counteragent/Records.h"

namespace LoamCounters {

/// A source of counters, mounted in the entity manager under `path`: memory, shared memory, or a test's.
/// Several threads may read at the same time. Missing records read as zeros, or as counts without value.
/// docs/porting.md specifies each method.
class CounterTables : public Mote::Node {
 public:
  static constexpr const char* path = "LoamCounters/counterTables";

  /// For the null FAP and the aggregate core, the sum over all sources.
  virtual IngressTcCounter ingressTcCounter(FapId fap, LocalCoreId core, Nexo::IntfId intf) const = 0;
  virtual IngressCounter ingressCounter(const IngressCounterKey& key) const = 0;
  virtual EgressCounter egressCounter(const EgressCounterKey& key) const = 0;
  virtual EgressTmCounter egressTmCounter(const EgressCounterKey& key) const = 0;
  virtual EgressLagCounter egressLagCounter(const EgressCounterKey& key) const = 0;
  virtual Keel::MaybeU63 egressAclCounter(const EgressCounterKey& key) const = 0;
  virtual EgressMtuCounter egressMtuEnqDropCounter(FapId fap) const = 0;
  virtual Keel::MaybeU63 egressMtuTotalCounter(FapId fap) const = 0;
};

/// Tables that can list their records, so that a switch can be captured, checked and subtracted.
class RecordTables : public CounterTables {
 public:
  using Ptr = Mote::Ptr<RecordTables>;
  using PtrConst = Mote::Ptr<const RecordTables>;

  /// A FAP core. An interface has one ingress record per source.
  struct Source {
    FapId fapId;
    LocalCoreId coreId;

    auto operator<=>(const Source&) const = default;
  };
  struct IngressKey {
    Source source;
    Nexo::IntfId intfId;
  };

  /// The keys of the ingress records, in the order in which the tables were filled.
  virtual std::vector<IngressKey> ingressKeys() const = 0;
  /// The sources of one interface's ingress records, ascending.
  virtual std::vector<Source> ingressSources(Nexo::IntfId intf) const = 0;
  // The keys of the other records, in any order. An interface or FAP whose count has no value is listed.
  virtual std::vector<Nexo::IntfId> egressKeys() const = 0;
  virtual std::vector<Nexo::IntfId> egressTmKeys() const = 0;
  virtual std::vector<Nexo::IntfId> egressLagKeys() const = 0;
  virtual std::vector<Nexo::IntfId> egressAclKeys() const = 0;
  virtual std::vector<FapId> egressMtuKeys() const = 0;
};

/// Counter tables in the memory of this process. They are filled before they are mounted, and constant
/// afterwards.
class MemoryCounterTables : public RecordTables {
 public:
  /// False, without a change, if there is already an entry of that FAP, core and interface.
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

  std::vector<IngressKey> ingressKeys() const override { return order_; }
  std::vector<Source> ingressSources(Nexo::IntfId intf) const override;
  std::vector<Nexo::IntfId> egressKeys() const override { return egress.keys(); }
  std::vector<Nexo::IntfId> egressTmKeys() const override { return egressTm.keys(); }
  std::vector<Nexo::IntfId> egressLagKeys() const override { return egressLag.keys(); }
  std::vector<Nexo::IntfId> egressAclKeys() const override { return egressAcl.keys(); }
  std::vector<FapId> egressMtuKeys() const override { return egressMtu.keys(); }

 private:
  static constexpr std::size_t blockSize = 2048;

  /// The records of one interface, in the order of their sources.
  struct Sources {
    struct Place {
      Source source;
      U32 size;
      const IngressCounter* counters;  // the total, then the stored queues
    };
    std::vector<Place> places;
    std::vector<IngressCounter> sum;  // over all sources; commands read it first
  };

  /// Room for `count` counters, which never move. Allocates blocks for many records, to keep them close
  /// together.
  IngressCounter* take(std::size_t count);

  /// A total and its queues; empty if there is no entry.
  std::span<const IngressCounter> findIngress(FapId fap, LocalCoreId core, Nexo::IntfId intf) const;

  Vane::DenseMap<Nexo::IntfId, Sources, Vane::Hash> ingress_;
  std::vector<IngressKey> order_;
  std::vector<std::unique_ptr<IngressCounter[]>> blocks_;
  std::size_t used_ = blockSize;  // of the last block
};

}  // namespace LoamCounters

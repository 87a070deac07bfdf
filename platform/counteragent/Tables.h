#pragma once

#include <memory>
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

/// Tables that list the records they hold, so that a switch can be written out, checked and subtracted.
class RecordTables : public CounterTables {
 public:
  using Ptr = Mote::Ptr<RecordTables>;
  using PtrConst = Mote::Ptr<const RecordTables>;

  /// Where an interface's ingress counters are kept: one record per source.
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

/// Counter tables in this process's memory. Whoever fills them is their only writer, before they are mounted.
class MemoryCounterTables : public RecordTables {
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
      const IngressCounter* counters;  // the total, then the queues as far as they are stored
    };
    std::vector<Place> places;
    std::vector<IngressCounter> sum;  // of all sources, kept ready since commands ask for it first
  };

  /// Room for that many counters, which never move: blocks of many records leave no gaps in memory.
  IngressCounter* take(std::size_t count);

  /// A total and its queues; empty when there is no entry.
  std::span<const IngressCounter> findIngress(FapId fap, LocalCoreId core, Nexo::IntfId intf) const;

  Vane::DenseMap<Nexo::IntfId, Sources, Vane::Hash> ingress_;
  std::vector<IngressKey> order_;
  std::vector<std::unique_ptr<IngressCounter[]>> blocks_;
  std::size_t used_ = blockSize;  // of the last block
};

}  // namespace LoamCounters

#pragma once

// Makes the counters of a mapped region available as the tables and managers that commands read. Reading
// takes no lock; a record is read consistently, or RecordException is thrown after a bounded wait.

#include <chrono>

#include "platform/brim/ShmemManager.h"
#include "platform/counteragent/Region.h"

namespace LoamCounters {

/// A partly written record, whose writer died. The text names the record.
class RecordException : public Vane::Exception {
 public:
  using Exception::Exception;
};

/// How long a reader waits for a record that is being written, by default.
constexpr std::chrono::milliseconds longestRecordWait{800};

/// Reads throw RecordException, and RegionException if the file was truncated.
class RegionTables : public RecordTables {
 public:
  explicit RegionTables(Region::PtrConst region, std::chrono::milliseconds wait = longestRecordWait)
      : region_(std::move(region)), wait_(wait) {}

  IngressTcCounter ingressTcCounter(FapId fap, LocalCoreId core, Nexo::IntfId intf) const override;
  IngressCounter ingressCounter(const IngressCounterKey& key) const override;
  EgressCounter egressCounter(const EgressCounterKey& key) const override;
  EgressTmCounter egressTmCounter(const EgressCounterKey& key) const override;
  EgressLagCounter egressLagCounter(const EgressCounterKey& key) const override;
  Keel::MaybeU63 egressAclCounter(const EgressCounterKey& key) const override;
  EgressMtuCounter egressMtuEnqDropCounter(FapId fap) const override;
  Keel::MaybeU63 egressMtuTotalCounter(FapId fap) const override;

  std::vector<IngressKey> ingressKeys() const override;
  std::vector<Source> ingressSources(Nexo::IntfId intf) const override;
  std::vector<Nexo::IntfId> egressKeys() const override { return keysWith(&RegionInterface::egress); }
  std::vector<Nexo::IntfId> egressTmKeys() const override { return keysWith(&RegionInterface::egressTm); }
  std::vector<Nexo::IntfId> egressLagKeys() const override { return keysWith(&RegionInterface::egressLag); }
  std::vector<Nexo::IntfId> egressAclKeys() const override { return keysWith(&RegionInterface::egressAcl); }
  std::vector<FapId> egressMtuKeys() const override;

 private:
  IngressTcCounter ingressRecord(const RegionSource& source, Nexo::IntfId intf) const;
  IngressCounter queueOf(const RegionSource& source, Nexo::IntfId intf, U64 queue) const;
  EgressMtuCounter egressMtu(FapId fap) const;
  template <class Record>
  Record egressRecord(U64 offset, U64 words, const char* kind, Nexo::IntfId intf) const;
  std::vector<Nexo::IntfId> keysWith(U64 RegionInterface::*record) const;

  Region::PtrConst region_;
  std::chrono::milliseconds wait_;
};

/// The debug counters of one FAP. Reads throw the exceptions of RegionTables.
class RegionShmemManager : public Brim::Counters::ShmemManager {
 public:
  RegionShmemManager(Region::PtrConst region, const Region::Manager& manager,
                     std::chrono::milliseconds wait = longestRecordWait);

  Brim::Counters::Counter counter(const Mote::String& snapshot, U32 index) const override;
  std::vector<Snapshot> snapshots() const override;

 private:
  Region::PtrConst region_;
  std::chrono::milliseconds wait_;
  Mote::String fap_;
  Vane::HashMap<Mote::String, RegionPart> records_;  // by snapshot
};

}  // namespace LoamCounters

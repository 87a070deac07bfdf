#pragma once

// The writer of a counter region, for the process that controls the chips.

#include <string>
#include <vector>

#include "platform/counteragent/Region.h"
#include "platform/counteragent/RegionImage.h"

namespace LoamCounters {

/// Creates the region of a switch and updates its records. Updates neither wait nor allocate. Several threads
/// may update different records at the same time, but not the same record. The file is kept when the writer
/// ends, and readers continue with its contents.
class CounterRegionWriter {
 public:
  /// Creates the region and atomically replaces the file `path` by it. `description` is the JSON text of a
  /// state file without counts: without `counters`, and without the snapshots of `debug`. `counters` and
  /// `debug` determine the records and their first values; the set of records, and the number of queues in
  /// each ingress record, cannot change later. Throws std::system_error if the file cannot be created,
  /// RegionException for names that are not UTF-8.
  CounterRegionWriter(const std::string& path, std::string_view description, const RecordTables& counters,
                      const std::vector<DebugCounters>& debug = {});

  /// Gives a sign of life. Call it at least once a second, even if no count changes.
  void alive() const noexcept;

  // Each sets one record, or returns false if the region has no such record.

  /// Returns false also if the record has fewer queues than `counter`; queues missing in `counter` become
  /// zero.
  bool ingressIs(FapId fap, LocalCoreId core, Nexo::IntfId intf, const IngressTcCounter& counter) const;
  bool egressIs(Nexo::IntfId intf, const EgressCounter& counter) const;
  bool egressTmIs(Nexo::IntfId intf, const EgressTmCounter& counter) const;
  bool egressLagIs(Nexo::IntfId intf, const EgressLagCounter& counter) const;
  bool egressAclIs(Nexo::IntfId intf, Keel::MaybeU63 count) const;
  bool egressMtuIs(FapId fap, const EgressMtuCounter& counter) const;
  bool debugCounterIs(const Mote::String& fap, const Mote::String& snapshot, U32 index,
                      const Brim::Counters::Counter& counter) const;

  /// Removes the file, unless another one has replaced it.
  void remove() const noexcept;

 private:
  void fill(const RecordTables& counters, const std::vector<DebugCounters>& debug) const;

  std::string path_;
  Region::PtrConst region_;
  Vane::HashMap<Mote::String, Vane::HashMap<Mote::String, RegionPart>> snapshots_;  // by FAP
  U64 device_ = 0;                                                                  // of the file
  U64 inode_ = 0;
};

}  // namespace LoamCounters

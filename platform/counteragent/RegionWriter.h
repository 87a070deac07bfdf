#pragma once

// The writing side of a counter region, for the process that has the chips.

#include <string>
#include <vector>

#include "platform/counteragent/Region.h"
#include "platform/counteragent/RegionImage.h"

namespace LoamCounters {

/// Makes a region of a switch and updates its records. Updates never wait and never allocate. They may come
/// from several threads, as long as no two update the same record at once; readers notice neither that nor
/// each other. The file stays when the writer ends, and readers go on with what it holds.
class CounterRegionWriter {
 public:
  /// Makes the region and puts it in the place of the file `path`, at once and whole. `description` is the
  /// JSON text of a state file without counts: without `counters`, and without the snapshots of `debug`.
  /// `counters` and `debug` give the records and their first values; the set of records, and how many queues
  /// each ingress record has, stay as they are. Raises std::system_error when the file cannot be made,
  /// RegionException for names that are not UTF-8.
  CounterRegionWriter(const std::string& path, std::string_view description, const RecordTables& counters,
                      const std::vector<DebugCounters>& debug = {});

  /// Says that the writer is there. To be called at least every second, whatever counts.
  void alive() const noexcept;

  // Each sets one record. False, and nothing set, when the region has no such record.

  /// False also when the record has fewer queues than `counter`; queues that `counter` lacks are zero.
  bool ingressIs(FapId fap, LocalCoreId core, Nexo::IntfId intf, const IngressTcCounter& counter) const;
  bool egressIs(Nexo::IntfId intf, const EgressCounter& counter) const;
  bool egressTmIs(Nexo::IntfId intf, const EgressTmCounter& counter) const;
  bool egressLagIs(Nexo::IntfId intf, const EgressLagCounter& counter) const;
  bool egressAclIs(Nexo::IntfId intf, Keel::MaybeU63 count) const;
  bool egressMtuIs(FapId fap, const EgressMtuCounter& counter) const;
  bool debugCounterIs(const Mote::String& fap, const Mote::String& snapshot, U32 index,
                      const Brim::Counters::Counter& counter) const;

  /// Removes the file, unless another one has taken its place.
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

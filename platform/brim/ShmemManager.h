#pragma once

// Values of debug counters, and their readers.

#include <string_view>
#include <vector>

#include "platform/Mote.h"
#include "platform/Vane.h"

namespace Brim::Counters {

/// The record of one counter value. Times are the switch's; 0 means never.
struct Counter {
  U64 value = 0;
  Vane::Seconds firstUpdate = {};
  Vane::Seconds lastUpdate = {};
  Vane::Seconds lastDiscontinuity = {};
  bool overflow = false;
};

/// Reads the debug counters of one FAP. Takes no lock.
class ShmemManager : public Mote::Node {
 public:
  using PtrConst = Mote::Ptr<const ShmemManager>;
  static constexpr std::string_view vaneName = "Brim::Counters::ShmemManager";

  struct Snapshot {
    Mote::String name;
    U32 counters = 0;  // number of counters
  };

  /// The record at an index of a snapshot; an all-zero record if there is none.
  virtual Counter counter(const Mote::String& snapshot, U32 index) const = 0;
  /// The snapshots of the FAP, in any order.
  virtual std::vector<Snapshot> snapshots() const = 0;
};

/// Debug counters in the memory of this process, which are filled before they are read.
class MemoryShmemManager : public ShmemManager {
 public:
  Vane::HashMap<Mote::String, std::vector<Counter>> values;  // by snapshot

  Counter counter(const Mote::String& snapshot, U32 index) const override;
  std::vector<Snapshot> snapshots() const override;
};

}  // namespace Brim::Counters

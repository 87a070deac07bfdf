#pragma once

#include <span>
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

// A region of shared memory that holds counter snapshots, in the machine's byte order, every part aligned to
// 8 bytes:
//
//   RegionHeader          at 0
//   SnapshotHeader        one per snapshot, directly behind it
//   names and records     where the snapshot headers say, in any order
//
// Sizes, names and places stand when the region is made and do not change; records change at any time.

struct RegionHeader {
  static constexpr U64 expectedMagic = 0x53525443'4d414f4c;  // "LOAMTCRS" as bytes
  static constexpr U32 expectedVersion = 1;

  U64 magic;
  U32 version;
  U32 snapshots;  // how many
  U64 size;       // of the whole region, in bytes
};

struct SnapshotHeader {
  U64 name;     // where it begins, in bytes from the region's start
  U64 records;  // likewise
  U32 nameSize;
  U32 count;  // of records
};

/// A record in the region. Each field is written and read whole; a record as a whole may be read between two
/// writes.
struct RegionRecord {
  U64 value;
  U64 firstUpdate;  // the bits of a double, as are the other times
  U64 lastUpdate;
  U64 lastDiscontinuity;
  U64 overflow;  // 0 or 1
};

/// Reads the counters of one FAP from a region that another process may be writing. Takes no lock.
class ShmemManager : public Mote::Node {
 public:
  using PtrConst = Mote::Ptr<const ShmemManager>;
  static constexpr std::string_view vaneName = "Brim::Counters::ShmemManager";

  /// Attaches the region behind a file descriptor, which stays the caller's and may be closed afterwards.
  /// Raises InternalException, which names `name`, for a region that is truncated or none. The file must not
  /// shrink while it is attached.
  ShmemManager(int fd, const Mote::String& name);
  ~ShmemManager() override;

  /// The record at an index of a snapshot; an all-zero record when there is none.
  virtual Counter counter(const Mote::String& snapshot, U32 index) const;

 private:
  void* region_ = nullptr;
  std::size_t size_ = 0;
  Vane::HashMap<Mote::String, std::span<RegionRecord>> snapshots_;
};

/// Makes a region and writes its records.
class ShmemWriter {
 public:
  struct Snapshot {
    Mote::String name;
    std::vector<Counter> counters;
  };

  /// Lays the snapshots out in a new region of anonymous memory. Raises std::system_error when there is none
  /// to get.
  explicit ShmemWriter(const std::vector<Snapshot>& snapshots);
  ShmemWriter(const ShmemWriter&) = delete;
  ShmemWriter& operator=(const ShmemWriter&) = delete;
  ~ShmemWriter();

  /// The region, for ShmemManager. Belongs to the writer.
  int fd() const noexcept { return fd_; }
  /// Writes one record of the snapshot at that position.
  void counterIs(std::size_t snapshot, std::size_t index, const Counter& counter);

 private:
  int fd_ = -1;
  void* region_ = nullptr;
  std::size_t size_ = 0;
  std::vector<std::span<RegionRecord>> records_;
};

}  // namespace Brim::Counters

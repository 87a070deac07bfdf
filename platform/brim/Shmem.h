#pragma once

#include <span>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/Mote.h"
#include "platform/Vane.h"
#include "platform/brim/ShmemManager.h"

namespace Brim::Counters {

// A region of shared memory that holds the counter snapshots of FAPs, in the machine's byte order, every part
// aligned to 8 bytes:
//
//   RegionHeader          at 0
//   SnapshotHeader        one per snapshot of a FAP, directly behind it
//   names and records     where the snapshot headers say, in any order
//
// Sizes, names and places stand when the region is made and do not change; records change at any time.

struct RegionHeader {
  static constexpr U64 expectedMagic = 0x53525443'4d414f4c;  // "LOAMTCRS" as bytes
  static constexpr U32 expectedVersion = 2;

  U64 magic;
  U32 version;
  U32 snapshots;  // how many
  U64 size;       // of the whole region, in bytes
};

/// Places are in bytes from the region's start.
struct SnapshotHeader {
  U64 fap;  // the FAP's name
  U64 name;
  U64 records;
  U32 fapSize;
  U32 nameSize;
  U32 count;  // of records
  U32 unused;
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

/// An attached region, which another process may be writing. Its layout is checked once, when it is attached.
class ShmemRegion : public Mote::Node {
 public:
  using PtrConst = Mote::Ptr<const ShmemRegion>;
  using Snapshots = Vane::HashMap<Mote::String, std::span<RegionRecord>>;

  /// Attaches the region behind a file descriptor, which stays the caller's and may be closed afterwards.
  /// Raises InternalException, which names `name`, for a region that is truncated or none. The file must not
  /// shrink while it is attached.
  ShmemRegion(int fd, const Mote::String& name);
  ~ShmemRegion() override;

  /// A FAP's snapshots by name, null when there are none. Lives as long as the region.
  const Snapshots* snapshots(const Mote::String& fap) const;

 private:
  void* region_ = nullptr;
  std::size_t size_ = 0;
  std::unordered_map<Mote::String, Snapshots, Vane::Hash> faps_;
};

/// Reads the counters of one FAP from a region. Takes no lock.
class RegionShmemManager : public ShmemManager {
 public:
  RegionShmemManager(ShmemRegion::PtrConst region, const Mote::String& fap);

  Counter counter(const Mote::String& snapshot, U32 index) const override;
  std::vector<Snapshot> snapshots() const override;

 private:
  ShmemRegion::PtrConst region_;
  const ShmemRegion::Snapshots* snapshots_;
};

/// Makes a region and writes its records.
class ShmemWriter {
 public:
  struct Snapshot {
    Mote::String fap;
    Mote::String name;
    std::vector<Counter> counters;
  };

  /// Lays the snapshots out in a new region of anonymous memory. Raises std::system_error when there is none
  /// to get.
  explicit ShmemWriter(const std::vector<Snapshot>& snapshots);
  ShmemWriter(const ShmemWriter&) = delete;
  ShmemWriter& operator=(const ShmemWriter&) = delete;
  ~ShmemWriter();

  /// The region, for ShmemRegion. Belongs to the writer.
  int fd() const noexcept { return fd_; }
  /// Writes one record of the snapshot at that position.
  void counterIs(std::size_t snapshot, std::size_t index, const Counter& counter);

 private:
  int fd_;
  void* region_ = nullptr;
  std::size_t size_;
  std::vector<std::span<RegionRecord>> records_;
};

}  // namespace Brim::Counters

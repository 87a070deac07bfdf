#pragma once

// A mapped counter region: checked when it is mapped, then looked up by key.

#include <string>
#include <vector>

#include "platform/Vane.h"
#include "platform/counteragent/RegionLayout.h"
#include "platform/counteragent/RegionMapping.h"
#include "platform/counteragent/Tables.h"

namespace LoamCounters {

/// A region that cannot be used: none, truncated, damaged, of another version or byte order. The text names
/// the region.
class RegionException : public Vane::Exception {
 public:
  using Exception::Exception;
};

/// The directory of a mapped region. Every offset, count and name is checked by the constructor. Look-ups
/// read the directory again, so that they need no memory of their own, and check again what they read:
/// whoever can write the file may not keep to the layout.
class Region : public Mote::Node {
 public:
  using Ptr = Mote::Ptr<Region>;
  using PtrConst = Mote::Ptr<const Region>;

  /// Maps the file behind a descriptor, which stays the caller's and may be closed afterwards. Raises
  /// RegionException, which calls the region `name`.
  Region(int fd, const Mote::String& name, RegionAccess access = RegionAccess::read);

  const Mote::String& name() const noexcept { return name_; }
  /// The JSON text of the switch without its counts.
  std::string description() const;
  /// When the writer last gave a sign of life: nanoseconds since 1970 UTC.
  U64 heartbeat() const noexcept;
  void heartbeatIs(U64 nanoseconds) const noexcept;
  /// Raises RegionException when the file has been truncated or overwritten since it was mapped.
  void requireIntact() const;
  bool hasHole() const noexcept { return mapping_.hasHole(); }

  /// The interfaces that have records, each with its number.
  const auto& interfaces() const noexcept { return intfs_; }
  /// The entry of an interface; no records when there is none.
  RegionInterface interface(Nexo::IntfId intf) const;
  RegionInterface interfaceAt(U32 number) const;
  /// One of an interface's ingress records, by ascending source.
  RegionSource source(const RegionInterface& intf, U64 number) const;
  /// That of a FAP core; record 0 when there is none.
  RegionSource sourceOf(const RegionInterface& intf, RecordTables::Source source) const;
  U64 faps() const noexcept { return faps_.count; }
  RegionFap fap(U64 number) const;
  RegionFap fapOf(FapId fap) const;

  struct Snapshot {
    Mote::String name;
    RegionPart records;
  };
  /// The debug counters of a FAP.
  struct Manager {
    Mote::String fap;
    std::vector<Snapshot> snapshots;
  };
  std::vector<Manager> managers() const;

  /// The sequence number of a record, before that many words of content.
  U64* record(U64 offset, U64 words) const;
  /// The same, null for offset 0.
  U64* recordIfAny(U64 offset, U64 words) const { return offset == 0 ? nullptr : record(offset, words); }

 private:
  [[noreturn]] void damaged(const char* what) const;
  /// Copies a structure, so that what is checked is what is used.
  template <class T>
  T load(U64 offset) const;
  template <class T>
  T element(RegionPart part, U64 number) const;
  void requireArray(RegionPart part, U64 stride, const char* what) const;
  std::string text(RegionPart part) const;
  Mote::String nameIn(RegionPart part) const;
  std::vector<Snapshot> snapshotsOf(const RegionManager& manager) const;
  void checkInterfaces();
  void checkInterface(const RegionInterface& intf);
  void checkFaps() const;
  void checkManagers();
  /// Counts the bytes of parts that no two owners share. A region in which they add up to more than it holds
  /// is damaged, and would take more time and memory than its size allows.
  void spend(U64 bytes);

  Mote::String name_;
  RegionMapping mapping_;
  RegionPart description_{};
  RegionPart interfaces_{};
  RegionPart faps_{};
  RegionPart managers_{};
  U64 spent_ = 0;
  Vane::DenseMap<Nexo::IntfId, U32, Vane::Hash> intfs_;
};

}  // namespace LoamCounters

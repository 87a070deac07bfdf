#pragma once

// A mapped counter region: validated when it is mapped, with look-ups by key.

#include <string>
#include <string_view>
#include <vector>

#include "platform/Vane.h"
#include "platform/counteragent/RegionLayout.h"
#include "platform/counteragent/RegionMapping.h"
#include "platform/counteragent/Tables.h"

namespace LoamCounters {

/// A region that cannot be used: not a region, truncated, damaged, or with another version or byte order. The
/// text names the region.
class RegionException : public Vane::Exception {
 public:
  using Exception::Exception;
};

/// The directory of a mapped region. Every offset, count and name is checked by the constructor. Look-ups
/// keep the place of each interface and of its sources, read everything else again, and validate what they
/// read, because another process may overwrite the file.
class Region : public Mote::Node {
 public:
  using Ptr = Mote::Ptr<Region>;
  using PtrConst = Mote::Ptr<const Region>;

  /// Maps the file of a descriptor, which the caller may close afterwards. Throws RegionException, whose text
  /// begins with `name`.
  Region(int fd, const Mote::String& name, RegionAccess access = RegionAccess::read);

  const Mote::String& name() const noexcept { return name_; }
  /// The switch without its counters, as JSON text in the mapped memory: copy it before parsing.
  std::string_view description() const noexcept;
  /// When the writer last gave a sign of life: nanoseconds since 1970 UTC.
  U64 heartbeat() const noexcept;
  void heartbeatIs(U64 nanoseconds) const noexcept;
  /// Throws RegionException if the file has been truncated or overwritten since it was mapped.
  void requireIntact() const;
  bool hasHole() const noexcept { return mapping_.hasHole(); }

  /// Where an interface is in the directory, and its sources.
  struct Place {
    U32 number;
    U32 sources;
    U64 firstSource;  // offset
  };
  /// The interfaces that have records.
  const auto& interfaces() const noexcept { return intfs_; }
  /// The entry of an interface; one without records if there is none.
  RegionInterface interface(Nexo::IntfId intf) const;
  RegionInterface interfaceAt(const Place& place) const;
  /// The ingress records of an interface, in ascending order of source.
  RegionPart sources(Nexo::IntfId intf) const;
  RegionSource source(RegionPart sources, U64 number) const;
  /// The ingress record of a FAP core; its `record` is 0 if there is none.
  RegionSource sourceOf(RegionPart sources, RecordTables::Source wanted) const;
  U64 faps() const noexcept { return faps_.count; }
  RegionFap fap(U64 number) const;
  RegionFap fapOf(FapId wanted) const;

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

  /// The sequence number of a record, which is followed by `words` words of content.
  U64* record(U64 offset, U64 words) const;
  /// The same; null for offset 0.
  U64* recordIfAny(U64 offset, U64 words) const { return offset == 0 ? nullptr : record(offset, words); }

 private:
  [[noreturn]] void damaged(const char* what) const;
  /// Copies a structure, so that the checked value is the one used.
  template <class T>
  T load(U64 offset) const;
  /// The same without a check, of an array that has been checked.
  template <class T>
  T copy(U64 offset) const noexcept;
  template <class T>
  T element(RegionPart part, U64 number) const;
  RegionSource checked(const RegionSource& source) const;
  void requireArray(RegionPart part, U64 stride, const char* what) const;
  void requireText(RegionPart part) const;
  std::string nameIn(RegionPart part) const;
  std::vector<Snapshot> snapshotsOf(const RegionManager& manager) const;
  void checkInterfaces();
  void checkInterface(const RegionInterface& intf);
  void checkFaps() const;
  void checkManagers();
  /// Adds up the sizes of parts that must not overlap. A region in which the sum exceeds the size of the file
  /// is damaged; it could cost more time and memory than its size justifies.
  void spend(U64 bytes);

  Mote::String name_;
  RegionMapping mapping_;
  RegionPart description_{};
  RegionPart interfaces_{};
  RegionPart faps_{};
  RegionPart managers_{};
  U64 spent_ = 0;
  Vane::DenseMap<Nexo::IntfId, Place, Vane::Hash> intfs_;
};

}  // namespace LoamCounters

#include "platform/brim/Shmem.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <bit>
#include <cerrno>
#include <cstring>
#include <system_error>

namespace Brim::Counters {

namespace {

static_assert(std::atomic_ref<U64>::is_always_lock_free);

constexpr U64 alignment = 8;

U64 load(U64& field) {
  return std::atomic_ref(field).load(std::memory_order_relaxed);
}

void store(U64& field, U64 value) {
  std::atomic_ref(field).store(value, std::memory_order_relaxed);
}

Vane::Seconds loadTime(U64& field) {
  return Vane::Seconds(std::bit_cast<double>(load(field)));
}

void storeTime(U64& field, Vane::Seconds time) {
  store(field, std::bit_cast<U64>(time.value()));
}

void storeRecord(RegionRecord& record, const Counter& counter) {
  store(record.value, counter.value);
  storeTime(record.firstUpdate, counter.firstUpdate);
  storeTime(record.lastUpdate, counter.lastUpdate);
  storeTime(record.lastDiscontinuity, counter.lastDiscontinuity);
  store(record.overflow, counter.overflow ? 1 : 0);
}

/// Whether `size` bytes from `begin` on lie within a region.
bool within(U64 begin, U64 size, U64 regionSize) {
  return begin <= regionSize && size <= regionSize - begin;
}

template <class T>
T* at(void* region, U64 offset) {
  return static_cast<T*>(static_cast<void*>(static_cast<char*>(region) + offset));
}

U64 aligned(U64 size) {
  return (size + alignment - 1) / alignment * alignment;
}

[[noreturn]] void throwSystemError(const char* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

}  // namespace

ShmemRegion::ShmemRegion(int fd, const Mote::String& name) {
  const auto fail = [&](const char* problem) {
    if (region_ != nullptr) ::munmap(region_, size_);
    throw Vane::InternalException("counter region " + name + ": " + problem);
  };
  struct stat status {};
  if (::fstat(fd, &status) != 0) fail("not a file");
  size_ = static_cast<std::size_t>(status.st_size);
  if (size_ < sizeof(RegionHeader)) fail("truncated");
  void* mapped = ::mmap(nullptr, size_, PROT_READ, MAP_SHARED, fd, 0);
  if (mapped == MAP_FAILED) fail("cannot be mapped");
  region_ = mapped;

  // Nothing of the region is trusted twice: what was checked is kept here, for whoever writes the region may
  // not keep to the rules.
  const RegionHeader header = *at<RegionHeader>(region_, 0);
  if (header.magic != RegionHeader::expectedMagic) fail("not a counter region");
  if (header.version != RegionHeader::expectedVersion) fail("of an unknown version");
  if (header.size > size_ ||
      !within(sizeof(RegionHeader), U64{header.snapshots} * sizeof(SnapshotHeader), header.size)) {
    fail("truncated");
  }
  for (U64 i = 0; i < header.snapshots; ++i) {
    const SnapshotHeader snapshot =
        *at<SnapshotHeader>(region_, sizeof(RegionHeader) + i * sizeof(SnapshotHeader));
    const bool fits = within(snapshot.fap, snapshot.fapSize, header.size) &&
                      within(snapshot.name, snapshot.nameSize, header.size) &&
                      within(snapshot.records, U64{snapshot.count} * sizeof(RegionRecord), header.size) &&
                      snapshot.records % alignment == 0;
    if (!fits) fail("a snapshot outside of it");
    const auto text = [&](U64 begin, U32 size) { return std::string_view(at<char>(region_, begin), size); };
    faps_[text(snapshot.fap, snapshot.fapSize)].set(
        text(snapshot.name, snapshot.nameSize),
        {at<RegionRecord>(region_, snapshot.records), snapshot.count});
  }
}

ShmemRegion::~ShmemRegion() {
  ::munmap(region_, size_);
}

const ShmemRegion::Snapshots* ShmemRegion::snapshots(const Mote::String& fap) const {
  const auto found = faps_.find(fap);
  return found == faps_.end() ? nullptr : &found->second;
}

RegionShmemManager::RegionShmemManager(ShmemRegion::PtrConst region, const Mote::String& fap)
    : region_(std::move(region)), snapshots_(region_->snapshots(fap)) {
}

Counter RegionShmemManager::counter(const Mote::String& snapshot, U32 index) const {
  const std::span<RegionRecord>* records = snapshots_ == nullptr ? nullptr : snapshots_->find(snapshot);
  if (records == nullptr || index >= records->size()) return {};
  RegionRecord& record = (*records)[index];
  return {load(record.value), loadTime(record.firstUpdate), loadTime(record.lastUpdate),
          loadTime(record.lastDiscontinuity), load(record.overflow) != 0};
}

std::vector<ShmemManager::Snapshot> RegionShmemManager::snapshots() const {
  std::vector<Snapshot> snapshots;
  if (snapshots_ == nullptr) return snapshots;
  for (const auto& [name, records] : *snapshots_) {
    snapshots.push_back({name, static_cast<U32>(records.size())});
  }
  return snapshots;
}

ShmemWriter::ShmemWriter(const std::vector<Snapshot>& snapshots)
    : fd_(::memfd_create("loam-counters", MFD_CLOEXEC | MFD_ALLOW_SEALING)),
      size_(sizeof(RegionHeader) + snapshots.size() * sizeof(SnapshotHeader)) {
  for (const Snapshot& snapshot : snapshots) {
    size_ += aligned(snapshot.fap.size()) + aligned(snapshot.name.size()) +
             snapshot.counters.size() * sizeof(RegionRecord);
  }
  if (fd_ < 0) throwSystemError("cannot make a counter region");
  // A region that cannot shrink cannot fault under a reader.
  if (::ftruncate(fd_, static_cast<off_t>(size_)) != 0 || ::fcntl(fd_, F_ADD_SEALS, F_SEAL_SHRINK) != 0 ||
      (region_ = ::mmap(nullptr, size_, PROT_READ | PROT_WRITE, MAP_SHARED, fd_, 0)) == MAP_FAILED) {
    const int error = errno;
    ::close(fd_);
    errno = error;
    throwSystemError("cannot make a counter region");
  }

  U64 free = sizeof(RegionHeader) + snapshots.size() * sizeof(SnapshotHeader);
  const auto lay = [&](const Mote::String& text) {
    const U64 begin = free;
    std::memcpy(at<char>(region_, begin), text.c_str(), text.size());
    free += aligned(text.size());
    return begin;
  };
  for (std::size_t i = 0; i < snapshots.size(); ++i) {
    const Snapshot& snapshot = snapshots[i];
    SnapshotHeader header{};
    header.fap = lay(snapshot.fap);
    header.fapSize = static_cast<U32>(snapshot.fap.size());
    header.name = lay(snapshot.name);
    header.nameSize = static_cast<U32>(snapshot.name.size());
    header.records = free;
    header.count = static_cast<U32>(snapshot.counters.size());
    free += snapshot.counters.size() * sizeof(RegionRecord);
    *at<SnapshotHeader>(region_, sizeof(RegionHeader) + i * sizeof(SnapshotHeader)) = header;
    records_.emplace_back(at<RegionRecord>(region_, header.records), header.count);
    for (std::size_t j = 0; j < snapshot.counters.size(); ++j) counterIs(i, j, snapshot.counters[j]);
  }
  *at<RegionHeader>(region_, 0) = {RegionHeader::expectedMagic, RegionHeader::expectedVersion,
                                   static_cast<U32>(snapshots.size()), size_};
}

ShmemWriter::~ShmemWriter() {
  ::munmap(region_, size_);
  ::close(fd_);
}

void ShmemWriter::counterIs(std::size_t snapshot, std::size_t index, const Counter& counter) {
  storeRecord(records_[snapshot][index], counter);
}

}  // namespace Brim::Counters

#include "platform/counteragent/Region.h"

#include <sys/stat.h>

#include <array>
#include <atomic>
#include <bit>
#include <optional>
#include <system_error>

#include "platform/tabula/Utf8.h"

namespace LoamCounters {

namespace {

static_assert(std::atomic_ref<U64>::is_always_lock_free);

constexpr U64 alignment = 8;  // of structures and records
constexpr U64 heartbeatAt = offsetof(RegionHeader, heartbeat);

U64* wordAt(char* bytes, U64 offset) {
  return static_cast<U64*>(static_cast<void*>(bytes + offset));
}

U64 loadWord(char* bytes, U64 offset) {
  return std::atomic_ref(*wordAt(bytes, offset)).load(std::memory_order_relaxed);
}

bool within(U64 begin, U64 size, U64 all) {
  return begin <= all && size <= all - begin;
}

[[noreturn]] void fail(const Mote::String& name, const std::string& problem) {
  throw RegionException(name + ": " + problem);
}

RegionMapping mapped(int fd, const Mote::String& name, RegionAccess access) {
  struct stat status {};
  if (::fstat(fd, &status) != 0 || !S_ISREG(status.st_mode)) fail(name, "not a regular file");
  const auto size = static_cast<std::size_t>(status.st_size);
  if (size < sizeof(RegionHeader)) fail(name, "truncated counter region");
  try {
    return {fd, size, access};
  } catch (const std::system_error& error) {
    fail(name, error.what());
  }
}

}  // namespace

template <class T>
T Region::load(U64 offset) const {
  static_assert(sizeof(T) % sizeof(U64) == 0);
  if (offset % alignment != 0 || !within(offset, sizeof(T), mapping_.size())) {
    damaged("invalid offset or size of a structure");
  }
  const T loaded = copy<T>(offset);
  if (mapping_.hasHole()) damaged("");
  return loaded;
}

template <class T>
T Region::copy(U64 offset) const noexcept {
  std::array<U64, sizeof(T) / sizeof(U64)> words;
  for (std::size_t i = 0; i < words.size(); ++i) words[i] = loadWord(mapping_.bytes(), offset + 8 * i);
  return std::bit_cast<T>(words);
}

template <class T>
T Region::element(RegionPart part, U64 number) const {
  return load<T>(part.offset + number * sizeof(T));
}

Region::Region(int fd, const Mote::String& name, RegionAccess access)
    : name_(name), mapping_(mapped(fd, name, access)) {
  const auto header = load<RegionHeader>(0);
  if (std::string_view(header.magic, sizeof header.magic) != RegionHeader::expectedMagic) {
    fail(name_, "not a counter region");
  }
  if (header.byteOrder == __builtin_bswap32(RegionHeader::expectedByteOrder)) {
    fail(name_, "a counter region with another byte order");
  }
  if (header.byteOrder != RegionHeader::expectedByteOrder) damaged("unknown byte order");
  if (header.version != RegionHeader::expectedVersion) {
    fail(name_, "a counter region of version " + std::to_string(header.version) + ", expected version " +
                    std::to_string(RegionHeader::expectedVersion));
  }
  if (header.size > mapping_.size()) fail(name_, "truncated counter region");
  if (header.size < mapping_.size()) damaged("the size in its header is too small");
  description_ = header.description;
  interfaces_ = header.interfaces;
  faps_ = header.faps;
  managers_ = header.managers;
  requireText(description_);
  checkInterfaces();
  checkFaps();
  checkManagers();
  requireIntact();
}

void Region::damaged(const char* what) const {
  if (mapping_.hasHole()) fail(name_, "the counter region was truncated while it was read");
  fail(name_, std::string("damaged counter region: ") + what);
}

void Region::requireIntact() const {
  if (mapping_.hasHole()) damaged("");
  const auto header = load<RegionHeader>(0);
  const auto same = [](RegionPart left, RegionPart right) {
    return left.offset == right.offset && left.count == right.count;
  };
  if (std::string_view(header.magic, sizeof header.magic) != RegionHeader::expectedMagic ||
      header.version != RegionHeader::expectedVersion || header.size != mapping_.size() ||
      !same(header.description, description_) || !same(header.interfaces, interfaces_) ||
      !same(header.faps, faps_) || !same(header.managers, managers_)) {
    damaged("overwritten while it was read");
  }
}

void Region::requireArray(RegionPart part, U64 stride, const char* what) const {
  if (part.count > mapping_.size() / stride || part.offset % alignment != 0 ||
      !within(part.offset, part.count * stride, mapping_.size())) {
    damaged(what);
  }
}

void Region::spend(U64 bytes) {
  if (bytes > mapping_.size() - spent_) damaged("parts that overlap");
  spent_ += bytes;
}

void Region::requireText(RegionPart part) const {
  if (!within(part.offset, part.count, mapping_.size())) damaged("invalid offset or size of a text");
}

std::string Region::nameIn(RegionPart part) const {
  requireText(part);
  std::string name(mapping_.bytes() + part.offset, part.count);
  if (name.find('\0') != std::string::npos) damaged("a name with U+0000");
  if (!tabula::isUtf8(name)) damaged("a name that is not UTF-8");
  return name;
}

std::string_view Region::description() const noexcept {
  return {mapping_.bytes() + description_.offset, description_.count};
}

U64 Region::heartbeat() const noexcept {
  return loadWord(mapping_.bytes(), heartbeatAt);
}

void Region::heartbeatIs(U64 nanoseconds) const noexcept {
  std::atomic_ref(*wordAt(mapping_.bytes(), heartbeatAt)).store(nanoseconds, std::memory_order_relaxed);
}

U64* Region::record(U64 offset, U64 words) const {
  if (offset == 0) damaged("a missing record");
  if (offset % alignment != 0 || !within(offset, region::recordSize(words), mapping_.size())) {
    damaged("invalid offset or size of a record");
  }
  return wordAt(mapping_.bytes(), offset);
}

void Region::checkInterfaces() {
  requireArray(interfaces_, sizeof(RegionInterface), "invalid offset or size of the interfaces");
  intfs_.reserve(interfaces_.count);
  for (U64 i = 0; i < interfaces_.count; ++i) {
    const auto intf = element<RegionInterface>(interfaces_, i);
    spend(intf.name.count);
    const Nexo::IntfId id(nameIn(intf.name));
    checkInterface(intf);
    intfs_.set(id, {static_cast<U32>(i), static_cast<U32>(intf.sources.count), intf.sources.offset});
    if (intfs_.size() != i + 1) damaged("a repeated interface");
  }
}

void Region::checkInterface(const RegionInterface& intf) {
  requireArray(intf.sources, sizeof(RegionSource), "invalid offset or size of an interface's sources");
  spend(intf.sources.count * sizeof(RegionSource));
  std::optional<RecordTables::Source> last;
  for (U64 i = 0; i < intf.sources.count; ++i) {
    const RegionSource entry = source(intf.sources, i);
    if (entry.fap >= FapId::highest || entry.core > LocalCoreId::highest) damaged("an unknown FAP or core");
    const RecordTables::Source at{FapId(entry.fap), LocalCoreId(entry.core)};
    if (last && !(*last < at)) damaged("sources of an interface out of order");
    record(entry.record, region::ingressWords(entry.queues));
    last = at;
  }
  recordIfAny(intf.egress, region::egressWords);
  recordIfAny(intf.egressTm, region::egressTmWords);
  recordIfAny(intf.egressLag, region::egressLagWords);
  recordIfAny(intf.egressAcl, region::egressAclWords);
}

RegionInterface Region::interfaceAt(const Place& place) const {
  return element<RegionInterface>(interfaces_, place.number);
}

RegionInterface Region::interface(Nexo::IntfId intf) const {
  const Place* found = intfs_.find(intf);
  return found == nullptr ? RegionInterface() : interfaceAt(*found);
}

RegionPart Region::sources(Nexo::IntfId intf) const {
  const Place* found = intfs_.find(intf);
  return found == nullptr ? RegionPart() : RegionPart{found->firstSource, found->sources};
}

RegionSource Region::source(RegionPart sources, U64 number) const {
  return checked(element<RegionSource>(sources, number));
}

RegionSource Region::checked(const RegionSource& source) const {
  if (source.queues > IngressTcCounter::capacity) damaged("a record with too many queues");
  return source;
}

RegionSource Region::sourceOf(RegionPart sources, RecordTables::Source wanted) const {
  requireArray(sources, sizeof(RegionSource), "invalid offset or size of an interface's sources");
  const auto keyOf = [](U64 fap, U64 core) { return fap << 8U | core; };
  const U64 key = keyOf(wanted.fapId.value(), wanted.coreId.value());
  U64 begin = sources.offset;
  for (U64 count = sources.count; count > 0;) {
    const U64 half = count / 2;
    const auto found = copy<RegionSource>(begin + half * sizeof(RegionSource));
    const U64 at = keyOf(found.fap, found.core);
    if (at == key) return checked(found);
    if (at < key) {
      begin += (half + 1) * sizeof(RegionSource);
      count -= half + 1;
    } else {
      count = half;
    }
  }
  return {};
}

void Region::checkFaps() const {
  requireArray(faps_, sizeof(RegionFap), "invalid offset or size of the FAPs");
  for (U64 i = 0; i < faps_.count; ++i) {
    const RegionFap entry = fap(i);
    if (entry.fap >= FapId::highest) damaged("an unknown FAP");
    if (i > 0 && entry.fap <= fap(i - 1).fap) damaged("FAPs out of order");
    record(entry.record, region::egressMtuWords);
  }
}

RegionFap Region::fap(U64 number) const {
  return element<RegionFap>(faps_, number);
}

RegionFap Region::fapOf(FapId wanted) const {
  U64 begin = 0;
  for (U64 end = faps_.count; begin < end;) {
    const U64 middle = begin + (end - begin) / 2;
    const RegionFap found = fap(middle);
    if (found.fap == wanted.value()) return found;
    if (found.fap < wanted.value()) {
      begin = middle + 1;
    } else {
      end = middle;
    }
  }
  return {};
}

void Region::checkManagers() {
  Vane::HashMap<Mote::String, bool> faps;
  requireArray(managers_, sizeof(RegionManager), "invalid offset or size of the debug counters");
  for (U64 i = 0; i < managers_.count; ++i) {
    const auto manager = element<RegionManager>(managers_, i);
    requireArray(manager.snapshots, sizeof(RegionSnapshot), "invalid offset or size of the snapshots");
    spend(manager.snapshots.count * sizeof(RegionSnapshot));
    spend(manager.fap.count);
    const Mote::String fap = nameIn(manager.fap);
    if (faps.contains(fap)) damaged("repeated debug counters of a FAP");
    faps.set(fap, true);
    for (U64 j = 0; j < manager.snapshots.count; ++j) {
      spend(element<RegionSnapshot>(manager.snapshots, j).name.count);
    }
    Vane::HashMap<Mote::String, bool> names;
    for (const Snapshot& snapshot : snapshotsOf(manager)) {
      if (names.contains(snapshot.name)) damaged("a repeated snapshot");
      names.set(snapshot.name, true);
    }
  }
}

std::vector<Region::Snapshot> Region::snapshotsOf(const RegionManager& manager) const {
  requireArray(manager.snapshots, sizeof(RegionSnapshot), "invalid offset or size of the snapshots");
  std::vector<Snapshot> snapshots;
  for (U64 i = 0; i < manager.snapshots.count; ++i) {
    const auto snapshot = element<RegionSnapshot>(manager.snapshots, i);
    requireArray(snapshot.records, region::recordSize(region::debugWords),
                 "invalid offset or size of a snapshot");
    if (snapshot.records.count >> 32U != 0) damaged("a snapshot with too many records");
    snapshots.push_back({nameIn(snapshot.name), snapshot.records});
  }
  return snapshots;
}

std::vector<Region::Manager> Region::managers() const {
  std::vector<Manager> managers;
  for (U64 i = 0; i < managers_.count; ++i) {
    const auto manager = element<RegionManager>(managers_, i);
    managers.push_back({nameIn(manager.fap), snapshotsOf(manager)});
  }
  return managers;
}

}  // namespace LoamCounters

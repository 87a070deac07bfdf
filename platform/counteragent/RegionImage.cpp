#include "platform/counteragent/RegionImage.h"

#include <algorithm>
#include <cstring>

#include "platform/counteragent/RegionLayout.h"

namespace LoamCounters {

namespace {

/// The bytes of a region, appended part by part.
class Layout {
 public:
  /// Appends room and returns its offset.
  U64 room(U64 size, U64 alignment) {
    const U64 begin = (bytes_.size() + alignment - 1) / alignment * alignment;
    bytes_.resize(begin + size);
    return begin;
  }
  template <class T>
  RegionPart array(const std::vector<T>& elements) {
    const RegionPart part{room(elements.size() * sizeof(T), sizeof(U64)), elements.size()};
    if (!elements.empty()) std::memcpy(&bytes_[part.offset], elements.data(), elements.size() * sizeof(T));
    return part;
  }
  RegionPart text(std::string_view text) {
    const RegionPart part{room(text.size(), 1), text.size()};
    text.copy(&bytes_[part.offset], text.size());
    return part;
  }
  U64 records(U64 words, U64 count = 1) { return room(region::recordSize(words) * count, sizeof(U64)); }
  std::string finish(RegionHeader header) && {
    room(0, sizeof(U64));
    header.size = bytes_.size();
    std::memcpy(bytes_.data(), &header, sizeof header);
    return std::move(bytes_);
  }

 private:
  std::string bytes_ = std::string(sizeof(RegionHeader), '\0');
};

RegionPart layInterfaces(Layout& layout, const RecordTables& counters) {
  struct Intf {
    Nexo::IntfId id;
    RegionInterface entry{};
    std::vector<RegionSource> sources;
  };
  std::vector<Intf> intfs;
  Vane::DenseMap<Nexo::IntfId, U32, Vane::Hash> places;
  const auto intfOf = [&](Nexo::IntfId id) -> Intf& {
    if (places.find(id) == nullptr) {
      places.set(id, static_cast<U32>(intfs.size()));
      intfs.emplace_back().id = id;
    }
    return intfs[*places.find(id)];
  };
  for (U32 place = 0; const auto& [source, intf] : counters.ingressKeys()) {
    const std::size_t queues = counters.ingressTcCounter(source.fapId, source.coreId, intf).queues().size();
    intfOf(intf).sources.push_back(
        {0, place++, source.fapId.value(), static_cast<U8>(source.coreId.value()), static_cast<U8>(queues)});
  }
  for (const auto intf : counters.egressKeys()) intfOf(intf).entry.egress = region::egressWords;
  for (const auto intf : counters.egressTmKeys()) intfOf(intf).entry.egressTm = region::egressTmWords;
  for (const auto intf : counters.egressLagKeys()) intfOf(intf).entry.egressLag = region::egressLagWords;
  for (const auto intf : counters.egressAclKeys()) intfOf(intf).entry.egressAcl = region::egressAclWords;

  // The records follow the parts that are read when the region is mapped, so that mapping touches few pages.
  for (Intf& intf : intfs) {
    std::ranges::sort(intf.sources, {}, [](const RegionSource& at) { return std::pair(at.fap, at.core); });
    for (RegionSource& source : intf.sources) {
      source.record = layout.records(region::ingressWords(source.queues));
    }
    RegionInterface& entry = intf.entry;
    for (U64* record : {&entry.egress, &entry.egressTm, &entry.egressLag, &entry.egressAcl}) {
      if (*record != 0) *record = layout.records(*record);
    }
  }
  for (Intf& intf : intfs) intf.entry.sources = layout.array(intf.sources);
  std::vector<RegionInterface> entries;
  entries.reserve(intfs.size());
  for (Intf& intf : intfs) {
    intf.entry.name = layout.text(intf.id.stringValue());
    entries.push_back(intf.entry);
  }
  return layout.array(entries);
}

RegionPart layFaps(Layout& layout, const RecordTables& counters) {
  std::vector<FapId> keys = counters.egressMtuKeys();
  std::sort(keys.begin(), keys.end());
  std::vector<RegionFap> faps;
  faps.reserve(keys.size());
  for (const FapId fap : keys) faps.push_back({layout.records(region::egressMtuWords), fap.value()});
  return layout.array(faps);
}

RegionPart layManagers(Layout& layout, const std::vector<DebugCounters>& debug) {
  std::vector<RegionManager> managers;
  for (const auto& [fap, manager] : debug) {
    std::vector<RegionSnapshot> snapshots;
    for (const auto& [name, count] : manager->snapshots()) {
      snapshots.push_back({layout.text(name), {layout.records(region::debugWords, count), count}});
    }
    managers.push_back({layout.text(fap), layout.array(snapshots)});
  }
  return layout.array(managers);
}

}  // namespace

std::string regionImage(std::string_view description, const RecordTables& counters,
                        const std::vector<DebugCounters>& debug) {
  Layout layout;
  RegionHeader header{};
  RegionHeader::expectedMagic.copy(header.magic, sizeof header.magic);
  header.byteOrder = RegionHeader::expectedByteOrder;
  header.version = RegionHeader::expectedVersion;
  header.interfaces = layInterfaces(layout, counters);
  header.faps = layFaps(layout, counters);
  header.managers = layManagers(layout, debug);
  header.description = layout.text(description);
  return std::move(layout).finish(header);
}

}  // namespace LoamCounters

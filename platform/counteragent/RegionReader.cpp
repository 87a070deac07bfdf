#include "platform/counteragent/RegionReader.h"

#include <algorithm>
#include <bit>
#include <thread>

#include "platform/counteragent/RegionSequence.h"

namespace LoamCounters {

namespace {

using Brim::Counters::Counter;

/// Tries again until a consistent record is read; false if that takes too long.
template <class Copy>
[[gnu::noinline]] bool readPatiently(U64* record, Copy& copy, std::chrono::milliseconds wait) {
  constexpr int hastyTries = 1000;
  constexpr std::chrono::microseconds pause{50};
  for (int i = 0; i < hastyTries; ++i) {
    if (region::readOnce(record, copy)) return true;
  }
  const auto deadline = std::chrono::steady_clock::now() + wait;
  while (std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(pause);
    if (region::readOnce(record, copy)) return true;
  }
  return false;
}

/// Copies a record of `in`; `named` returns its name for an error message.
template <class Copy, class Named>
void readRecord(const Region& in, std::chrono::milliseconds wait, U64* record, Copy copy, Named named) {
  if (!region::readOnce(record, copy) && !readPatiently(record, copy, wait)) {
    in.requireIntact();
    throw RecordException(in.name() + ": " + named() +
                          " cannot be read: the writer stopped in the middle of the record");
  }
  if (in.hasHole()) in.requireIntact();
}

Mote::String number(U64 value) {
  return std::to_string(value);
}

/// A count of a record that may have no value.
Keel::MaybeU63 loadMaybe(U64& word) {
  return Keel::MaybeU63(std::bit_cast<std::int64_t>(region::loadWord(word)));
}

Vane::Seconds loadTime(U64& word) {
  return Vane::Seconds(std::bit_cast<double>(region::loadWord(word)));
}

bool isSum(FapId fap, LocalCoreId core) {
  return fap.isNull() && core == Hardware::Loam::aggregateCore;
}

Mote::String ingressName(const RegionSource& source, Nexo::IntfId intf) {
  return Mote::String("ingress counters of ") + intf.stringValue() + " on FAP " + number(source.fap) +
         ", core " + number(source.core);
}

}  // namespace

IngressTcCounter RegionTables::ingressRecord(const RegionSource& source, Nexo::IntfId intf) const {
  IngressTcCounter counter;
  const std::span<IngressCounter> queues = counter.unsetQueues(source.queues);
  readRecord(
      *region_, wait_, region_->record(source.record, region::ingressWords(source.queues)),
      [&](U64* words) {
        counter.total = {region::loadQuad(words)};
        for (IngressCounter& queue : queues) queue = {region::loadQuad(words += region::quadWords)};
      },
      [&] { return ingressName(source, intf); });
  return counter;
}

IngressTcCounter RegionTables::ingressTcCounter(FapId fap, LocalCoreId core, Nexo::IntfId intf) const {
  const RegionPart sources = region_->sources(intf);
  if (!isSum(fap, core)) {
    const RegionSource source = region_->sourceOf(sources, {fap, core});
    return source.record == 0 ? IngressTcCounter() : ingressRecord(source, intf);
  }
  IngressTcCounter sum;
  for (U64 i = 0; i < sources.count; ++i) {
    sum += ingressRecord(region_->source(sources, i), intf);
  }
  return sum;
}

IngressCounter RegionTables::queueOf(const RegionSource& source, Nexo::IntfId intf, U64 queue) const {
  if (source.record == 0 || queue >= source.queues) return {};
  IngressCounter counter;
  readRecord(
      *region_, wait_, region_->record(source.record, region::ingressWords(source.queues)),
      [&](U64* words) { counter = {region::loadQuad(words + region::quadWords * (1 + queue))}; },
      [&] { return ingressName(source, intf); });
  return counter;
}

IngressCounter RegionTables::ingressCounter(const IngressCounterKey& key) const {
  const U64 queue = IngressCounterIndex(key.trafficClass).value();
  const RegionPart sources = region_->sources(key.intfId);
  if (!isSum(key.fapId, key.coreId)) {
    return queueOf(region_->sourceOf(sources, {key.fapId, key.coreId}), key.intfId, queue);
  }
  IngressCounter sum{};
  for (U64 i = 0; i < sources.count; ++i) {
    sum += queueOf(region_->source(sources, i), key.intfId, queue);
  }
  return sum;
}

template <class Record>
Record RegionTables::egressRecord(U64 offset, U64 words, const char* kind, Nexo::IntfId intf) const {
  Record counter;
  U64* record = region_->recordIfAny(offset, words);
  if (record == nullptr) return counter;
  readRecord(
      *region_, wait_, record,
      [&](U64* from) {
        counter.total = region::loadQuad(from);
        from += region::quadWords;
        for (U64& count : counter.counts) count = region::loadWord(*from++);
        if constexpr (requires { counter.tcLsbOfAmbiguousTcs; }) {
          const U64 bits = region::loadWord(*from);
          for (std::size_t i = 0; bool& ambiguous : counter.tcLsbOfAmbiguousTcs) {
            ambiguous = (bits >> i++) % 2 != 0;
          }
        }
      },
      [&] { return Mote::String(kind) + " counters of " + intf.stringValue(); });
  return counter;
}

EgressCounter RegionTables::egressCounter(const EgressCounterKey& key) const {
  const RegionInterface entry = region_->interface(key.intfId);
  return egressRecord<EgressCounter>(entry.egress, region::egressWords, "egress", key.intfId);
}

EgressTmCounter RegionTables::egressTmCounter(const EgressCounterKey& key) const {
  const RegionInterface entry = region_->interface(key.intfId);
  return egressRecord<EgressTmCounter>(entry.egressTm, region::egressTmWords, "egress TM", key.intfId);
}

EgressLagCounter RegionTables::egressLagCounter(const EgressCounterKey& key) const {
  const RegionInterface entry = region_->interface(key.intfId);
  return egressRecord<EgressLagCounter>(entry.egressLag, region::egressLagWords, "egress LAG", key.intfId);
}

Keel::MaybeU63 RegionTables::egressAclCounter(const EgressCounterKey& key) const {
  const RegionInterface entry = region_->interface(key.intfId);
  Keel::MaybeU63 count;
  if (U64* record = region_->recordIfAny(entry.egressAcl, region::egressAclWords)) {
    readRecord(
        *region_, wait_, record, [&](U64* words) { count = loadMaybe(words[0]); },
        [&] { return Mote::String("egress ACL counter of ") + key.intfId.stringValue(); });
  }
  return count;
}

EgressMtuCounter RegionTables::egressMtu(FapId fap) const {
  EgressMtuCounter counter;
  if (U64* record = region_->recordIfAny(region_->fapOf(fap).record, region::egressMtuWords)) {
    readRecord(
        *region_, wait_, record,
        [&](U64* words) {
          counter = {loadMaybe(words[0]), loadMaybe(words[1]), loadMaybe(words[2])};
        },
        [&] { return Mote::String("egress MTU counters of FAP ") + number(fap.value()); });
  }
  return counter;
}

EgressMtuCounter RegionTables::egressMtuEnqDropCounter(FapId fap) const {
  const EgressMtuCounter counter = egressMtu(fap);
  return {counter.enqueuedPackets(), counter.droppedPackets(), {}};
}

Keel::MaybeU63 RegionTables::egressMtuTotalCounter(FapId fap) const {
  return egressMtu(fap).totalCounter();
}

std::vector<RecordTables::IngressKey> RegionTables::ingressKeys() const {
  std::vector<std::pair<U32, IngressKey>> placed;
  for (const auto& [intf, at] : region_->interfaces()) {
    const RegionPart sources = region_->interfaceAt(at).sources;
    for (U64 i = 0; i < sources.count; ++i) {
      const RegionSource source = region_->source(sources, i);
      placed.emplace_back(source.place, IngressKey{{FapId(source.fap), LocalCoreId(source.core)}, intf});
    }
  }
  std::stable_sort(placed.begin(), placed.end(),
                   [](const auto& left, const auto& right) { return left.first < right.first; });
  std::vector<IngressKey> keys;
  keys.reserve(placed.size());
  for (const auto& [place, key] : placed) keys.push_back(key);
  return keys;
}

std::vector<RecordTables::Source> RegionTables::ingressSources(Nexo::IntfId intf) const {
  std::vector<Source> sources;
  const RegionPart records = region_->sources(intf);
  for (U64 i = 0; i < records.count; ++i) {
    const RegionSource source = region_->source(records, i);
    sources.push_back({FapId(source.fap), LocalCoreId(source.core)});
  }
  return sources;
}

std::vector<Nexo::IntfId> RegionTables::keysWith(U64 RegionInterface::*record) const {
  std::vector<Nexo::IntfId> keys;
  for (const auto& [intf, at] : region_->interfaces()) {
    if (region_->interfaceAt(at).*record != 0) keys.push_back(intf);
  }
  return keys;
}

std::vector<FapId> RegionTables::egressMtuKeys() const {
  std::vector<FapId> keys;
  for (U64 i = 0; i < region_->faps(); ++i) keys.emplace_back(region_->fap(i).fap);
  return keys;
}

RegionShmemManager::RegionShmemManager(Region::PtrConst region, const Region::Manager& manager,
                                       std::chrono::milliseconds wait)
    : region_(std::move(region)), wait_(wait), fap_(manager.fap) {
  for (const Region::Snapshot& snapshot : manager.snapshots) records_.set(snapshot.name, snapshot.records);
}

Counter RegionShmemManager::counter(const Mote::String& snapshot, U32 index) const {
  Counter counter;
  const RegionPart* records = records_.find(snapshot);
  if (records == nullptr || index >= records->count) return counter;
  const U64 offset = records->offset + index * region::recordSize(region::debugWords);
  readRecord(
      *region_, wait_, region_->record(offset, region::debugWords),
      [&](U64* words) {
        counter = {region::loadWord(words[0]), loadTime(words[1]), loadTime(words[2]), loadTime(words[3]),
                   region::loadWord(words[4]) != 0};
      },
      [&] {
        return Mote::String("debug counter ") + number(index) + " of " + fap_ + ", snapshot " + snapshot;
      });
  return counter;
}

std::vector<Brim::Counters::ShmemManager::Snapshot> RegionShmemManager::snapshots() const {
  std::vector<Snapshot> snapshots;
  for (const auto& [name, records] : records_) snapshots.push_back({name, static_cast<U32>(records.count)});
  return snapshots;
}

}  // namespace LoamCounters

#include <array>
#include <string>

#include "loamshow/state/ReadValues.h"

namespace loamshow {

using LoamCounters::CounterQuad;
using LoamCounters::MemoryCounterTables;
using LoamCounters::RecordTables;

namespace {

/// Reads a list of at most `capacity` queues: readQueue(index, value).
template <class ReadQueue>
void readQueues(JsonValue list, std::size_t capacity, ReadQueue readQueue) {
  std::size_t size = 0;
  for (JsonElements in(list); in.next();) {
    if (size == capacity) list.fail("expected at most " + std::to_string(capacity) + " queues");
    readQueue(size++, in.value());
  }
}

/// Sets the record's total: that of the file, or the sum of the quads.
template <class Record>
void settleTotal(Counted<Record>& counted) {
  static_cast<CounterQuad&>(counted.record.total) = counted.total ? *counted.total : sumOf(counted.record);
}

}  // namespace

void read(JsonValue value, CounterQuad& into) {
  std::array<U64, 4> counts;  // NOLINT(cppcoreguidelines-pro-type-member-init): all are read
  value.integers(counts, "expected four counts");
  into = {counts[0], counts[1], counts[2], counts[3]};
}

void read(JsonValue value, Quads<LoamCounters::IngressTcCounter> into) {
  readQueues(value, LoamCounters::IngressTcCounter::capacity, [&](std::size_t i, JsonValue queue) {
    LoamCounters::IngressCounter counter;
    read(queue, counter);
    into.record.queueIs(LoamCounters::IngressCounterIndex(i), counter);
  });
}

void read(JsonValue value, Quads<LoamCounters::EgressCounter> into) {
  readQueues(value, LoamCounters::EgressCounter::quads, [&](std::size_t i, JsonValue queue) {
    CounterQuad counter;
    read(queue, counter);
    into.record.quadIs(LoamCounters::EgressCounterIndex(4 * i), counter);
  });
}

template <class Record>
void read(JsonValue value, QuadPairs<Record> into) {
  readQueues(value, Record::quads / 2, [&](std::size_t i, JsonValue queue) {
    QuadPair pair;
    read(queue, pair);
    into.record.quadIs(typename Record::Index(8 * i), pair.ucast);
    into.record.quadIs(typename Record::Index(8 * i + 4), pair.mcast);
  });
}

void read(JsonValue value, std::array<bool, 4>& into) {
  for (JsonElements in(value); in.next();) into[in.value().integer(0, into.size() - 1)] = true;
}

void read(JsonValue value, IngressTable<MemoryCounterTables> into) {
  for (JsonElements in(value); in.next();) {
    IngressEntry entry;
    read(in.value(), entry);
    settleTotal(entry);
    if (!into.tables.ingressIs(entry.fapId, entry.coreId, entry.intfId, entry.record)) {
      in.value().fail("repeated entry of this FAP, core and interface");
    }
  }
}

/// The record of an interface.
template <class Item, class Key>
requires requires {
  typename Item::Index;
}
void readItem(JsonValue value, const Key& /*key*/, Item& item) {
  Counted<Item> counted;
  read(value, counted);
  settleTotal(counted);
  item = counted.record;
}

template <class Record>
void read(JsonValue value, EgressTable<MemoryCounterTables, Record> into) {
  read(value, into.tables.*into.map);
}

void read(JsonValue value, MtuTable<MemoryCounterTables> into) {
  Vane::HashMap<Hardware::Loam::FapId, MtuEntry> entries;
  read(value, entries);
  for (const auto& [fap, entry] : entries) {
    into.tables.egressMtu.set(fap, {entry.enqueued, entry.dropped, {}});
    into.tables.egressMtuTotal.set(fap, entry.total);
  }
}

void read(JsonValue value, RecordTables& into) {
  read<MemoryCounterTables>(value, dynamic_cast<MemoryCounterTables&>(into));
}

}  // namespace loamshow

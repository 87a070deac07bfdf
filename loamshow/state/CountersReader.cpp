#include <array>
#include <cstdint>
#include <string>

#include "loamshow/state/StateReaders.h"
#include "loamshow/state/StateValues.h"

namespace loamshow {

namespace {

using Hardware::Loam::LocalCoreId;
using LoamCounters::CounterQuad;

CounterQuad quad(JsonValue array) {
  std::array<U64, 4> counts{};
  array.integers(counts, "expected four counts");
  return {counts[0], counts[1], counts[2], counts[3]};
}

/// Reads an array of at most `capacity` queues: read(index, element).
template <class Read>
void readQueues(JsonValue array, std::size_t capacity, Read read) {
  std::size_t size = 0;
  for (JsonElements elements(array); elements.next();) {
    const JsonValue element = elements.value();
    if (size == capacity) array.fail("expected at most " + std::to_string(capacity) + " queues");
    read(size++, element);
  }
}

/// A record's total: as given, else the sum of its quads.
class Total {
 public:
  void give(JsonValue value) { given_ = quad(value); }
  void add(const CounterQuad& counter) { sum_ += counter; }
  CounterQuad value() const { return given_.value_or(sum_); }

 private:
  CounterQuad sum_{};
  Vane::Optional<CounterQuad> given_;
};

void readIngressEntry(JsonValue entry, LoamCounters::MemoryCounterTables& counters) {
  FapId fapId{0};
  LocalCoreId coreId{0};
  IntfId intfId;
  LoamCounters::IngressTcCounter record;
  Total total;
  const auto readQueue = [&](std::size_t i, JsonValue element) {
    const LoamCounters::IngressCounter counter{quad(element)};
    record.queueIs(LoamCounters::IngressCounterIndex(i), counter);
    total.add(counter);
  };
  for (JsonMembers in(entry); in.next();) {
    if (in.is("fapId")) {
      fapId = fap(in.value());
    } else if (in.is("coreId")) {
      coreId = id<LocalCoreId>(in.value());
    } else if (in.is("intfId")) {
      intfId = intf(in.value());
    } else if (in.is("queues")) {
      readQueues(in.value(), LoamCounters::IngressTcCounter::capacity, readQueue);
    } else if (in.is("total")) {
      total.give(in.value());
    } else {
      in.unknown();
    }
  }
  record.total = {total.value()};
  if (!counters.ingressIs(fapId, coreId, intfId, record)) {
    entry.fail("repeated entry of this FAP, core and interface");
  }
}

LoamCounters::EgressCounter egressCounter(JsonValue object) {
  LoamCounters::EgressCounter record;
  Total total;
  const auto readQueue = [&](std::size_t i, JsonValue element) {
    const CounterQuad counter = quad(element);
    record.quadIs(LoamCounters::EgressCounterIndex(4 * i), counter);
    total.add(counter);
  };
  for (JsonMembers in(object); in.next();) {
    if (in.is("queues")) {
      readQueues(in.value(), LoamCounters::EgressCounter::quads, readQueue);
    } else if (in.is("total")) {
      total.give(in.value());
    } else {
      in.unknown();
    }
  }
  record.total = total.value();
  return record;
}

void readAmbiguousTcs(JsonValue array, LoamCounters::EgressTmCounter& record) {
  auto& ambiguous = record.tcLsbOfAmbiguousTcs;
  for (JsonElements tcs(array); tcs.next();) ambiguous[tcs.value().integer(0, ambiguous.size() - 1)] = true;
}

/// A record of unicast and multicast quads.
template <class Record>
Record pairedRecord(JsonValue object) {
  constexpr bool mayShareQueues = std::is_same_v<Record, LoamCounters::EgressTmCounter>;
  using Index = typename Record::Index;
  Record record;
  Total total;
  const auto readQuad = [&](std::size_t index, JsonValue value) {
    const CounterQuad counter = quad(value);
    record.quadIs(Index(4 * index), counter);
    total.add(counter);
  };
  const auto readPair = [&](std::size_t i, JsonValue pair) {
    for (JsonMembers in(pair); in.next();) {
      if (in.is("ucast")) {
        readQuad(2 * i, in.value());
      } else if (in.is("mcast")) {
        readQuad(2 * i + 1, in.value());
      } else {
        in.unknown();
      }
    }
  };
  for (JsonMembers in(object); in.next();) {
    if (in.is("queues")) {
      readQueues(in.value(), Record::quads / 2, readPair);
    } else if (in.is("total")) {
      total.give(in.value());
    } else if (mayShareQueues && in.is("ambiguousTcs")) {
      // NOLINTNEXTLINE(bugprone-redundant-branch-condition): the other instance does not compile it
      if constexpr (mayShareQueues) readAmbiguousTcs(in.value(), record);
    } else {
      in.unknown();
    }
  }
  record.total = total.value();
  return record;
}

Keel::MaybeU63 maybeCount(JsonValue value) {
  if (value.isNull()) return {};
  return Keel::MaybeU63(static_cast<std::int64_t>(value.integer(0, most<std::int64_t>)));
}

void readEgressMtu(JsonValue object, LoamCounters::MemoryCounterTables& counters) {
  readMap(object, counters.egressMtu, fapKey, [&](const JsonMembers& mtu) {
    Keel::MaybeU63 enqueued;
    Keel::MaybeU63 dropped;
    Keel::MaybeU63 total;
    for (JsonMembers in(mtu.value()); in.next();) {
      if (in.is("enqueuedPackets")) {
        enqueued = maybeCount(in.value());
      } else if (in.is("droppedPackets")) {
        dropped = maybeCount(in.value());
      } else if (in.is("totalPackets")) {
        total = maybeCount(in.value());
      } else {
        in.unknown();
      }
    }
    counters.egressMtuTotal.set(fapKey(mtu), total);
    return LoamCounters::EgressMtuCounter(enqueued, dropped, {});
  });
}

}  // namespace

void readCounters(JsonValue object, LoamCounters::MemoryCounterTables& counters) {
  for (JsonMembers in(object); in.next();) {
    const JsonValue value = in.value();
    if (in.is("ingress")) {
      for (JsonElements entries(value); entries.next();) readIngressEntry(entries.value(), counters);
    } else if (in.is("egress")) {
      readMap(value, counters.egress, intfKey, egressCounter);
    } else if (in.is("egressTm")) {
      readMap(value, counters.egressTm, intfKey, pairedRecord<LoamCounters::EgressTmCounter>);
    } else if (in.is("egressLag")) {
      readMap(value, counters.egressLag, intfKey, pairedRecord<LoamCounters::EgressLagCounter>);
    } else if (in.is("egressAcl")) {
      readMap(value, counters.egressAcl, intfKey, maybeCount);
    } else if (in.is("egressMtu")) {
      readEgressMtu(value, counters);
    } else {
      in.unknown();
    }
  }
}

}  // namespace loamshow

#pragma once

// Parts of a state file that are not described by the type of a field alone, and the entries of its lists.
// The deduction guides are for Clang 14.

#include <string_view>
#include <vector>

#include "loamshow/state/Switch.h"

namespace loamshow {

/// A number from 0 to `Highest`.
template <U64 Highest, class Number>
struct UpTo {
  Number& number;
};
template <U64 Highest, class Number>
UpTo<Highest, Number> upTo(Number& number) {
  return {number};
}

/// An object that is the item of a collection, and its key there.
template <class Object>
struct Keyed {
  Object& object;
  const Mote::String& key;
};

/// A name that defaults to the object's key.
template <class String>
struct NameOrKey {
  String& name;
  const Mote::String& key;
};
template <class String>
NameOrKey(String&, const Mote::String&) -> NameOrKey<String>;

/// A number, null for `CounterDescriptor::noFirstInstance`.
template <class Number>
struct FirstInstance {
  Number& number;
};
template <class Number>
FirstInstance(Number&) -> FirstInstance<Number>;

/// A list of names of interfaces, none of them empty or repeated.
template <class List>
struct Interfaces {
  List& list;
};
template <class List>
Interfaces(List&) -> Interfaces<List>;

/// The keys of a map, as a list.
template <class Map>
struct Set {
  Map& map;
  bool mayRepeat = false;
};
template <class Map>
Set(Map&) -> Set<Map>;
template <class Map>
Set(Map&, bool) -> Set<Map>;

/// A map whose key is a structure, as a list of entries: `Entry` has the members of both.
template <class Entry, class Map>
struct EntryList {
  Map& map;
  std::string_view key;  // its name in messages
};
template <class Entry, class Map>
EntryList<Entry, Map> entryList(Map& map, std::string_view key) {
  return {map, key};
}

// Entries of lists, and objects whose parts are not fields of one platform object.

struct PlacedIntf {
  Hardware::Loam::PortMap key;
  Nexo::IntfId item;
};

struct PlacedRecircPort {
  Hardware::Loam::RecircPort key;
  Vane::Optional<Hardware::Loam::SystemPhyPortId> item;
};

struct FabricMcastVoqs {
  Vane::Optional<Hardware::Loam::VoqId> min;
  Vane::Optional<Hardware::Loam::VoqId> max;
};

template <class State>
struct FabricMcastRange {
  State& state;
};

template <class State>
struct Identity {
  State& state;
};

/// A name that is not empty.
template <class String>
struct SwitchName {
  String& name;
};
template <class String>
SwitchName(String&) -> SwitchName<String>;

/// A time as RFC 3339 in UTC.
template <class String>
struct Time {
  String& text;
};
template <class String>
Time(String&) -> Time<String>;

template <class List>
struct DebugFaps {
  List& faps;
};
template <class List>
DebugFaps(List&) -> DebugFaps<List>;

template <class State>
struct Debug {
  State& state;
};

/// A record, and its total if that is not the sum of the record's quads.
template <class Record>
struct Counted {
  Record record;
  Vane::Optional<LoamCounters::CounterQuad> total;
};

/// The sum of a record's quads.
inline LoamCounters::CounterQuad sumOf(const LoamCounters::IngressTcCounter& record) {
  LoamCounters::CounterQuad sum{};
  for (const LoamCounters::IngressCounter& counter : record.queues()) sum += counter;
  return sum;
}
template <class Record>
LoamCounters::CounterQuad sumOf(const Record& record) {
  LoamCounters::CounterQuad sum{};
  for (U64 i = 0; i < Record::quads; ++i) sum += record.quad(4 * i);
  return sum;
}

struct IngressEntry : Counted<LoamCounters::IngressTcCounter> {
  Hardware::Loam::FapId fapId{0};
  Hardware::Loam::LocalCoreId coreId{0};
  Nexo::IntfId intfId;
};

/// The quads of a record as a list of queues.
template <class Record>
struct Quads {
  Record& record;
};
template <class Record>
Quads(Record&) -> Quads<Record>;

/// The quads of a record as a list of queues, each a pair of a unicast and a multicast quad.
template <class Record>
struct QuadPairs {
  Record& record;
};
template <class Record>
QuadPairs(Record&) -> QuadPairs<Record>;

/// One of those pairs.
struct QuadPair {
  LoamCounters::CounterQuad ucast{};
  LoamCounters::CounterQuad mcast{};
};

struct MtuEntry {
  Keel::MaybeU63 enqueued;
  Keel::MaybeU63 dropped;
  Keel::MaybeU63 total;
};

template <class Tables>
struct IngressTable {
  Tables& tables;
};

/// The records of interfaces: their map in tables in memory, and the functions to read them from any tables.
template <class Tables, class Record>
struct EgressTable {
  Tables& tables;
  Vane::HashMap<Nexo::IntfId, Record> LoamCounters::MemoryCounterTables::*map;
  std::vector<Nexo::IntfId> (LoamCounters::RecordTables::*keys)() const;
  Record (LoamCounters::CounterTables::*record)(const LoamCounters::EgressCounterKey& key) const;
};

template <class Tables>
struct MtuTable {
  Tables& tables;
};

struct DebugFapParts {
  Brim::Counters::CounterDescriptorDir::PtrConst directory;
  Brim::Counters::ShmemManager::PtrConst snapshots;
};

struct Directory {
  bool valid = false;
  U32 readiness = 0;
  decltype(Brim::Counters::CounterDescriptorDir::blockToDescriptor) blocks;
};

}  // namespace loamshow

#pragma once

// The members of every object of a state file, in the order of the file and each declared once.
// `members(visit, object)` calls visit(name, part) for each member until a call returns true, and returns
// whether one did: a reader takes the part whose name it has met, a writer writes all of them. A part is a
// field of the object, or one of the types below where a field alone does not tell what the file may hold.

#include <array>
#include <concepts>
#include <string_view>
#include <type_traits>
#include <vector>

#include "loamshow/state/Switch.h"

namespace loamshow {

template <class T, class Object>
concept Of = std::same_as<std::remove_const_t<T>, Object>;

/// A number with a range of its own: 0 to `Highest`.
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

/// A name that is the object's key unless another is given.
template <class String>
struct NameOrKey {
  String& name;
  const Mote::String& key;
};

/// A number, null for `CounterDescriptor::noFirstInstance`.
template <class Number>
struct FirstInstance {
  Number& number;
};

/// A list of names of interfaces, none of them empty and none twice.
template <class List>
struct Interfaces {
  List& list;
};

/// The keys of a map, as a list.
template <class Map>
struct Set {
  Map& map;
  bool mayRepeat = false;
};

/// A map whose key is a structure, as a list of entries: `Entry` has the members of both.
template <class Entry, class Map>
struct EntryList {
  Map& map;
  std::string_view key;  // as messages name it
};
template <class Entry, class Map>
EntryList<Entry, Map> entryList(Map& map, std::string_view key) {
  return {map, key};
}

// The entries, and objects whose parts are not fields of one platform object.

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

/// A time as RFC 3339 in UTC.
template <class String>
struct Time {
  String& text;
};

template <class List>
struct DebugFaps {
  List& faps;
};

template <class State>
struct Debug {
  State& state;
};

/// A record, and its total where that is not the sum of the record's quads.
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

/// The quads of a record as a list of queues, each a pair of a unicast and a multicast quad.
template <class Record>
struct QuadPairs {
  Record& record;
};

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

/// The records of interfaces: where memory keeps them, and how to get them from any tables.
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

// The objects.

template <class Visit, Of<Hardware::Loam::PortMap> T>
bool members(Visit& visit, T& port) {
  return visit("fapPortId", port.fapPortId) || visit("fapId", port.fapId) || visit("coreId", port.coreId);
}

template <class Visit, Of<PlacedIntf> T>
bool members(Visit& visit, T& entry) {
  return members(visit, entry.key) || visit("intfId", entry.item);
}

template <class Visit, Of<PlacedRecircPort> T>
bool members(Visit& visit, T& entry) {
  return visit("recircType", entry.key.recircType) || visit("id", entry.key.id) ||
         visit("systemPhyPortId", entry.item);
}

template <class Visit, Of<Hardware::Loam::FapRevision> T>
bool members(Visit& visit, T& revision) {
  return visit("major", revision.major);
}

template <class Visit, Of<Hardware::Loam::Status> T>
bool members(Visit& visit, T& status) {
  return visit("fapIdToName", status.fapIdToName) || visit("fapNumCores", status.fapNumCores) ||
         visit("fapRevision", status.fapRevision) || visit("sppidToIntfId", status.sppidToIntfId) ||
         visit("intfIdToSppid", status.intfIdToSppid) || visit("portMap", status.portMaps) ||
         visit("portMapToIntfId", entryList<PlacedIntf>(status.portMapToIntfId, "FAP, core and port")) ||
         visit("olpPort", status.olpPort) || visit("erpPort", status.erpPort) ||
         visit("recircPort", entryList<PlacedRecircPort>(status.recircPort, "recircType and id")) ||
         visit("fabricMeshDropPort", status.fabricMeshDropPort) ||
         visit("fapToSflowAccelSppid", status.fapToSflowAccelSppid) || visit("ipsecPort", status.ipsecPort) ||
         visit("eventorPort", status.eventorPort) || visit("cpuRecircEnabled", status.cpuRecircEnabled) ||
         // A sub-interface has no more VOQs than there are traffic classes to share among them.
         visit("subIntfNumVoqs", upTo<8>(status.subIntfNumVoqs)) ||
         visit("coppClassNumVoqs", status.coppClassNumVoqs);
}

template <class Visit, Of<LoamTm::TmMapping> T>
bool members(Visit& visit, T& mapping) {
  return visit("portTmMap", Set{mapping.portTmMap});
}

template <class Visit, Of<Hardware::Loam::InternalLagClientStatus> T>
bool members(Visit& visit, T& status) {
  return visit("lagIngressVoqCounterTable", Set{status.lagIngressVoqCounterTable, true});
}

template <class Visit, Of<FabricMcastVoqs> T>
bool members(Visit& visit, T& range) {
  return visit("min", range.min) || visit("max", range.max);
}

template <class Visit, Of<IngressEntry> T>
bool members(Visit& visit, T& entry) {
  return visit("fapId", upTo<Hardware::Loam::FapId::highest - 1>(entry.fapId)) ||
         visit("coreId", entry.coreId) || visit("intfId", entry.intfId) ||
         visit("queues", Quads{entry.record}) || visit("total", entry.total);
}

template <class Visit, Of<Counted<LoamCounters::EgressCounter>> T>
bool members(Visit& visit, T& counted) {
  return visit("queues", Quads{counted.record}) || visit("total", counted.total);
}

template <class Visit, Of<Counted<LoamCounters::EgressTmCounter>> T>
bool members(Visit& visit, T& counted) {
  return visit("queues", QuadPairs{counted.record}) ||
         visit("ambiguousTcs", counted.record.tcLsbOfAmbiguousTcs) || visit("total", counted.total);
}

template <class Visit, Of<Counted<LoamCounters::EgressLagCounter>> T>
bool members(Visit& visit, T& counted) {
  return visit("queues", QuadPairs{counted.record}) || visit("total", counted.total);
}

template <class Visit, Of<QuadPair> T>
bool members(Visit& visit, T& pair) {
  return visit("ucast", pair.ucast) || visit("mcast", pair.mcast);
}

template <class Visit, Of<MtuEntry> T>
bool members(Visit& visit, T& entry) {
  return visit("enqueuedPackets", entry.enqueued) || visit("droppedPackets", entry.dropped) ||
         visit("totalPackets", entry.total);
}

template <class Visit, std::derived_from<LoamCounters::RecordTables> T>
bool members(Visit& visit, T& tables) {
  using namespace LoamCounters;
  using Memory = MemoryCounterTables;
  return visit("ingress", IngressTable<T>{tables}) ||
         visit("egress", EgressTable<T, EgressCounter>{tables, &Memory::egress, &RecordTables::egressKeys,
                                                       &CounterTables::egressCounter}) ||
         visit("egressTm",
               EgressTable<T, EgressTmCounter>{tables, &Memory::egressTm, &RecordTables::egressTmKeys,
                                               &CounterTables::egressTmCounter}) ||
         visit("egressLag",
               EgressTable<T, EgressLagCounter>{tables, &Memory::egressLag, &RecordTables::egressLagKeys,
                                                &CounterTables::egressLagCounter}) ||
         visit("egressAcl",
               EgressTable<T, Keel::MaybeU63>{tables, &Memory::egressAcl, &RecordTables::egressAclKeys,
                                              &CounterTables::egressAclCounter}) ||
         visit("egressMtu", MtuTable<T>{tables});
}

template <class Visit, Of<Brim::Counters::CounterFieldDescriptor> T>
bool members(Visit& visit, const Keyed<T>& keyed) {
  T& field = keyed.object;
  return visit("displayName", NameOrKey{field.displayName, keyed.key}) || visit("offset", field.offset) ||
         visit("order", field.order) || visit("fetchType", field.fetchType) ||
         visit("isDropCounter", field.isDropCounter);
}

template <class Visit, Of<Brim::Counters::CounterDescriptor> T>
bool members(Visit& visit, const Keyed<T>& keyed) {
  T& counter = keyed.object;
  return visit("displayName", NameOrKey{counter.displayName, keyed.key}) || visit("offset", counter.offset) ||
         visit("firstInstance", FirstInstance{counter.firstInstance}) ||
         visit("numInstances", counter.numInstances) || visit("fetchType", counter.fetchType) ||
         visit("displayType", counter.displayType) || visit("isDropCounter", counter.isDropCounter) ||
         visit("fields", counter.fieldDescriptors);
}

template <class Visit, Of<Directory> T>
bool members(Visit& visit, T& directory) {
  return visit("valid", directory.valid) || visit("readiness", directory.readiness) ||
         visit("blocks", directory.blocks);
}

template <class Visit, Of<Brim::Counters::Counter> T>
bool members(Visit& visit, T& counter) {
  return visit("value", counter.value) || visit("firstUpdate", counter.firstUpdate) ||
         visit("lastUpdate", counter.lastUpdate) || visit("lastDiscontinuity", counter.lastDiscontinuity) ||
         visit("overflow", counter.overflow);
}

template <class Visit, Of<DebugFapParts> T>
bool members(Visit& visit, T& fap) {
  return visit("directory", fap.directory) || visit("snapshots", fap.snapshots);
}

template <class Visit, class State>
bool members(Visit& visit, const Debug<State>& debug) {
  return visit("switchTimeOffset", debug.state.switchTimeOffset) ||
         visit("faps", DebugFaps{debug.state.debugFaps});
}

template <class Visit, class State>
bool members(Visit& visit, const Identity<State>& identity) {
  return visit("name", SwitchName{identity.state.name}) || visit("takenAt", Time{identity.state.takenAt});
}

template <class Visit, Of<SwitchState> T>
bool members(Visit& visit, T& state) {
  return visit("switch", Identity<T>{state}) || visit("interfaces", Interfaces{state.interfaces}) ||
         visit("status", *state.status) || visit("tmMapping", *state.tmMapping) ||
         visit("internalLagStatus", *state.internalLagStatus) ||
         visit("fabricMcastVoq", FabricMcastRange<T>{state}) ||
         visit("skeinMountMode", state.skeinMountMode) ||
         visit("perInputPortCoppVoqs", state.perInputPortCoppVoqs) || visit("counters", *state.counters) ||
         visit("debug", Debug<T>{state});
}

}  // namespace loamshow

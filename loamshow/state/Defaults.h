#pragma once

// Determines which parts of a state file need not be written, because a missing part reads the same.

#include <algorithm>
#include <array>
#include <functional>
#include <string_view>
#include <type_traits>
#include <vector>

#include "loamshow/state/Members.h"

namespace loamshow {

/// A record's quads without trailing zero quads, which need not be written.
inline std::vector<LoamCounters::CounterQuad> quadsOf(const LoamCounters::IngressTcCounter& record) {
  return {record.queues().begin(), record.queues().end()};
}
template <class Record>
std::vector<LoamCounters::CounterQuad> quadsOf(const Record& record) {
  std::vector<LoamCounters::CounterQuad> quads;
  for (U64 i = 0; i < Record::quads; ++i) quads.push_back(record.quad(4 * i));
  return quads;
}
template <class Record>
std::vector<LoamCounters::CounterQuad> writtenQuads(const Record& record) {
  std::vector<LoamCounters::CounterQuad> quads = quadsOf(record);
  while (!quads.empty() && quads.back() == LoamCounters::CounterQuad()) quads.pop_back();
  return quads;
}

// Whether a part has its default.

template <class Number>
requires std::is_arithmetic_v<Number>
bool isDefault(Number number) {
  return number == 0;
}
template <class Id>
requires requires {
  Id::lowest;
}
bool isDefault(Id id) {
  return id.value() == Id::lowest;
}
inline bool isDefault(Vane::Seconds time) {
  return time.value() == 0;
}
inline bool isDefault(Nexo::IntfId intf) {
  return intf.stringValue().empty();
}
inline bool isDefault(Keel::MaybeU63 count) {
  return count.null();
}
inline bool isDefault(const LoamCounters::CounterQuad& quad) {
  return quad == LoamCounters::CounterQuad();
}
inline bool isDefault(const std::array<bool, 4>& flags) {
  return std::ranges::none_of(flags, std::identity());
}
template <class T>
bool isDefault(const Vane::Optional<T>& value) {
  return !value.has_value();
}
template <class T>
bool isDefault(const Mote::Ptr<T>& node) {
  return node == nullptr;
}
template <class Map>
requires requires {
  typename Map::Item;
}
bool isDefault(const Map& map) {
  return map.size() == 0;
}
template <U64 Highest, class Number>
bool isDefault(UpTo<Highest, Number> part) {
  return isDefault(part.number);
}
template <class String>
bool isDefault(NameOrKey<String> part) {
  return part.name == part.key;
}
template <class Number>
bool isDefault(FirstInstance<Number> part) {
  return part.number == Brim::Counters::CounterDescriptor::noFirstInstance;
}
template <class String>
bool isDefault(SwitchName<String> part) {
  return part.name.empty();
}
template <class String>
bool isDefault(Time<String> part) {
  return part.text.empty();
}
template <class List>
bool isDefault(Interfaces<List> part) {
  return part.list.empty();
}
template <class Map>
bool isDefault(Set<Map> part) {
  return part.map.size() == 0;
}
template <class Entry, class Map>
bool isDefault(EntryList<Entry, Map> part) {
  return part.map.size() == 0;
}
template <class State>
bool isDefault(FabricMcastRange<State> part) {
  const SwitchState none;
  return part.state.fabricMcastVoqMin == none.fabricMcastVoqMin &&
         part.state.fabricMcastVoqMax == none.fabricMcastVoqMax;
}
template <class Record>
bool isDefault(Quads<Record> part) {
  return writtenQuads(part.record).empty();
}
template <class Record>
bool isDefault(QuadPairs<Record> part) {
  return writtenQuads(part.record).empty();
}
template <class Tables>
bool isDefault(IngressTable<Tables> part) {
  return part.tables.ingressKeys().empty();
}
template <class Tables, class Record>
bool isDefault(EgressTable<Tables, Record> part) {
  return (part.tables.*part.keys)().empty();
}
template <class Tables>
bool isDefault(MtuTable<Tables> part) {
  return part.tables.egressMtuKeys().empty();
}
template <class List>
bool isDefault(DebugFaps<List> part) {
  return part.faps.empty();
}

/// Looks for a part that needs to be written.
struct PartFinder {
  template <class Part>
  bool operator()(std::string_view name, const Part& part);
};

/// An object without such a part.
template <class Object>
requires requires(PartFinder& finder, const Object& object) {
  members(finder, object);
}
bool isDefault(const Object& object) {
  PartFinder finder;
  return !members(finder, object);
}

template <class Part>
bool PartFinder::operator()(std::string_view /*name*/, const Part& part) {
  return !isDefault(part);
}

}  // namespace loamshow

#pragma once

// The values of a state file, each read as the type it stands for.

#include <concepts>
#include <limits>
#include <string_view>

#include "loamshow/json/JsonReader.h"
#include "platform/HardwareLoam.h"
#include "platform/Nexo.h"

namespace loamshow {

using Hardware::Loam::FapId;
using Hardware::Loam::SystemPhyPortId;
using Nexo::IntfId;

template <class T>
constexpr U64 most = std::numeric_limits<T>::max();

inline Mote::String checkedName(JsonValue value, std::string_view text) {
  if (text.find('\0') != std::string_view::npos) value.fail("a name cannot hold U+0000");
  return text;
}

inline Mote::String name(JsonValue value) {
  const std::string_view text = value.text();
  return checkedName(value, text);
}

inline IntfId intf(JsonValue value) {
  return IntfId(name(value));
}

template <class Id>
Id id(JsonValue value) {
  return Id(value.integer(Id::lowest, Id::highest));
}

/// A number that is no identifier but has its type's whole range.
template <class T>
T number(JsonValue value) {
  return static_cast<T>(value.integer(0, most<T>));
}

/// A FAP that is there: not the null FAP.
inline FapId fap(JsonValue value) {
  return FapId(value.integer(FapId::lowest, FapId::highest - 1));
}

// The keys of collections.

inline FapId fapKey(const JsonMembers& member) {
  return FapId(member.keyInteger(FapId::lowest, FapId::highest - 1));
}

inline SystemPhyPortId portKey(const JsonMembers& member) {
  return SystemPhyPortId(member.keyInteger(SystemPhyPortId::lowest, SystemPhyPortId::highest));
}

inline U16 smallKey(const JsonMembers& member) {
  return static_cast<U16>(member.keyInteger(0, most<U16>));
}

inline Mote::String nameKey(const JsonMembers& member) {
  return checkedName(member.value(), member.key());
}

inline IntfId intfKey(const JsonMembers& member) {
  return IntfId(nameKey(member));
}

/// Fills a collection from an object.
template <class Map, class ReadKey, class ReadItem>
void readMap(JsonValue object, Map& map, ReadKey readKey, ReadItem readItem) {
  for (JsonMembers in(object); in.next();) {
    const auto key = readKey(in);
    if (map.contains(key)) in.value().fail("repeated key");
    if constexpr (std::invocable<ReadItem, JsonValue>) {
      map.set(key, readItem(in.value()));
    } else {
      map.set(key, readItem(in));
    }
  }
}

/// Fills a set from an array.
template <class Map, class ReadKey>
void readSet(JsonValue array, Map& set, ReadKey readKey) {
  for (JsonElements in(array); in.next();) {
    const auto key = readKey(in.value());
    if (set.contains(key)) in.value().fail("repeated entry");
    set.set(key, true);
  }
}

}  // namespace loamshow

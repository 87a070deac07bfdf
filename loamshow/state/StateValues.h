#pragma once

// The values of a state file, each read as the type it stands for.

#include <limits>
#include <string_view>

#include "loamshow/json/JsonDocument.h"
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
  return checkedName(value, value.text());
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

inline FapId fapKey(JsonValue member) {
  return FapId(member.keyInteger(FapId::lowest, FapId::highest - 1));
}

inline SystemPhyPortId portKey(JsonValue member) {
  return SystemPhyPortId(member.keyInteger(SystemPhyPortId::lowest, SystemPhyPortId::highest));
}

inline U16 smallKey(JsonValue member) {
  return static_cast<U16>(member.keyInteger(0, most<U16>));
}

inline Mote::String nameKey(JsonValue member) {
  return checkedName(member, member.key());
}

inline IntfId intfKey(JsonValue member) {
  return IntfId(nameKey(member));
}

/// Fills a collection from an object.
template <class Map, class ReadKey, class ReadItem>
void readMap(JsonValue object, Map& map, ReadKey readKey, ReadItem readItem) {
  for (const JsonValue member : object.members()) {
    const auto key = readKey(member);
    if (map.contains(key)) member.fail("repeated key");
    map.set(key, readItem(member));
  }
}

/// Fills a set from an array.
template <class Map, class ReadKey>
void readSet(JsonValue array, Map& set, ReadKey readKey) {
  for (const JsonValue element : array.elements()) {
    const auto key = readKey(element);
    if (set.contains(key)) element.fail("repeated entry");
    set.set(key, true);
  }
}

}  // namespace loamshow

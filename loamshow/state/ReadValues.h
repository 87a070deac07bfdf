#pragma once

// Reads the values of a state file as their types. All functions throw InputError.

#include <limits>
#include <string_view>
#include <utility>

#include "loamshow/json/JsonReader.h"
#include "loamshow/state/Members.h"

namespace loamshow {

template <class T>
constexpr U64 most = std::numeric_limits<T>::max();

/// A default value to read into.
template <class T>
T blank() {
  if constexpr (requires { T::lowest; }) {
    return T(T::lowest);
  } else {
    return T();
  }
}

inline std::string_view checkedName(JsonValue value, std::string_view text) {
  if (text.find('\0') != std::string_view::npos) value.fail("a name cannot hold U+0000");
  return text;
}

// The keys of collections.

inline void readKey(const JsonMembers& member, Mote::String& key) {
  key = checkedName(member.value(), member.key());
}
inline void readKey(const JsonMembers& member, Nexo::IntfId& key) {
  key = Nexo::IntfId(checkedName(member.value(), member.key()));
}
/// A FAP other than the null FAP.
inline void readKey(const JsonMembers& member, Hardware::Loam::FapId& key) {
  using Hardware::Loam::FapId;
  key = FapId(member.keyInteger(FapId::lowest, FapId::highest - 1));
}
inline void readKey(const JsonMembers& member, Hardware::Loam::SystemPhyPortId& key) {
  using Port = Hardware::Loam::SystemPhyPortId;
  key = Port(member.keyInteger(Port::lowest, Port::highest));
}
inline void readKey(const JsonMembers& member, U16& key) {
  key = static_cast<U16>(member.keyInteger(0, most<U16>));
}

// Values.

inline void read(JsonValue value, bool& into) {
  into = value.boolean();
}
inline void read(JsonValue value, Vane::Seconds& into) {
  into = Vane::Seconds(value.real());
}
inline void read(JsonValue value, Mote::String& into) {
  into = checkedName(value, value.text());
}
inline void read(JsonValue value, Nexo::IntfId& into) {
  into = Nexo::IntfId(checkedName(value, value.text()));
}
inline void read(JsonValue value, Keel::MaybeU63& into) {
  into = value.isNull() ? Keel::MaybeU63()
                        : Keel::MaybeU63(static_cast<std::int64_t>(value.integer(0, most<std::int64_t>)));
}
template <std::unsigned_integral Number>
void read(JsonValue value, Number& into) {
  into = static_cast<Number>(value.integer(0, most<Number>));
}
template <class Id>
requires requires {
  Id::lowest;
}
void read(JsonValue value, Id& into) {
  into = Id(value.integer(Id::lowest, Id::highest));
}
template <class T>
void read(JsonValue value, Vane::Optional<T>& into) {
  read(value, into.emplace(blank<T>()));
}
template <U64 Highest, class Number>
void read(JsonValue value, UpTo<Highest, Number> into) {
  into.number = static_cast<Number>(value.integer(0, Highest));
}

// Parts that occur in one kind of object only, defined with that object.
void read(JsonValue value, Interfaces<std::vector<Nexo::IntfId>> into);
void read(JsonValue value, FabricMcastRange<SwitchState> into);
void read(JsonValue value, SwitchName<Mote::String> into);
void read(JsonValue value, Time<Mote::String> into);
void read(JsonValue value, LoamCounters::RecordTables& into);
void read(JsonValue value, DebugFaps<std::vector<DebugFap>> into);

/// Reads the part with the name of the current member.
class MemberReader {
 public:
  explicit MemberReader(JsonMembers& in) : in_(in) {}

  template <class Part>
  bool operator()(std::string_view name, Part&& part) {
    if (!in_.is(name)) return false;
    read(in_.value(), part);
    return true;
  }

 private:
  JsonMembers& in_;
};

template <class Object>
requires requires(MemberReader& reader, Object& object) {
  members(reader, object);
}
void read(JsonValue value, Object& into) {
  for (JsonMembers in(value); in.next();) {
    MemberReader reader(in);
    if (!members(reader, into)) in.unknown();
  }
}

template <class Item, class Key>
void readItem(JsonValue value, const Key& /*key*/, Item& item) {
  read(value, item);
}

/// Fills a map from an object.
template <class Map>
requires requires {
  typename Map::Item;
}
void read(JsonValue value, Map& into) {
  for (JsonMembers in(value); in.next();) {
    auto key = blank<typename Map::Key>();
    readKey(in, key);
    if (into.contains(key)) in.value().fail("repeated key");
    auto item = blank<typename Map::Item>();
    readItem(in.value(), key, item);
    into.set(key, std::move(item));
  }
}

template <class Map>
void read(JsonValue value, Set<Map> into) {
  for (JsonElements in(value); in.next();) {
    auto key = blank<typename Map::Key>();
    read(in.value(), key);
    if (!into.mayRepeat && into.map.contains(key)) in.value().fail("repeated entry");
    into.map.set(key, true);
  }
}

}  // namespace loamshow

#include "loamshow/state/Capture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "loamshow/state/Defaults.h"
#include "loamshow/state/Members.h"

namespace loamshow {

namespace {

using Brim::Counters::CounterBlockDescriptorPtrDir;
using Brim::Counters::CounterDescriptorDir;
using Brim::Counters::ShmemManager;
using LoamCounters::CounterQuad;
using LoamCounters::RecordTables;
using Nexo::IntfId;

/// The entry byte that every command uses.
constexpr U8 entry = 56;

// The order of keys: numbers as numbers, names by bytes.

template <class Key>
const Key& rank(const Key& key) {
  return key;
}
std::string_view rank(IntfId intf) {
  return intf.stringValue();
}
std::string_view rank(const Mote::String& name) {
  return name;
}
auto rank(const Hardware::Loam::PortMap& port) {
  return std::tuple(port.fapId, port.coreId, port.fapPortId);
}

template <class Key>
std::vector<Key> sorted(std::vector<Key> keys) {
  std::sort(keys.begin(), keys.end(),
            [](const Key& left, const Key& right) { return rank(left) < rank(right); });
  return keys;
}

std::string keyText(const Mote::String& name) {
  return std::string(name.view());
}
std::string keyText(IntfId intf) {
  return keyText(intf.stringValue());
}
std::string keyText(U64 number) {
  return std::to_string(number);
}
template <class Id>
requires requires {
  Id::lowest;
}
std::string keyText(Id id) {
  return std::to_string(id.value());
}

template <class Record>
Counted<Record> counted(const Record& record) {
  const CounterQuad total = record.total;
  if (total == sumOf(record)) return {record, {}};
  return {record, total};
}

/// Visits the members of objects and writes their parts.
class Capturer {
 public:
  Capturer(JsonWriter& out, bool withCounts) : out_(out), withCounts_(withCounts) {}

  template <class Part>
  bool operator()(std::string_view name, const Part& part) {
    const bool isCounts = name == "counters" || name == "snapshots";
    if (isDefault(part) || (isCounts && !withCounts_)) return false;
    out_.key(name);
    write(part);
    return false;
  }

  template <class Object>
  requires requires(Capturer& capturer, const Object& object) { members(capturer, object); }
  void write(const Object& object) {
    out_.beginObject();
    members(*this, object);
    out_.endObject();
  }

 private:
  template <class Number>
  requires std::is_arithmetic_v<Number>
  void write(Number number) { out_.value(number); }
  template <class Id>
  requires requires { Id::lowest; }
  void write(Id id) { out_.value(id.value()); }
  void write(Vane::Seconds time) {
    // A region may hold a time that is not finite, JSON cannot. `debug` shows the largest as invalid, too.
    constexpr double largest = std::numeric_limits<double>::max();
    const double seconds = time.value();
    out_.value(std::isfinite(seconds) ? seconds : std::copysign(largest, seconds));
  }
  void write(const Mote::String& name) { out_.value(name.view()); }
  void write(IntfId intf) { write(intf.stringValue()); }
  void write(Keel::MaybeU63 count) {
    if (count.null()) {
      out_.null();
    } else {
      out_.value(count.value());
    }
  }
  void write(const CounterQuad& quad) {
    writeList(std::array{quad.enqueuedPackets, quad.enqueuedBytes, quad.droppedPackets, quad.droppedBytes});
  }
  void write(const std::array<bool, 4>& flags) {
    out_.beginArray();
    for (U64 i = 0; i < flags.size(); ++i) {
      if (flags[i]) out_.value(i);
    }
    out_.endArray();
  }
  template <class T>
  void write(const Vane::Optional<T>& value) {
    write(*value);
  }

  // Parts with a special form.
  template <U64 Highest, class Number>
  void write(UpTo<Highest, Number> part) {
    write(part.number);
  }
  template <class String>
  void write(NameOrKey<String> part) {
    write(part.name);
  }
  template <class String>
  void write(SwitchName<String> part) {
    write(part.name);
  }
  template <class String>
  void write(Time<String> part) {
    write(part.text);
  }
  template <class Number>
  void write(FirstInstance<Number> part) {
    write(part.number);
  }
  template <class List>
  void write(Interfaces<List> part) {
    writeList(part.list);
  }
  template <class State>
  void write(FabricMcastRange<State> part) {
    write(FabricMcastVoqs{part.state.fabricMcastVoqMin, part.state.fabricMcastVoqMax});
  }
  void write(const CounterDescriptorDir::PtrConst& directory) {
    write(Directory{directory->valid(), directory->readiness(), directory->blockToDescriptor});
  }

  // Collections.
  template <class List>
  void writeList(const List& list) {
    out_.beginArray();
    for (const auto& item : list) write(item);
    out_.endArray();
  }
  template <class Map>
  requires requires { typename Map::Item; }
  void write(const Map& map) {
    out_.beginObject();
    for (const auto& key : sorted(map.keys())) {
      out_.key(keyText(key));
      writeItem(key, *map.find(key));
    }
    out_.endObject();
  }
  template <class Item>
  void writeItem(const auto& /*key*/, const Item& item) {
    write(item);
  }
  template <class Descriptor>
  void writeItem(const Mote::String& key, const Mote::Ptr<const Descriptor>& item) {
    write(Keyed<const Descriptor>{*item, key});
  }
  void writeItem(const Mote::String& /*key*/, const CounterBlockDescriptorPtrDir::PtrConst& block) {
    write(block->counterDescriptors);
  }
  template <class Map>
  void write(Set<Map> part) {
    writeList(sorted(part.map.keys()));
  }
  template <class Entry, class Map>
  void write(EntryList<Entry, Map> part) {
    out_.beginArray();
    for (const auto& key : sorted(part.map.keys())) write(Entry{key, *part.map.find(key)});
    out_.endArray();
  }

  // Counters.
  template <class Record>
  void write(Quads<Record> part) {
    writeList(writtenQuads(part.record));
  }
  template <class Record>
  void write(QuadPairs<Record> part) {
    const std::vector<CounterQuad> quads = writtenQuads(part.record);
    out_.beginArray();
    for (std::size_t i = 0; i < quads.size(); i += 2) {
      write(QuadPair{quads[i], i + 1 < quads.size() ? quads[i + 1] : CounterQuad()});
    }
    out_.endArray();
  }
  template <class Tables>
  void write(IngressTable<Tables> part) {
    std::vector<RecordTables::IngressKey> keys = part.tables.ingressKeys();
    const auto rankOf = [](const RecordTables::IngressKey& key) {
      return std::pair(key.source, rank(key.intfId));
    };
    std::sort(keys.begin(), keys.end(),
              [&](const auto& left, const auto& right) { return rankOf(left) < rankOf(right); });
    out_.beginArray();
    for (const auto& [source, intf] : keys) {
      write(IngressEntry{counted(part.tables.ingressTcCounter(source.fapId, source.coreId, intf)),
                         source.fapId, source.coreId, intf});
    }
    out_.endArray();
  }
  template <class Tables, class Record>
  void write(EgressTable<Tables, Record> part) {
    out_.beginObject();
    for (const IntfId intf : sorted((part.tables.*part.keys)())) {
      const Record record = (part.tables.*part.record)({intf, entry});
      out_.key(intf.stringValue().view());
      if constexpr (requires { typename Record::Index; }) {
        write(counted(record));
      } else {
        write(record);
      }
    }
    out_.endObject();
  }
  template <class Tables>
  void write(MtuTable<Tables> part) {
    out_.beginObject();
    for (const Hardware::Loam::FapId fap : sorted(part.tables.egressMtuKeys())) {
      const LoamCounters::EgressMtuCounter mtu = part.tables.egressMtuEnqDropCounter(fap);
      out_.key(keyText(fap));
      write(MtuEntry{mtu.enqueuedPackets(), mtu.droppedPackets(), part.tables.egressMtuTotalCounter(fap)});
    }
    out_.endObject();
  }

  // Debug counters.
  template <class List>
  void write(DebugFaps<List> part) {
    Vane::HashMap<Mote::String, DebugFapParts> faps;
    for (const DebugFap& fap : part.faps) {
      faps.set(fap.name,
               {fap.descriptor == nullptr ? nullptr : fap.descriptor->counterDescriptorDir, fap.manager});
    }
    write(faps);
  }
  void write(const ShmemManager::PtrConst& manager) {
    Vane::HashMap<Mote::String, U32> sizes;
    for (const auto& [name, counters] : manager->snapshots()) sizes.set(name, counters);
    out_.beginObject();
    for (const Mote::String& name : sorted(sizes.keys())) {
      out_.key(name.view());
      out_.beginArray();
      for (U32 i = 0; i < sizes.get(name); ++i) write(manager->counter(name, i));
      out_.endArray();
    }
    out_.endObject();
  }

  JsonWriter& out_;
  const bool withCounts_;
};

}  // namespace

void capture(const SwitchState& state, JsonWriter& out) {
  Capturer(out, true).write(state);
}

void captureDescription(const SwitchState& state, JsonWriter& out) {
  Capturer(out, false).write(state);
}

}  // namespace loamshow

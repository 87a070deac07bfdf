#include "loamshow/state/ReadValues.h"

namespace loamshow {

using Brim::Counters::Counter;
using Brim::Counters::CounterBlockDescriptorPtrDir;
using Brim::Counters::CounterDescriptorDir;
using Brim::Counters::MemoryShmemManager;
using Brim::Counters::ShmemManager;

/// The descriptor of a counter or of a field, whose name defaults to its key.
template <class Descriptor>
static void readItem(JsonValue value, const Mote::String& key, Mote::Ptr<const Descriptor>& item) {
  const auto descriptor = Mote::make<Descriptor>();
  descriptor->displayName = key;
  Keyed<Descriptor> keyed{*descriptor, key};
  read(value, keyed);
  item = descriptor;
}

static void readItem(JsonValue value, const Mote::String& /*key*/,
                     CounterBlockDescriptorPtrDir::PtrConst& item) {
  const auto block = Mote::make<CounterBlockDescriptorPtrDir>();
  read(value, block->counterDescriptors);
  item = block;
}

void read(JsonValue value, NameOrKey<Mote::String> into) {
  read(value, into.name);
}

void read(JsonValue value, FirstInstance<U32> into) {
  if (!value.isNull()) read(value, into.number);
}

void read(JsonValue value, std::vector<Counter>& into) {
  for (JsonElements in(value); in.next();) read(in.value(), into.emplace_back());
}

void read(JsonValue value, CounterDescriptorDir::PtrConst& into) {
  if (value.isNull()) return;
  Directory directory;
  read(value, directory);
  const auto made = Mote::make<CounterDescriptorDir>();
  made->validIs(directory.valid);
  made->readinessIs(directory.readiness);
  made->blockToDescriptor = directory.blocks;
  into = made;
}

void read(JsonValue value, ShmemManager::PtrConst& into) {
  const auto manager = Mote::make<MemoryShmemManager>();
  read(value, manager->values);
  into = manager;
}

void read(JsonValue value, DebugFaps<std::vector<DebugFap>> into) {
  Vane::HashMap<Mote::String, DebugFapParts> faps;
  read(value, faps);
  for (const auto& [name, parts] : faps) {
    const auto descriptor = Mote::make<LoamCounters::FapDescriptor>();
    descriptor->counterDescriptorDir = parts.directory;
    into.faps.push_back({name, descriptor, parts.snapshots});
  }
}

}  // namespace loamshow

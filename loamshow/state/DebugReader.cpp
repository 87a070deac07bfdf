#include "loamshow/state/StateReaders.h"
#include "loamshow/state/StateValues.h"

namespace loamshow {

namespace {

using Brim::Counters::Counter;
using Brim::Counters::CounterBlockDescriptorPtrDir;
using Brim::Counters::CounterDescriptor;
using Brim::Counters::CounterDescriptorDir;
using Brim::Counters::CounterFieldDescriptor;
using Brim::Counters::MemoryShmemManager;
using Brim::Counters::ShmemManager;

CounterFieldDescriptor::PtrConst field(const JsonMembers& member) {
  const auto field = Mote::make<CounterFieldDescriptor>();
  field->displayName = nameKey(member);
  for (JsonMembers in(member.value()); in.next();) {
    const JsonValue value = in.value();
    if (in.is("displayName")) {
      field->displayName = name(value);
    } else if (in.is("offset")) {
      field->offset = number<U32>(value);
    } else if (in.is("order")) {
      field->order = number<U32>(value);
    } else if (in.is("fetchType")) {
      field->fetchType = number<U8>(value);
    } else if (in.is("isDropCounter")) {
      field->isDropCounter = value.boolean();
    } else {
      in.unknown();
    }
  }
  return field;
}

CounterDescriptor::PtrConst descriptor(const JsonMembers& member) {
  const auto descriptor = Mote::make<CounterDescriptor>();
  descriptor->displayName = nameKey(member);
  for (JsonMembers in(member.value()); in.next();) {
    const JsonValue value = in.value();
    if (in.is("displayName")) {
      descriptor->displayName = name(value);
    } else if (in.is("offset")) {
      descriptor->offset = number<U32>(value);
    } else if (in.is("firstInstance")) {
      if (!value.isNull()) descriptor->firstInstance = number<U32>(value);
    } else if (in.is("numInstances")) {
      descriptor->numInstances = number<U32>(value);
    } else if (in.is("fetchType")) {
      descriptor->fetchType = number<U8>(value);
    } else if (in.is("displayType")) {
      descriptor->displayType = number<U8>(value);
    } else if (in.is("isDropCounter")) {
      descriptor->isDropCounter = value.boolean();
    } else if (in.is("fields")) {
      readMap(value, descriptor->fieldDescriptors, nameKey, field);
    } else {
      in.unknown();
    }
  }
  return descriptor;
}

CounterBlockDescriptorPtrDir::PtrConst block(JsonValue member) {
  const auto block = Mote::make<CounterBlockDescriptorPtrDir>();
  readMap(member, block->counterDescriptors, nameKey, descriptor);
  return block;
}

CounterDescriptorDir::PtrConst directory(JsonValue object) {
  if (object.isNull()) return nullptr;
  const auto directory = Mote::make<CounterDescriptorDir>();
  for (JsonMembers in(object); in.next();) {
    const JsonValue value = in.value();
    if (in.is("valid")) {
      directory->validIs(value.boolean());
    } else if (in.is("readiness")) {
      directory->readinessIs(number<U32>(value));
    } else if (in.is("blocks")) {
      readMap(value, directory->blockToDescriptor, nameKey, block);
    } else {
      in.unknown();
    }
  }
  return directory;
}

Counter counter(JsonValue object) {
  Counter counter;
  for (JsonMembers in(object); in.next();) {
    const JsonValue value = in.value();
    if (in.is("value")) {
      counter.value = number<U64>(value);
    } else if (in.is("firstUpdate")) {
      counter.firstUpdate = Vane::Seconds(value.real());
    } else if (in.is("lastUpdate")) {
      counter.lastUpdate = Vane::Seconds(value.real());
    } else if (in.is("lastDiscontinuity")) {
      counter.lastDiscontinuity = Vane::Seconds(value.real());
    } else if (in.is("overflow")) {
      counter.overflow = value.boolean();
    } else {
      in.unknown();
    }
  }
  return counter;
}

std::vector<Counter> counters(JsonValue array) {
  std::vector<Counter> counters;
  for (JsonElements records(array); records.next();) counters.push_back(counter(records.value()));
  return counters;
}

ShmemManager::PtrConst manager(JsonValue object) {
  const auto manager = Mote::make<MemoryShmemManager>();
  readMap(object, manager->values, nameKey, counters);
  return manager;
}

void readFaps(JsonValue object, std::vector<DebugFap>& faps) {
  Vane::HashMap<Mote::String, bool> seen;
  readMap(object, seen, nameKey, [&](const JsonMembers& member) {
    DebugFap& fap = faps.emplace_back(DebugFap{nameKey(member), nullptr, nullptr});
    const auto descriptor = Mote::make<LoamCounters::FapDescriptor>();
    for (JsonMembers in(member.value()); in.next();) {
      if (in.is("directory")) {
        descriptor->counterDescriptorDir = directory(in.value());
      } else if (in.is("snapshots")) {
        fap.manager = manager(in.value());
      } else {
        in.unknown();
      }
    }
    fap.descriptor = descriptor;
    return true;
  });
}

}  // namespace

void readDebug(JsonValue object, SwitchState& state) {
  for (JsonMembers in(object); in.next();) {
    if (in.is("switchTimeOffset")) {
      state.switchTimeOffset = Vane::Seconds(in.value().real());
    } else if (in.is("faps")) {
      readFaps(in.value(), state.debugFaps);
    } else {
      in.unknown();
    }
  }
}

}  // namespace loamshow

#include "LoamCounters/QueueCountersPrinter/IntfLists.h"

namespace LoamCounters {

namespace {

template <class E>
E instance(const Mote::String& name) {
  const auto found = Vane::enumFromName<E>(name);
  if (!found) throw Vane::RangeException(Mote::String(Vane::typeName<E>) + " has no value " + name);
  return *found;
}

}  // namespace

SpecialIngressIntfOrdering SpecialIngressIntfOrderingInstance(U32 number) {
  return Vane::enumFromNumber<SpecialIngressIntfOrdering>(number);
}

SpecialIngressIntfOrdering SpecialIngressIntfOrderingInstance(const Mote::String& name) {
  return instance<SpecialIngressIntfOrdering>(name);
}

SpecialEgressIntfOrdering SpecialEgressIntfOrderingInstance(U32 number) {
  return Vane::enumFromNumber<SpecialEgressIntfOrdering>(number);
}

SpecialEgressIntfOrdering SpecialEgressIntfOrderingInstance(const Mote::String& name) {
  return instance<SpecialEgressIntfOrdering>(name);
}

TcContainer::Ptr InterfaceTcContainer::tcPerIntfIs(Nexo::IntfId intfId) {
  if (const TcContainer::Ptr* found = containers_.find(intfId)) return *found;
  TcContainer::Ptr made = tcContainerFactory(intfId);
  containers_.set(intfId, made);
  return made;
}

}  // namespace LoamCounters

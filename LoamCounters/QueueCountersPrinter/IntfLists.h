#pragma once

// Interface lists, which are passed from the code that selects interfaces to the code that prints them, and
// the order of special interfaces.

#include <ostream>
#include <string_view>

#include "platform/CounterAgent.h"
#include "platform/HardwareLoam.h"
#include "platform/Mote.h"
#include "platform/Nexo.h"
#include "platform/Vane.h"

namespace LoamCounters {

/// The kinds of special ingress interface, in the order in which they are shown.
enum class SpecialIngressIntfOrdering : U8 {
  ingressIntfOlp,
  ingressIntfErp,
  ingressIntfL3Flood,
  ingressIntfRoutingRecirc,
  ingressIntfSharedRecirc,
  ingressIntfPlr,
  ingressIntfCpuRecirc,
  ingressIntfFabricMeshSwitch,
  ingressIntfSflowAccel,
  ingressIntfIpsec,
  ingressIntfEventor,
};

/// The kinds of special egress interface, in the order in which they are shown.
enum class SpecialEgressIntfOrdering : U8 {
  egressIntfOlp,
  egressIntfErp,
  egressIntfL3Flood,
  egressIntfRoutingRecirc,
  egressIntfSharedRecirc,
  egressIntfPlr,
  egressIntfCpuRecirc,
  egressIntfFabricMeshDrop,
  egressIntfSflowAccel,
  egressIntfIpsec,
  egressIntfEventor,
};

}  // namespace LoamCounters

template <>
struct Vane::Enumeration<LoamCounters::SpecialIngressIntfOrdering> {
  static constexpr std::string_view name = "LoamCounters::SpecialIngressIntfOrdering";
  static constexpr std::string_view values[] = {
      "ingressIntfOlp",          "ingressIntfErp",   "ingressIntfL3Flood",   "ingressIntfRoutingRecirc",
      "ingressIntfSharedRecirc", "ingressIntfPlr",   "ingressIntfCpuRecirc", "ingressIntfFabricMeshSwitch",
      "ingressIntfSflowAccel",   "ingressIntfIpsec", "ingressIntfEventor"};
};

template <>
struct Vane::Enumeration<LoamCounters::SpecialEgressIntfOrdering> {
  static constexpr std::string_view name = "LoamCounters::SpecialEgressIntfOrdering";
  static constexpr std::string_view values[] = {
      "egressIntfOlp",          "egressIntfErp",   "egressIntfL3Flood",   "egressIntfRoutingRecirc",
      "egressIntfSharedRecirc", "egressIntfPlr",   "egressIntfCpuRecirc", "egressIntfFabricMeshDrop",
      "egressIntfSflowAccel",   "egressIntfIpsec", "egressIntfEventor"};
};

namespace LoamCounters {

template <class E>
concept IntfOrdering =
    std::is_same_v<E, SpecialIngressIntfOrdering> || std::is_same_v<E, SpecialEgressIntfOrdering>;

/// The name of a kind. Throws RangeException for an unknown number.
template <IntfOrdering E>
Mote::String stringValue(E kind) {
  return Vane::enumName(kind);
}
template <IntfOrdering E>
std::ostream& operator<<(std::ostream& out, E kind) {
  return out << Vane::enumName(kind);
}

/// The kind of a number, and of a name. Throw RangeException if there is none.
SpecialIngressIntfOrdering SpecialIngressIntfOrderingInstance(U32 number);
SpecialIngressIntfOrdering SpecialIngressIntfOrderingInstance(const Mote::String& name);
SpecialEgressIntfOrdering SpecialEgressIntfOrderingInstance(U32 number);
SpecialEgressIntfOrdering SpecialEgressIntfOrderingInstance(const Mote::String& name);

/// Parses a kind's name. Returns false, without a change of `kind`, if there is no kind of that name.
template <IntfOrdering E>
bool sequenceToValue(const char* begin, const char* end, E& kind) {
  const auto found = Vane::enumFromName<E>(std::string_view(begin, static_cast<std::size_t>(end - begin)));
  if (found) kind = *found;
  return found.has_value();
}

/// Interfaces in the order in which they were enqueued, with repetitions.
class IntfList : public Vane::Entity<IntfList> {
 public:
  using Ptr = Mote::Ptr<IntfList>;
  using PtrConst = Mote::Ptr<const IntfList>;
  static constexpr std::string_view vaneName = "LoamCounters::IntfList";

  static Ptr IntfListIs() { return Mote::make<IntfList>(); }
  static const Vane::TypeData& fwkType();

  const Mote::RQueue<Nexo::IntfId>& intfs() const { return intfs_; }
  void intfEnq(Nexo::IntfId intf) { intfs_.enq(intf); }
  /// Removes and returns the front interface. On an empty queue, this function and the next two return the
  /// empty id.
  Nexo::IntfId intfDeq() { return intfs_.deq(); }
  Nexo::IntfId intfFront() const { return intfs_.front(); }
  Nexo::IntfId intfBack() const { return intfs_.back(); }
  void intfDelAll() { intfs_.clear(); }

 private:
  Mote::RQueue<Nexo::IntfId> intfs_;
};

inline IntfList::Ptr intfListFactory() {
  return IntfList::IntfListIs();
}

/// All interfaces that one command shows. A special map has an entry for a kind if a list was set for that
/// kind; the list may be empty.
class AllIntfList : public Vane::Entity<AllIntfList> {
 public:
  using Ptr = Mote::Ptr<AllIntfList>;
  using PtrConst = Mote::Ptr<const AllIntfList>;
  using IngressMap = Vane::OrderedMap<SpecialIngressIntfOrdering, IntfList::Ptr>;
  using EgressMap = Vane::OrderedMap<SpecialEgressIntfOrdering, IntfList::Ptr>;
  static constexpr std::string_view vaneName = "LoamCounters::AllIntfList";

  static Ptr AllIntfListIs() { return Mote::make<AllIntfList>(); }
  static const Vane::TypeData& fwkType();

  /// The user's interfaces, translated to those that own queues; may be null.
  IntfList::Ptr intfList() const { return intfList_; }
  void intfListIs(const IntfList::Ptr& list) { intfList_ = list; }

  /// The special ingress interfaces by kind. A look-up returns null if there is no entry; setting null
  /// removes the entry.
  const IngressMap& specialIngressIntfLists() const { return specialIngress_; }
  IntfList::Ptr specialIngressIntfList(SpecialIngressIntfOrdering kind) const {
    return specialIngress_.get(kind);
  }
  void specialIngressIntfListIs(SpecialIngressIntfOrdering kind, const IntfList::Ptr& list) {
    specialIngress_.setUnlessNull(kind, list);
  }
  IntfList::Ptr specialIngressIntfListDel(SpecialIngressIntfOrdering kind) {
    return specialIngress_.remove(kind);
  }
  void specialIngressIntfListDelAll() { specialIngress_.clear(); }

  /// The special egress interfaces, in the same way.
  const EgressMap& specialEgressIntfLists() const { return specialEgress_; }
  IntfList::Ptr specialEgressIntfList(SpecialEgressIntfOrdering kind) const {
    return specialEgress_.get(kind);
  }
  void specialEgressIntfListIs(SpecialEgressIntfOrdering kind, const IntfList::Ptr& list) {
    specialEgress_.setUnlessNull(kind, list);
  }
  IntfList::Ptr specialEgressIntfListDel(SpecialEgressIntfOrdering kind) {
    return specialEgress_.remove(kind);
  }
  void specialEgressIntfListDelAll() { specialEgress_.clear(); }

 private:
  IntfList::Ptr intfList_;
  IngressMap specialIngress_;
  EgressMap specialEgress_;
};

inline AllIntfList::Ptr allIntfListFactory() {
  return AllIntfList::AllIntfListIs();
}

/// A set of system ports in ascending order, each with a flag that is true for its members.
class OrderedSystemPhyPortId : public Vane::Entity<OrderedSystemPhyPortId> {
 public:
  using Ptr = Mote::Ptr<OrderedSystemPhyPortId>;
  using PtrConst = Mote::Ptr<const OrderedSystemPhyPortId>;
  using Port = Hardware::Loam::SystemPhyPortId;
  using Map = Vane::OrderedMap<Port, bool>;
  static constexpr std::string_view vaneName = "LoamCounters::OrderedSystemPhyPortId";

  static Ptr OrderedSystemPhyPortIdIs() { return Mote::make<OrderedSystemPhyPortId>(); }
  static const Vane::TypeData& fwkType();

  const Map& systemPhyPortIds() const { return ports_; }
  /// The port's flag, false when absent.
  bool systemPhyPortId(Port port) const { return ports_.get(port); }
  void systemPhyPortIdIs(Port port, bool member) { ports_.set(port, member); }
  bool systemPhyPortIdDel(Port port) { return ports_.remove(port); }
  void systemPhyPortIdDelAll() { ports_.clear(); }

 private:
  Map ports_;
};

inline OrderedSystemPhyPortId::Ptr orderedSystemPhyPortIdFactory() {
  return OrderedSystemPhyPortId::OrderedSystemPhyPortIdIs();
}

/// The ingress counters of one interface by traffic class.
class TcContainer : public Vane::Entity<TcContainer> {
 public:
  using Ptr = Mote::Ptr<TcContainer>;
  using PtrConst = Mote::Ptr<const TcContainer>;
  using Map = Vane::OrderedMap<U32, IngressCounter>;
  static constexpr std::string_view vaneName = "LoamCounters::TcContainer";

  explicit TcContainer(Nexo::IntfId intfId) : intfId_(intfId) {}
  static Ptr TcContainerIs(Nexo::IntfId intfId) { return Mote::make<TcContainer>(intfId); }
  static const Vane::TypeData& fwkType();

  Nexo::IntfId intfId() const { return intfId_; }

  const Map& tcs() const { return tcs_; }
  /// The class's counters, all zero if absent.
  IngressCounter tc(U32 trafficClass) const { return tcs_.get(trafficClass); }
  void tcIs(U32 trafficClass, const IngressCounter& counter) { tcs_.set(trafficClass, counter); }
  IngressCounter tcDel(U32 trafficClass) { return tcs_.remove(trafficClass); }
  void tcDelAll() { tcs_.clear(); }

 private:
  Nexo::IntfId intfId_;
  Map tcs_;
};

inline TcContainer::Ptr tcContainerFactory(Nexo::IntfId intfId) {
  return TcContainer::TcContainerIs(intfId);
}

/// The counters of each interface, in one container per interface.
class InterfaceTcContainer : public Vane::Entity<InterfaceTcContainer> {
 public:
  using Ptr = Mote::Ptr<InterfaceTcContainer>;
  using PtrConst = Mote::Ptr<const InterfaceTcContainer>;
  using Map = Vane::HashMap<Nexo::IntfId, TcContainer::Ptr>;
  static constexpr std::string_view vaneName = "LoamCounters::InterfaceTcContainer";

  static Ptr InterfaceTcContainerIs() { return Mote::make<InterfaceTcContainer>(); }
  static const Vane::TypeData& fwkType();

  const Map& tcPerIntfs() const { return containers_; }
  /// The interface's container, null if absent.
  TcContainer::Ptr tcPerIntf(Nexo::IntfId intfId) const { return containers_.get(intfId); }
  /// The interface's container, created if absent.
  TcContainer::Ptr tcPerIntfIs(Nexo::IntfId intfId);
  TcContainer::Ptr tcPerIntfDel(Nexo::IntfId intfId) { return containers_.remove(intfId); }
  void tcPerIntfDelAll() { containers_.clear(); }

 private:
  Map containers_;
};

inline InterfaceTcContainer::Ptr interfaceTcContainerFactory() {
  return InterfaceTcContainer::InterfaceTcContainerIs();
}

}  // namespace LoamCounters

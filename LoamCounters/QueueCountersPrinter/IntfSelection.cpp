#include "LoamCounters/QueueCountersPrinter/IntfSelection.h"

#include <algorithm>

#include "platform/tabula.h"

namespace LoamCounters {

namespace {

using Hardware::Loam::Status;
using Hardware::Loam::SystemPhyPortId;

constexpr U32 fabricMeshSwitchPort = 11;

/// The kinds of special interface that exist on both sides, as values of one side, and the setter of that
/// side's map.
struct IngressSide {
  using Kind = SpecialIngressIntfOrdering;
  static constexpr Kind olp = Kind::ingressIntfOlp;
  static constexpr Kind l3Flood = Kind::ingressIntfL3Flood;
  static constexpr Kind routingRecirc = Kind::ingressIntfRoutingRecirc;
  static constexpr Kind sharedRecirc = Kind::ingressIntfSharedRecirc;
  static constexpr Kind plr = Kind::ingressIntfPlr;
  static constexpr Kind cpuRecirc = Kind::ingressIntfCpuRecirc;
  static constexpr Kind sflowAccel = Kind::ingressIntfSflowAccel;
  static constexpr Kind ipsec = Kind::ingressIntfIpsec;
  static constexpr Kind eventor = Kind::ingressIntfEventor;
  static constexpr auto set = &AllIntfList::specialIngressIntfListIs;
};

struct EgressSide {
  using Kind = SpecialEgressIntfOrdering;
  static constexpr Kind olp = Kind::egressIntfOlp;
  static constexpr Kind l3Flood = Kind::egressIntfL3Flood;
  static constexpr Kind routingRecirc = Kind::egressIntfRoutingRecirc;
  static constexpr Kind sharedRecirc = Kind::egressIntfSharedRecirc;
  static constexpr Kind plr = Kind::egressIntfPlr;
  static constexpr Kind cpuRecirc = Kind::egressIntfCpuRecirc;
  static constexpr Kind sflowAccel = Kind::egressIntfSflowAccel;
  static constexpr Kind ipsec = Kind::egressIntfIpsec;
  static constexpr Kind eventor = Kind::egressIntfEventor;
  static constexpr auto set = &AllIntfList::specialEgressIntfListIs;
};

/// Sets the lists of one side from a status.
template <class Side>
class Discovery {
 public:
  using Kind = typename Side::Kind;

  Discovery(const AllIntfList::Ptr& lists, const Status::PtrConst& status) : lists_(lists), status_(status) {}

  /// A kind whose ports are the items of an ordered collection.
  template <class Map>
  void ports(Kind kind, const Map& map) {
    const IntfList::Ptr list = intfListFactory();
    for (const auto& [key, port] : map) {
      tabula::checkInterrupt();
      intfListEnq(port.value(), list, status_);
    }
    set(kind, list);
  }

  void recirculation() {
    const IntfList::Ptr l3Flood = intfListFactory();
    const IntfList::Ptr routing = intfListFactory();
    const IntfList::Ptr shared = intfListFactory();
    const IntfList::Ptr plr = intfListFactory();
    const IntfList::Ptr cpu = intfListFactory();
    for (const auto& [recircPort, port] : status_->recircPort) {
      tabula::checkInterrupt();
      const U8 type = recircPort.recircType;
      IntfList::Ptr list;
      if (type >= 1 && type <= 4) list = l3Flood;
      if (type == 8) list = routing;
      if (type == 9) list = plr;
      if (type >= 10 && type <= 17) list = shared;
      if (type == 20) list = cpu;
      if (list != nullptr) intfListEnq(port.value(), list, status_);
    }
    set(Side::l3Flood, l3Flood);
    set(Side::routingRecirc, routing);
    set(Side::sharedRecirc, shared);
    set(Side::plr, plr);
    if (status_->cpuRecircEnabled) set(Side::cpuRecirc, cpu);
  }

  void port(Kind kind, U32 systemPhyPortId) {
    const IntfList::Ptr list = intfListFactory();
    intfListEnq(systemPhyPortId, list, status_);
    set(kind, list);
  }

  /// The map is by FAP name, and FAPs may share a port: each port is listed once, in ascending order.
  void sflowAccel() {
    const OrderedSystemPhyPortId::Ptr ordered = orderedSystemPhyPortIdFactory();
    for (const auto& [fapName, port] : status_->fapToSflowAccelSppid) {
      tabula::checkInterrupt();
      ordered->systemPhyPortIdIs(port, true);
    }
    const IntfList::Ptr list = intfListFactory();
    for (const auto& [port, member] : ordered->systemPhyPortIds()) intfListEnq(port.value(), list, status_);
    set(Side::sflowAccel, list);
  }

 private:
  void set(Kind kind, const IntfList::Ptr& list) { (lists_.get()->*Side::set)(kind, list); }

  const AllIntfList::Ptr& lists_;
  const Status::PtrConst& status_;
};

SystemPhyPortId portOfIntf(Nexo::IntfId intf, const Status::PtrConst& status) {
  const SystemPhyPortId* port = status->intfIdToSppid.find(intf);
  return port == nullptr ? Hardware::Loam::nullPort : *port;
}

bool intfUsesEgqMode(bool queueMode, Nexo::IntfId intf, const Status::PtrConst& status, bool noFapValue) {
  const FapId fap = fapIdOfIntf(intf, status);
  if (fap.isNull()) return noFapValue;
  return useEgqQueueMode(status->fapRevision.get(fap).major) == queueMode;
}

bool anyFapUsingEgqMode(bool queueMode, const Status::PtrConst& status) {
  return std::any_of(status->fapRevision.begin(), status->fapRevision.end(),
                     [&](const auto& entry) { return useEgqQueueMode(entry.item.major) == queueMode; });
}

}  // namespace

void intfListEnq(U32 systemPhyPortId, const IntfList::Ptr& list, const Status::PtrConst& status) {
  const Nexo::IntfId intf = status->sppidToIntfId.get(SystemPhyPortId(systemPhyPortId));
  if (intf != Nexo::IntfId()) list->intfEnq(intf);
}

void appendSpecialIngressInterfaceNames(const AllIntfList::Ptr& allIntfList, const Status::PtrConst& status) {
  if (status == nullptr) return;
  Discovery<IngressSide> discovery(allIntfList, status);
  discovery.ports(IngressSide::olp, status->olpPort);
  discovery.ports(SpecialIngressIntfOrdering::ingressIntfErp, status->erpPort);
  discovery.recirculation();
  discovery.port(SpecialIngressIntfOrdering::ingressIntfFabricMeshSwitch, fabricMeshSwitchPort);
  discovery.sflowAccel();
  discovery.ports(IngressSide::ipsec, status->ipsecPort);
  discovery.ports(IngressSide::eventor, status->eventorPort);
}

void appendSpecialEgressInterfaceNames(const AllIntfList::Ptr& allIntfList, const Status::PtrConst& status) {
  if (status == nullptr) return;
  Discovery<EgressSide> discovery(allIntfList, status);
  discovery.ports(EgressSide::olp, status->olpPort);
  discovery.recirculation();
  discovery.ports(SpecialEgressIntfOrdering::egressIntfFabricMeshDrop, status->fabricMeshDropPort);
  discovery.sflowAccel();
  discovery.ports(EgressSide::ipsec, status->ipsecPort);
  discovery.ports(EgressSide::eventor, status->eventorPort);
}

void appendWithVoqInterfaceNames(const AllIntfList::Ptr& allIntfList, const IntfList::PtrConst& intfList,
                                 const Status::PtrConst& status, const LoamTm::TmMapping::PtrConst& tmMapping,
                                 const Hardware::Loam::InternalLagClientStatus::PtrConst& internalLagStatus,
                                 bool voqPortsOnly) {
  if (intfList == nullptr) {
    allIntfList->intfListIs(nullptr);
    return;
  }
  const IntfList::Ptr translated = intfListFactory();
  if (status != nullptr) {
    for (const Nexo::IntfId intf : intfList->intfs()) {
      tabula::checkInterrupt();
      const SystemPhyPortId port = portOfIntf(intf, status);
      if (tmMapping != nullptr && tmMapping->portTmMap.contains(port)) {
        intfListEnq(port.value(), translated, status);
      } else if (!voqPortsOnly && intfUsesLagIngressVoqCounterTable(intf, internalLagStatus)) {
        translated->intfEnq(intf);
      }
    }
  }
  allIntfList->intfListIs(translated);
}

FapId fapIdOfIntf(Nexo::IntfId intf, const Status::PtrConst& status) {
  return status->portMap(portOfIntf(intf, status)).fapId;
}

bool intfUsesEgqQueueMode(Nexo::IntfId intf, const Status::PtrConst& status, bool noFapValue) {
  return intfUsesEgqMode(true, intf, status, noFapValue);
}

bool intfUsesEgqPortMode(Nexo::IntfId intf, const Status::PtrConst& status, bool noFapValue) {
  return intfUsesEgqMode(false, intf, status, noFapValue);
}

bool anyFapUsingEgqQueueMode(const Status::PtrConst& status) {
  return anyFapUsingEgqMode(true, status);
}

bool anyFapUsingEgqPortMode(const Status::PtrConst& status) {
  return anyFapUsingEgqMode(false, status);
}

}  // namespace LoamCounters

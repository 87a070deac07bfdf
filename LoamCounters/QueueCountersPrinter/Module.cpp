// The registration of this unit: its types, with the numbers, names, kinds, value types and parameters of
// their attributes.

#include <array>
#include <iostream>
#include <string_view>

#include "LoamCounters/QueueCountersPrinter/CountersPrinter.h"
#include "LoamCounters/QueueCountersPrinter/IntfLists.h"
#include "platform/Vane.h"

namespace LoamCounters {

namespace {

using Vane::AttributeDescriptor;

constexpr AttributeDescriptor orderedSystemPhyPortId[] = {
    Vane::collection<&OrderedSystemPhyPortId::systemPhyPortIds, &OrderedSystemPhyPortId::systemPhyPortIdIs,
                     &OrderedSystemPhyPortId::systemPhyPortIdDel>("systemPhyPortId"),
};

constexpr AttributeDescriptor intfList[] = {
    Vane::queue<&IntfList::intfs, &IntfList::intfEnq, &IntfList::intfDeq>("intf"),
};

constexpr AttributeDescriptor allIntfList[] = {
    Vane::attribute<&AllIntfList::intfList, &AllIntfList::intfListIs>("intfList"),
    Vane::collection<&AllIntfList::specialIngressIntfLists, &AllIntfList::specialIngressIntfListIs,
                     &AllIntfList::specialIngressIntfListDel>("specialIngressIntfList"),
    Vane::collection<&AllIntfList::specialEgressIntfLists, &AllIntfList::specialEgressIntfListIs,
                     &AllIntfList::specialEgressIntfListDel>("specialEgressIntfList"),
};

constexpr AttributeDescriptor tcContainer[] = {
    Vane::attribute<&TcContainer::intfId>("intfId"),
    Vane::collection<&TcContainer::tcs, &TcContainer::tcIs, &TcContainer::tcDel>("tc"),
};

constexpr AttributeDescriptor interfaceTcContainer[] = {
    Vane::instantiatingCollection<&InterfaceTcContainer::tcPerIntfs, &InterfaceTcContainer::tcPerIntfIs,
                                  &InterfaceTcContainer::tcPerIntfDel>("tcPerIntf", "intfId"),
};

constexpr AttributeDescriptor countersPrinter[] = {
    Vane::attribute<&CountersPrinter::loamStatus>("loamStatus"),
    Vane::attribute<&CountersPrinter::tmMapping>("tmMapping"),
    Vane::attribute<&CountersPrinter::internalLagStatus>("internalLagStatus"),
    Vane::attribute<&CountersPrinter::trafficClassMapping>("trafficClassMapping"),
    Vane::attribute<&CountersPrinter::counterEngineStatus>("counterEngineStatus"),
    Vane::attribute<&CountersPrinter::entityManager>("entityManager"),
    Vane::attribute<&CountersPrinter::skeinMountMode>("skeinMountMode"),
    Vane::instantiating<&CountersPrinter::fapCounterAccessor, &CountersPrinter::fapCounterAccessorIs,
                        &CountersPrinter::fapCounterAccessorDel>(
        "fapCounterAccessor", "loamStatus", "tmMapping", "internalLagStatus", "trafficClassMapping",
        "entityManager", "skeinMountMode"),
    Vane::instantiating<&CountersPrinter::egressAclCountersAccessor,
                        &CountersPrinter::egressAclCountersAccessorIs,
                        &CountersPrinter::egressAclCountersAccessorDel>("egressAclCountersAccessor",
                                                                        "loamStatus", "counterEngineStatus",
                                                                        "entityManager", "isMountModeWriter"),
    Vane::operation<&CountersPrinter::showInterfacesQueueCounters>("showInterfacesQueueCounters", "fd", "fmt",
                                                                   "intfList", "internal", "detail"),
    Vane::operation<&CountersPrinter::showInterfacesQueueIngressCounters>(
        "showInterfacesQueueIngressCounters", "fd", "fmt", "intfList", "internal", "detail"),
    Vane::operation<&CountersPrinter::showCpuQueueCounters>("showCpuQueueCounters", "fd", "fmt", "summary",
                                                            "perInputPortCoppVoqsSupported"),
    Vane::operation<&CountersPrinter::showInterfacesQueueDropsCounters>("showInterfacesQueueDropsCounters",
                                                                        "fd", "fmt", "intfList"),
    Vane::operation<&CountersPrinter::showInterfacesEgressAclDropCounters>(
        "showInterfacesEgressAclDropCounters", "fd", "fmt", "intfList"),
    Vane::operation<&CountersPrinter::showInterfacesEgressMtuCounters>("showInterfacesEgressMtuCounters",
                                                                       "fd", "fmt"),
};

constexpr U32 firstNumber = 130;

constexpr Vane::TypeDescriptor types[] = {
    Vane::enumeration<SpecialIngressIntfOrdering>(),
    Vane::enumeration<SpecialEgressIntfOrdering>(),
    Vane::entity<&OrderedSystemPhyPortId::OrderedSystemPhyPortIdIs>(firstNumber, orderedSystemPhyPortId),
    Vane::entity<&IntfList::IntfListIs>(firstNumber + 1, intfList),
    Vane::entity<&AllIntfList::AllIntfListIs>(firstNumber, allIntfList),
    Vane::entity<&TcContainer::TcContainerIs>(firstNumber, tcContainer, "intfId"),
    Vane::entity<&InterfaceTcContainer::InterfaceTcContainerIs>(firstNumber, interfaceTcContainer),
    Vane::entity<&CountersPrinter::CountersPrinterIs>(
        firstNumber, countersPrinter, "loamStatus", "tmMapping", "internalLagStatus", "trafficClassMapping",
        "counterEngineStatus", "entityManager", "skeinMountMode"),
};

constexpr std::string_view uses[] = {
    "Nexo/IntfId",          "LoamCounters/CounterEngine", "Hardware/Loam/InternalLag",
    "Hardware/Loam/Status", "LoamCounters/VoqCounters",   "LoamCounters/EgressAclCountersAccessor",
};

}  // namespace

// The symbol of this unit in the exporting library.
// NOLINTNEXTLINE(bugprone-reserved-identifier,readability-identifier-naming)
extern "C" constexpr Vane::ModuleDescriptor _QueueCountersPrinter_824cd50bdcbaefe2_vaneModule{
    "LoamCounters/QueueCountersPrinter", "_QueueCountersPrinter_824cd50bdcbaefe2_vaneModule", uses, types};

namespace {

constexpr const Vane::ModuleDescriptor& module = _QueueCountersPrinter_824cd50bdcbaefe2_vaneModule;

const std::ios_base::Init standardStreams;
const Vane::Registration registration(module);

}  // namespace

const Vane::TypeData& OrderedSystemPhyPortId::fwkType() {
  return Vane::registered<OrderedSystemPhyPortId, module>();
}

const Vane::TypeData& IntfList::fwkType() {
  return Vane::registered<IntfList, module>();
}

const Vane::TypeData& AllIntfList::fwkType() {
  return Vane::registered<AllIntfList, module>();
}

const Vane::TypeData& TcContainer::fwkType() {
  return Vane::registered<TcContainer, module>();
}

const Vane::TypeData& InterfaceTcContainer::fwkType() {
  return Vane::registered<InterfaceTcContainer, module>();
}

const Vane::TypeData& CountersPrinter::fwkType() {
  return Vane::registered<CountersPrinter, module>();
}

}  // namespace LoamCounters

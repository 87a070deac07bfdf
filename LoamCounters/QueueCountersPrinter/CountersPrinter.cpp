#include "LoamCounters/QueueCountersPrinter/CountersPrinter.h"

#include <utility>

#include "LoamCounters/Answer.h"
#include "LoamCounters/QueueCountersPrinter/Commands.h"
#include "LoamCounters/QueueCountersPrinter/IntfSelection.h"
#include "platform/tabula.h"

namespace LoamCounters {

namespace {

/// The accessor held, when it was made from these sources, else a new one in its place.
template <class Accessor, class Sources>
Mote::Ptr<Accessor> instantiated(Mote::Ptr<Accessor>& held, Sources sources) {
  if (held == nullptr || !(held->sources() == sources)) held = Mote::make<Accessor>(std::move(sources));
  return held;
}

}  // namespace

CountersPrinter::CountersPrinter(const StatusPtr& loamStatus, const TmMappingPtr& tmMapping,
                                 const LagStatusPtr& internalLagStatus,
                                 const TcMappingPtr& trafficClassMapping,
                                 const EngineStatusPtr& counterEngineStatus,
                                 const EntityManagerPtr& entityManager, bool skeinMountMode)
    : loamStatus_(loamStatus),
      tmMapping_(tmMapping),
      internalLagStatus_(internalLagStatus),
      trafficClassMapping_(trafficClassMapping),
      counterEngineStatus_(counterEngineStatus),
      entityManager_(entityManager),
      skeinMountMode_(skeinMountMode) {
  fapCounterAccessorIs(loamStatus, tmMapping, internalLagStatus, trafficClassMapping, entityManager,
                       skeinMountMode);
  egressAclCountersAccessorIs(loamStatus, counterEngineStatus, entityManager, false);
}

CountersPrinter::Ptr CountersPrinter::CountersPrinterIs(
    const StatusPtr& loamStatus, const TmMappingPtr& tmMapping, const LagStatusPtr& internalLagStatus,
    const TcMappingPtr& trafficClassMapping, const EngineStatusPtr& counterEngineStatus,
    const EntityManagerPtr& entityManager, bool skeinMountMode) {
  return Mote::make<CountersPrinter>(loamStatus, tmMapping, internalLagStatus, trafficClassMapping,
                                     counterEngineStatus, entityManager, skeinMountMode);
}

CountersPrinter::Ptr countersPrinterFactory(const CountersPrinter::StatusPtr& loamStatus,
                                            const CountersPrinter::TmMappingPtr& tmMapping,
                                            const CountersPrinter::LagStatusPtr& internalLagStatus,
                                            const CountersPrinter::TcMappingPtr& trafficClassMapping,
                                            const CountersPrinter::EngineStatusPtr& counterEngineStatus,
                                            const CountersPrinter::EntityManagerPtr& entityManager,
                                            bool skeinMountMode) {
  return CountersPrinter::CountersPrinterIs(loamStatus, tmMapping, internalLagStatus, trafficClassMapping,
                                            counterEngineStatus, entityManager, skeinMountMode);
}

CounterEngineAccessor::Ptr CountersPrinter::fapCounterAccessorIs(
    const StatusPtr& loamStatus, const TmMappingPtr& tmMapping, const LagStatusPtr& internalLagStatus,
    const TcMappingPtr& trafficClassMapping, const EntityManagerPtr& entityManager, bool skeinMountMode) {
  return instantiated(fapCounterAccessor_,
                      CounterEngineSources{loamStatus, tmMapping, internalLagStatus, trafficClassMapping,
                                           entityManager, skeinMountMode});
}

CounterEngineAccessor::Ptr CountersPrinter::fapCounterAccessorDel() {
  return std::exchange(fapCounterAccessor_, nullptr);
}

EgressAclCountersAccessor::Ptr CountersPrinter::egressAclCountersAccessorIs(
    const StatusPtr& loamStatus, const EngineStatusPtr& counterEngineStatus,
    const EntityManagerPtr& entityManager, bool isMountModeWriter) {
  return instantiated(egressAclCountersAccessor_,
                      EgressAclSources{loamStatus, counterEngineStatus, entityManager, isMountModeWriter});
}

EgressAclCountersAccessor::Ptr CountersPrinter::egressAclCountersAccessorDel() {
  return std::exchange(egressAclCountersAccessor_, nullptr);
}

AllIntfList::Ptr CountersPrinter::voqIntfs(const IntfList::PtrConst& intfList, bool voqPortsOnly) const {
  AllIntfList::Ptr lists = allIntfListFactory();
  appendWithVoqInterfaceNames(lists, intfList, loamStatus_, tmMapping_, internalLagStatus_, voqPortsOnly);
  return lists;
}

// Every operation holds counted handles of its own to what it reads, so that an accessor replaced during the
// call stays until the call ends.

void CountersPrinter::showInterfacesQueueCounters(U32 fd, U32 fmt, const IntfList::PtrConst& intfList,
                                                  bool internal, bool /*detail*/) const {
  tabula::endingOnInterrupt([&, status = loamStatus_, accessor = fapCounterAccessor()] {
    const AllIntfList::Ptr lists = voqIntfs(intfList, false);
    if (internal) {
      appendSpecialIngressInterfaceNames(lists, status);
      appendSpecialEgressInterfaceNames(lists, status);
    }
    answer(fd, fmt, [&](tabula::Printer& printer) {
      printShowInterfacesQueueCounters(printer, fmt, accessor, lists, status, internal);
    });
  });
}

void CountersPrinter::showInterfacesQueueIngressCounters(U32 fd, U32 fmt, const IntfList::PtrConst& intfList,
                                                         bool internal, bool /*detail*/) const {
  tabula::endingOnInterrupt([&, status = loamStatus_, accessor = fapCounterAccessor()] {
    const AllIntfList::Ptr lists = voqIntfs(intfList, true);
    if (internal) appendSpecialIngressInterfaceNames(lists, status);
    answer(fd, fmt, [&](tabula::Printer& printer) {
      printShowInterfacesQueueIngressCounters(printer, accessor, lists, status, internal);
    });
  });
}

void CountersPrinter::showCpuQueueCounters(U32 fd, U32 fmt, bool summary,
                                           bool perInputPortCoppVoqsSupported) const {
  tabula::endingOnInterrupt([&, status = loamStatus_, accessor = fapCounterAccessor()] {
    answer(fd, fmt, [&](tabula::Printer& printer) {
      printShowCpuQueueCounters(printer, fmt, accessor, status, summary, perInputPortCoppVoqsSupported);
    });
  });
}

void CountersPrinter::showInterfacesQueueDropsCounters(U32 fd, U32 fmt,
                                                       const IntfList::PtrConst& intfList) const {
  tabula::endingOnInterrupt([&, status = loamStatus_, accessor = fapCounterAccessor()] {
    const AllIntfList::Ptr lists = voqIntfs(intfList, true);
    answer(fd, fmt, [&](tabula::Printer& printer) {
      printShowInterfacesQueueDropsCounters(printer, fmt, accessor, lists, status);
    });
  });
}

void CountersPrinter::showInterfacesEgressAclDropCounters(U32 fd, U32 fmt,
                                                          const IntfList::PtrConst& intfList) {
  tabula::endingOnInterrupt([&, status = loamStatus_, accessor = egressAclCountersAccessor()] {
    answer(fd, fmt, [&](tabula::Printer& printer) {
      printShowInterfacesEgressAclDropCounters(printer, fmt, intfList, accessor, status);
    });
  });
}

void CountersPrinter::showInterfacesEgressMtuCounters(U32 fd, U32 fmt) {
  tabula::endingOnInterrupt(
      [&, status = loamStatus_, accessor = fapCounterAccessor(), aclAccessor = egressAclCountersAccessor()] {
        answer(fd, fmt, [&](tabula::Printer& printer) {
          printShowInterfacesEgressMtuCounters(printer, fmt, accessor, aclAccessor, status);
        });
      });
}

}  // namespace LoamCounters

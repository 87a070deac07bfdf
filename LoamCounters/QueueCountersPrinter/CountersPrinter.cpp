#include "LoamCounters/QueueCountersPrinter/CountersPrinter.h"

#include "LoamCounters/Answer.h"
#include "LoamCounters/QueueCountersPrinter/Commands.h"
#include "LoamCounters/QueueCountersPrinter/IntfSelection.h"
#include "platform/tabula.h"

namespace LoamCounters {

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
  return fapCounterAccessor_.is(loamStatus, tmMapping, internalLagStatus, trafficClassMapping, entityManager,
                                skeinMountMode);
}

CounterEngineAccessor::Ptr CountersPrinter::fapCounterAccessorDel() {
  return fapCounterAccessor_.del();
}

EgressAclCountersAccessor::Ptr CountersPrinter::egressAclCountersAccessorIs(
    const StatusPtr& loamStatus, const EngineStatusPtr& counterEngineStatus,
    const EntityManagerPtr& entityManager, bool isMountModeWriter) {
  return egressAclCountersAccessor_.is(loamStatus, counterEngineStatus, entityManager, isMountModeWriter);
}

EgressAclCountersAccessor::Ptr CountersPrinter::egressAclCountersAccessorDel() {
  return egressAclCountersAccessor_.del();
}

AllIntfList::Ptr CountersPrinter::voqIntfs(const IntfList::PtrConst& intfList, bool voqPortsOnly) const {
  AllIntfList::Ptr lists = allIntfListFactory();
  appendWithVoqInterfaceNames(lists, intfList, loamStatus_, tmMapping_, internalLagStatus_, voqPortsOnly);
  return lists;
}

// Every operation holds counted handles of its own to what it reads, so that an accessor replaced during the
// call stays until its work ends, and is released before an interrupt is spoken of.

void CountersPrinter::showInterfacesQueueCounters(U32 fd, U32 fmt, const IntfList::PtrConst& intfList,
                                                  bool internal, bool /*detail*/) const {
  tabula::endingOnInterrupt([&] {
    const auto status = loamStatus_;
    const auto accessor = fapCounterAccessor();
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
  tabula::endingOnInterrupt([&] {
    const auto status = loamStatus_;
    const auto accessor = fapCounterAccessor();
    const AllIntfList::Ptr lists = voqIntfs(intfList, true);
    if (internal) appendSpecialIngressInterfaceNames(lists, status);
    answer(fd, fmt, [&](tabula::Printer& printer) {
      printShowInterfacesQueueIngressCounters(printer, accessor, lists, status, internal);
    });
  });
}

void CountersPrinter::showCpuQueueCounters(U32 fd, U32 fmt, bool summary,
                                           bool perInputPortCoppVoqsSupported) const {
  tabula::endingOnInterrupt([&] {
    const auto status = loamStatus_;
    const auto accessor = fapCounterAccessor();
    answer(fd, fmt, [&](tabula::Printer& printer) {
      printShowCpuQueueCounters(printer, fmt, accessor, status, summary, perInputPortCoppVoqsSupported);
    });
  });
}

void CountersPrinter::showInterfacesQueueDropsCounters(U32 fd, U32 fmt,
                                                       const IntfList::PtrConst& intfList) const {
  tabula::endingOnInterrupt([&] {
    const auto status = loamStatus_;
    const auto accessor = fapCounterAccessor();
    const AllIntfList::Ptr lists = voqIntfs(intfList, true);
    answer(fd, fmt, [&](tabula::Printer& printer) {
      printShowInterfacesQueueDropsCounters(printer, fmt, accessor, lists, status);
    });
  });
}

void CountersPrinter::showInterfacesEgressAclDropCounters(U32 fd, U32 fmt,
                                                          const IntfList::PtrConst& intfList) {
  tabula::endingOnInterrupt([&] {
    const auto status = loamStatus_;
    const auto accessor = egressAclCountersAccessor();
    answer(fd, fmt, [&](tabula::Printer& printer) {
      printShowInterfacesEgressAclDropCounters(printer, fmt, intfList, accessor, status);
    });
  });
}

void CountersPrinter::showInterfacesEgressMtuCounters(U32 fd, U32 fmt) {
  tabula::endingOnInterrupt([&] {
    const auto status = loamStatus_;
    const auto accessor = fapCounterAccessor();
    const auto aclAccessor = egressAclCountersAccessor();
    answer(fd, fmt, [&](tabula::Printer& printer) {
      printShowInterfacesEgressMtuCounters(printer, fmt, accessor, aclAccessor, status);
    });
  });
}

}  // namespace LoamCounters

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

namespace {

/// Handles to the arguments and the state of a command that translates its interfaces.
struct Held {
  CountersPrinter::StatusPtr status;
  CountersPrinter::TmMappingPtr tmMapping;
  CountersPrinter::LagStatusPtr lagStatus;
  CounterEngineAccessor::PtrConst accessor;
  IntfList::PtrConst intfList;

  AllIntfList::Ptr voqIntfs(bool voqPortsOnly) const {
    AllIntfList::Ptr lists = allIntfListFactory();
    appendWithVoqInterfaceNames(lists, intfList, status, tmMapping, lagStatus, voqPortsOnly);
    return lists;
  }
};

}  // namespace

// Every operation holds its own handles to its arguments and to the state that it reads, so that these exist
// until the work ends, even if the caller releases or replaces them during the call. They are released before
// the line "exiting ..." is written.

void CountersPrinter::showInterfacesQueueCounters(U32 fd, U32 fmt, const IntfList::PtrConst& intfList,
                                                  bool internal, bool /*detail*/) const {
  tabula::endingOnInterrupt([&] {
    const Held held{loamStatus_, tmMapping_, internalLagStatus_, fapCounterAccessor(), intfList};
    const AllIntfList::Ptr lists = held.voqIntfs(false);
    if (internal) {
      appendSpecialIngressInterfaceNames(lists, held.status);
      appendSpecialEgressInterfaceNames(lists, held.status);
    }
    answer(fd, fmt, [&](tabula::Printer& printer) {
      printShowInterfacesQueueCounters(printer, fmt, held.accessor, lists, held.status, internal);
    });
  });
}

void CountersPrinter::showInterfacesQueueIngressCounters(U32 fd, U32 fmt, const IntfList::PtrConst& intfList,
                                                         bool internal, bool /*detail*/) const {
  tabula::endingOnInterrupt([&] {
    const Held held{loamStatus_, tmMapping_, internalLagStatus_, fapCounterAccessor(), intfList};
    const AllIntfList::Ptr lists = held.voqIntfs(true);
    if (internal) appendSpecialIngressInterfaceNames(lists, held.status);
    answer(fd, fmt, [&](tabula::Printer& printer) {
      printShowInterfacesQueueIngressCounters(printer, held.accessor, lists, held.status, internal);
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
    const Held held{loamStatus_, tmMapping_, internalLagStatus_, fapCounterAccessor(), intfList};
    const AllIntfList::Ptr lists = held.voqIntfs(true);
    answer(fd, fmt, [&](tabula::Printer& printer) {
      printShowInterfacesQueueDropsCounters(printer, fmt, held.accessor, lists, held.status);
    });
  });
}

void CountersPrinter::showInterfacesEgressAclDropCounters(U32 fd, U32 fmt,
                                                          const IntfList::PtrConst& intfList) {
  tabula::endingOnInterrupt([&] {
    const auto status = loamStatus_;
    const auto accessor = egressAclCountersAccessor();
    answer(fd, fmt, [&, intfList](tabula::Printer& printer) {
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

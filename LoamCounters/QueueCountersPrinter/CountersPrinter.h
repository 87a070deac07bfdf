#pragma once

// The entity of the show commands.

#include <string_view>

#include "LoamCounters/QueueCountersPrinter/Instantiated.h"
#include "LoamCounters/QueueCountersPrinter/IntfLists.h"
#include "platform/Cortex.h"
#include "platform/CounterAgent.h"
#include "platform/HardwareLoam.h"
#include "platform/LoamTm.h"
#include "platform/Vane.h"

namespace LoamCounters {

/// The entity with the show operations of the CLI: queue, CPU queue, drop, egress ACL and egress MTU
/// counters. It holds the state objects and two accessors, each possibly null; show operations do not change
/// them. Each operation writes its complete output to `fd` in the format `fmt` (1 text, 2 JSON). An interrupt
/// ends an operation early, with the line "exiting ..." on standard output; other exceptions reach the
/// caller.
class CountersPrinter : public Vane::Entity<CountersPrinter> {
 public:
  using Ptr = Mote::Ptr<CountersPrinter>;
  using PtrConst = Mote::Ptr<const CountersPrinter>;
  using StatusPtr = Hardware::Loam::Status::PtrConst;
  using TmMappingPtr = LoamTm::TmMapping::PtrConst;
  using LagStatusPtr = Hardware::Loam::InternalLagClientStatus::PtrConst;
  using TcMappingPtr = TrafficClassMapping::PtrConst;
  using EngineStatusPtr = Hardware::Loam::CounterEngineStatus::PtrConst;
  using EntityManagerPtr = Cortex::EntityManager::Ptr;
  static constexpr std::string_view vaneName = "LoamCounters::CountersPrinter";

  /// Creates both accessors, the egress ACL accessor never as a mount-mode writer.
  CountersPrinter(const StatusPtr& loamStatus, const TmMappingPtr& tmMapping,
                  const LagStatusPtr& internalLagStatus, const TcMappingPtr& trafficClassMapping,
                  const EngineStatusPtr& counterEngineStatus, const EntityManagerPtr& entityManager,
                  bool skeinMountMode);
  static Ptr CountersPrinterIs(const StatusPtr& loamStatus, const TmMappingPtr& tmMapping,
                               const LagStatusPtr& internalLagStatus, const TcMappingPtr& trafficClassMapping,
                               const EngineStatusPtr& counterEngineStatus,
                               const EntityManagerPtr& entityManager, bool skeinMountMode);
  static const Vane::TypeData& fwkType();

  StatusPtr loamStatus() const { return loamStatus_; }
  TmMappingPtr tmMapping() const { return tmMapping_; }
  LagStatusPtr internalLagStatus() const { return internalLagStatus_; }
  TcMappingPtr trafficClassMapping() const { return trafficClassMapping_; }
  EngineStatusPtr counterEngineStatus() const { return counterEngineStatus_; }
  EntityManagerPtr entityManager() const { return entityManager_; }
  bool skeinMountMode() const { return skeinMountMode_; }

  /// The source of ingress, egress and MTU counters. `Is` returns the current accessor if it was created from
  /// the same arguments, otherwise a new one; `Del` removes and returns it.
  CounterEngineAccessor::Ptr fapCounterAccessor() const { return fapCounterAccessor_.held(); }
  CounterEngineAccessor::Ptr fapCounterAccessorIs(const StatusPtr& loamStatus, const TmMappingPtr& tmMapping,
                                                  const LagStatusPtr& internalLagStatus,
                                                  const TcMappingPtr& trafficClassMapping,
                                                  const EntityManagerPtr& entityManager, bool skeinMountMode);
  CounterEngineAccessor::Ptr fapCounterAccessorDel();

  /// The same for the source of egress ACL counters and egress MTU totals.
  EgressAclCountersAccessor::Ptr egressAclCountersAccessor() const {
    return egressAclCountersAccessor_.held();
  }
  EgressAclCountersAccessor::Ptr egressAclCountersAccessorIs(const StatusPtr& loamStatus,
                                                             const EngineStatusPtr& counterEngineStatus,
                                                             const EntityManagerPtr& entityManager,
                                                             bool isMountModeWriter);
  EgressAclCountersAccessor::Ptr egressAclCountersAccessorDel();

  /// `internal` adds special interfaces and fabric multicast queues; `detail` has no effect.
  void showInterfacesQueueCounters(U32 fd, U32 fmt, const IntfList::PtrConst& intfList, bool internal,
                                   bool detail) const;
  void showInterfacesQueueIngressCounters(U32 fd, U32 fmt, const IntfList::PtrConst& intfList, bool internal,
                                          bool detail) const;
  /// `summary` sums over the switch; `perInputPortCoppVoqsSupported` labels a class's VOQs by input port.
  void showCpuQueueCounters(U32 fd, U32 fmt, bool summary, bool perInputPortCoppVoqsSupported) const;
  void showInterfacesQueueDropsCounters(U32 fd, U32 fmt, const IntfList::PtrConst& intfList) const;
  void showInterfacesEgressAclDropCounters(U32 fd, U32 fmt, const IntfList::PtrConst& intfList);
  void showInterfacesEgressMtuCounters(U32 fd, U32 fmt);

 private:
  const StatusPtr loamStatus_;
  const TmMappingPtr tmMapping_;
  const LagStatusPtr internalLagStatus_;
  const TcMappingPtr trafficClassMapping_;
  const EngineStatusPtr counterEngineStatus_;
  const EntityManagerPtr entityManager_;
  const bool skeinMountMode_;
  Instantiated<CounterEngineAccessor, StatusPtr, TmMappingPtr, LagStatusPtr, TcMappingPtr, EntityManagerPtr,
               bool>
      fapCounterAccessor_;
  Instantiated<EgressAclCountersAccessor, StatusPtr, EngineStatusPtr, EntityManagerPtr, bool>
      egressAclCountersAccessor_;
};

CountersPrinter::Ptr countersPrinterFactory(const CountersPrinter::StatusPtr& loamStatus,
                                            const CountersPrinter::TmMappingPtr& tmMapping,
                                            const CountersPrinter::LagStatusPtr& internalLagStatus,
                                            const CountersPrinter::TcMappingPtr& trafficClassMapping,
                                            const CountersPrinter::EngineStatusPtr& counterEngineStatus,
                                            const CountersPrinter::EntityManagerPtr& entityManager,
                                            bool skeinMountMode);

}  // namespace LoamCounters

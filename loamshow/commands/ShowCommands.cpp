#include "loamshow/commands/ShowCommands.h"

#include <algorithm>
#include <functional>
#include <string_view>
#include <vector>

#include "loamshow/cli/IntfArguments.h"
#include "loamshow/commands/Output.h"
#include "loamshow/commands/Plugin.h"
#include "loamshow/text/InputError.h"
#include "platform/Cortex.h"
#include "platform/tabula.h"

namespace loamshow {

namespace {

using Vane::Value;

Object countersPrinter(const SwitchState& state) {
  const auto entityManager = Mote::make<Cortex::EntityManager>();
  entityManager->mountIs(LoamCounters::CounterTables::path, state.counters);
  const std::vector<Value> arguments = {
      Hardware::Loam::Status::PtrConst(state.status),
      LoamTm::TmMapping::PtrConst(state.tmMapping),
      Hardware::Loam::InternalLagClientStatus::PtrConst(state.internalLagStatus),
      LoamCounters::TrafficClassMapping::PtrConst(Mote::make<LoamCounters::TrafficClassMapping>()),
      Hardware::Loam::CounterEngineStatus::PtrConst(Mote::make<Hardware::Loam::CounterEngineStatus>()),
      entityManager,
      state.skeinMountMode,
  };
  return {"LoamCounters::CountersPrinter", arguments};
}

Value interfaceList(const CommandLine& line, const SwitchState& state) {
  const Object list("LoamCounters::IntfList", {});
  for (const Nexo::IntfId intf : selectInterfaces(state.interfaces, line.interfaces)) {
    list.enqueue("intf", intf);
  }
  return list.handle();
}

/// A command, its operation of CountersPrinter, and the arguments that follow `fd` and `fmt`.
struct QueueCommand {
  std::string_view name;
  std::string_view operation;
  std::vector<Value> (*arguments)(const CommandLine& line, const SwitchState& state);
};

std::vector<Value> none(const CommandLine& /*line*/, const SwitchState& /*state*/) {
  return {};
}

std::vector<Value> interfaces(const CommandLine& line, const SwitchState& state) {
  return {interfaceList(line, state)};
}

std::vector<Value> interfacesAndFlags(const CommandLine& line, const SwitchState& state) {
  return {interfaceList(line, state), line.internal, line.detail};
}

std::vector<Value> cpuFlags(const CommandLine& line, const SwitchState& state) {
  return {line.summary, state.perInputPortCoppVoqs || line.perPort};
}

constexpr QueueCommand queueCommands[] = {
    {"queues", "showInterfacesQueueCounters", interfacesAndFlags},
    {"ingress", "showInterfacesQueueIngressCounters", interfacesAndFlags},
    {"cpu", "showCpuQueueCounters", cpuFlags},
    {"drops", "showInterfacesQueueDropsCounters", interfaces},
    {"acl", "showInterfacesEgressAclDropCounters", interfaces},
    {"mtu", "showInterfacesEgressMtuCounters", none},
};

/// A prepared call.
using Call = std::function<void()>;

Call debugCall(const CommandLine& line, const SwitchState& state, U32 fd) {
  const Object descriptors("LoamCounters::FapDescriptorMapping", {});
  const Object managers("LoamCounters::ShmemMgrMapping", {});
  for (const DebugFap& fap : state.debugFaps) {
    descriptors.insert("fapDescriptor", fap.name, fap.descriptor);
    managers.insert("shmemMgr", fap.name, fap.manager);
  }
  Vane::Optional<Mote::String> block;
  if (line.block) block = *line.block;
  const std::vector<Value> arguments = {managers.handle(),
                                        descriptors.handle(),
                                        fd,
                                        line.format,
                                        Mote::String(line.snapshot.value_or("current")),
                                        line.drops,
                                        block};
  return [arguments, printer = Object("LoamCounters::DebugCountersPrinter", {})] {
    printer.call("printDebugCountersPerAFap", arguments);
  };
}

Call queueCall(const CommandLine& line, const SwitchState& state, U32 fd) {
  const auto* command =
      std::find_if(std::begin(queueCommands), std::end(queueCommands),
                   [&](const QueueCommand& candidate) { return candidate.name == line.command; });
  VANE_ASSERT(command != std::end(queueCommands));
  std::vector<Value> arguments = {fd, line.format};
  for (Value& argument : command->arguments(line, state)) arguments.push_back(std::move(argument));
  return [arguments, printer = countersPrinter(state), operation = command->operation] {
    printer.call(operation, arguments);
  };
}

}  // namespace

void runShowCommand(const CommandLine& line, const SwitchState& state, U32 fd, std::string_view heading) {
  const Call call = line.command == "debug" ? debugCall(line, state, fd) : queueCall(line, state, fd);
  if (!heading.empty()) {
    print(heading, fd);
    if (tabula::operationInterrupted()) return;
  }
  call();
}

}  // namespace loamshow

// A host in one file: loads the plug-in, passes it a switch of one chip with one port, and shows the queue
// counters of that port. It finds types and operations of the plug-in in the registry, by name.

#include <dlfcn.h>
#include <unistd.h>

#include <iostream>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "platform/Cortex.h"
#include "platform/CounterAgent.h"
#include "platform/HardwareLoam.h"
#include "platform/LoamTm.h"
#include "platform/Vane.h"
#include "platform/tabula.h"

namespace {

using Vane::Value;
using Arguments = std::vector<Value>;
using Object = Mote::Ptr<Mote::Node>;

const Nexo::IntfId ethernet1("Ethernet1");

/// The counters of the switch. The total of each record is the sum of its queues. A real host derives its own
/// class from LoamCounters::CounterTables, which reads its chips.
Mote::Ptr<LoamCounters::CounterTables> chipCounters() {
  const auto tables = Mote::make<LoamCounters::MemoryCounterTables>();
  LoamCounters::IngressTcCounter ingress;
  LoamCounters::EgressTmCounter egress;
  for (U64 queue = 0; queue < 8; ++queue) {
    const LoamCounters::IngressCounter received{{100 + queue, 6400, queue, 64 * queue}};
    const LoamCounters::CounterQuad sent{100 + queue, 6400, 0, 0};
    ingress.queueIs(LoamCounters::IngressCounterIndex(queue), received);
    ingress.total += received;
    egress.quadIs(LoamCounters::EgressTmCounterIndex(8 * queue), sent);
    egress.total += sent;
  }
  tables->ingressIs(Hardware::Loam::FapId(0), Hardware::Loam::LocalCoreId(0), ethernet1, ingress);
  tables->egressTm.set(ethernet1, egress);
  return tables;
}

Object make(std::string_view typeName, const Arguments& arguments) {
  const Vane::TypeDescriptor* type = Vane::findType(typeName);
  if (type == nullptr) throw std::runtime_error("no type " + std::string(typeName));
  return type->instance(arguments);
}

Value request(const Object& object, std::string_view attribute, Vane::OpCode op, const Arguments& arguments,
              const Value& value = {}) {
  const U32 number = object->typeData()->type().numberOf(attribute).value();
  Value result;
  if (Vane::genericIfAttributeOp(*object, result, number, static_cast<U8>(op), arguments, value) !=
      Vane::OpStatus::done) {
    throw std::runtime_error("not possible with " + std::string(attribute));
  }
  return result;
}

Object countersPrinter() {
  const Hardware::Loam::SystemPhyPortId port(34);
  const Hardware::Loam::FapId fap(0);
  const auto status = Mote::make<Hardware::Loam::Status>();
  status->fapIdToName.set(fap, "Fap0");
  status->fapNumCores.set(fap, 1);
  status->fapRevision.set(fap, {2});
  status->sppidToIntfId.set(port, ethernet1);
  status->intfIdToSppid.set(ethernet1, port);
  status->portMaps.set(port, {Hardware::Loam::FapPortId(1), fap, Hardware::Loam::LocalCoreId(0)});
  const auto tmMapping = Mote::make<LoamTm::TmMapping>();
  tmMapping->portTmMap.set(port, true);
  const auto entityManager = Mote::make<Cortex::EntityManager>();
  entityManager->mountIs(LoamCounters::CounterTables::path, chipCounters());
  return make(
      "LoamCounters::CountersPrinter",
      {Hardware::Loam::Status::PtrConst(status), LoamTm::TmMapping::PtrConst(tmMapping),
       Hardware::Loam::InternalLagClientStatus::PtrConst(), LoamCounters::TrafficClassMapping::PtrConst(),
       Hardware::Loam::CounterEngineStatus::PtrConst(), entityManager, false});
}

}  // namespace

int main() {
  // Never unloaded, because an exception of an operation may have a type that only the plug-in defines.
  if (::dlopen(LOAM_PLUGIN, RTLD_NOW | RTLD_LOCAL) == nullptr) {
    std::cerr << ::dlerror() << "\n";
    return 1;
  }
  const Object interfaces = make("LoamCounters::IntfList", {});
  request(interfaces, "intf", Vane::OpCode::enqueue, {}, ethernet1);
  request(countersPrinter(), "showInterfacesQueueCounters", Vane::OpCode::call,
          {U32{STDOUT_FILENO}, tabula::formatText, interfaces, false, false});
}

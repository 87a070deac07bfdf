// A writer of live counters in one file: a switch of one chip with one port, whose first queue receives 100
// packets of 64 octets per second and drops one in ten.

#include <chrono>
#include <iostream>
#include <thread>
#include "platform/counteragent/RegionWriter.h"

using namespace LoamCounters;

// A state file without counters: everything that does not change while the switch counts.
constexpr const char* description = R"({
  "switch": {"name": "one-port"},
  "interfaces": ["Ethernet1"],
  "status": {
    "fapIdToName": {"0": "Fap0"}, "fapNumCores": {"0": 1}, "fapRevision": {"0": {"major": 1}},
    "sppidToIntfId": {"34": "Ethernet1"}, "intfIdToSppid": {"Ethernet1": 34},
    "portMap": {"34": {"fapPortId": 1, "fapId": 0, "coreId": 0}}
  },
  "tmMapping": {"portTmMap": [34]}
})";

const Nexo::IntfId ethernet1("Ethernet1");
const FapId fap0(0);
const LocalCoreId core0(0);

// A real feeder reads its chip. The total of each record is the sum of its queues.
IngressTcCounter ingress(U64 packets, U64 drops) {
  IngressTcCounter record;
  record.queueIs(IngressCounterIndex(7), {});  // the region keeps room for queues 0 to 7
  record.queueIs(IngressCounterIndex(0), {{packets, 64 * packets, drops, 64 * drops}});
  record.total = record[IngressCounterIndex(0)];
  return record;
}

EgressCounter egress(U64 packets) {
  EgressCounter record;
  record.quadIs(EgressCounterIndex(0), {packets, 64 * packets, 0, 0});
  record.total = record.quad(0);
  return record;
}

int main(int argc, char** argv) try {
  if (argc != 2) throw std::runtime_error("usage: loamfeeder REGION");
  const auto records = Mote::make<MemoryCounterTables>();  // determines the records of the region
  records->ingressIs(fap0, core0, ethernet1, ingress(0, 0));
  records->egress.set(ethernet1, egress(0));
  const CounterRegionWriter writer(argv[1], description, *records);
  for (U64 tenths = 1;; ++tenths) {
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    writer.ingressIs(fap0, core0, ethernet1, ingress(10 * tenths, tenths));
    writer.egressIs(ethernet1, egress(9 * tenths));
    writer.alive();
  }
} catch (const std::exception& error) {
  std::cerr << error.what() << "\n";
  return 1;
}

#include "bench/Switch.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <map>
#include <span>

#include "bench/Values.h"
#include "loamshow/state/Capture.h"

namespace loambench {

using namespace LoamCounters;

namespace {

struct Core {
  U64 fap;
  U64 core;
};

constexpr Core allCores[] = {{0, 0}, {0, 1}, {1, 0}, {2, 0}, {3, 0}, {3, 1}, {4, 0}, {4, 1}};
constexpr U64 queueModeFap = 2;
constexpr U64 firstPort = 64;
constexpr U64 ports = 32767 - firstPort;

std::string nameOf(std::size_t i) {
  return "Ethernet" + std::to_string(1 + i / 48) + "/" + std::to_string(1 + i % 48);
}

// Interfaces share system ports if there are more interfaces than ports.
Hardware::Loam::SystemPhyPortId portOf(std::size_t i) {
  return Hardware::Loam::SystemPhyPortId(firstPort + i % ports);
}

}  // namespace

BusySwitch::BusySwitch(std::size_t interfaces, std::size_t coreCount) : intfs(intfListFactory()) {
  const auto cores = std::span(allCores).first(coreCount);
  const auto& status = state.status;
  const auto& tmMapping = state.tmMapping;
  const auto tables = Mote::make<MemoryCounterTables>();
  for (const Core& core : cores) {
    status->fapIdToName.set(FapId(core.fap), "Fap" + std::to_string(core.fap));
    status->fapNumCores.set(FapId(core.fap), static_cast<U16>(core.core + 1));
    status->fapRevision.set(FapId(core.fap), {core.fap == queueModeFap ? 2U : 1U});
  }
  U64 n = 0;
  for (std::size_t i = 0; i < interfaces; ++i) {
    const Nexo::IntfId intf(nameOf(i % ports));
    intfs->intfEnq(intf);
    if (i >= ports) continue;
    state.interfaces.push_back(intf);
    const auto port = portOf(i);
    const Core& core = cores[i % ports % coreCount];
    status->sppidToIntfId.set(port, intf);
    status->intfIdToSppid.set(intf, port);
    status->portMaps.set(port, {Hardware::Loam::FapPortId(1), FapId(core.fap), LocalCoreId(core.core)});
    tmMapping->portTmMap.set(port, true);
    EgressCounter egress;
    EgressTmCounter egressTm;
    for (U64 t = 0; t < 8; ++t) {
      egress.quadIs(EgressCounterIndex(4 * t), busyQuad(n++));
      egressTm.quadIs(EgressTmCounterIndex(8 * t), busyQuad(n++));
      egressTm.quadIs(EgressTmCounterIndex(8 * t + 4), busyQuad(n++));
    }
    if (core.fap == queueModeFap) {
      tables->egressTm.set(intf, egressTm);
    } else {
      tables->egress.set(intf, egress);
    }
  }
  // CoPP classes and CPU ports.
  status->coppClassNumVoqs = 8;
  std::vector<Nexo::IntfId> counted = state.interfaces;
  for (U64 port = 2; port <= 56; ++port) {
    const Nexo::IntfId intf("CoppSystem" + std::to_string(port));
    status->sppidToIntfId.set(Hardware::Loam::SystemPhyPortId(port), intf);
    counted.push_back(intf);
  }
  // In the order of a captured state file.
  for (const Core& core : cores) {
    for (const Nexo::IntfId intf : counted) {
      IngressTcCounter record;
      for (U64 t = 0; t < 8; ++t) {
        const IngressCounter counter{busyQuad(n++)};
        record.queueIs(IngressCounterIndex(t), counter);
        record.total += counter;
      }
      tables->ingressIs(FapId(core.fap), LocalCoreId(core.core), intf, record);
    }
  }
  state.counters = tables;
  const auto entityManager = Mote::make<Cortex::EntityManager>();
  entityManager->mountIs(CounterTables::path, tables);
  printer = countersPrinterFactory(status, tmMapping, nullptr, nullptr, nullptr, entityManager, false);
}

std::string stateFile(const BusySwitch& of, loamshow::JsonWriter::Layout layout) {
  std::string text;
  loamshow::JsonWriter out(text, layout);
  loamshow::capture(of.state, out);
  return text;
}

Answer command(const BusySwitch& on, const std::string& name, U32 format) {
  using Operation = void (*)(const BusySwitch&, U32 fd, U32 format);
  static const std::map<std::string, Operation> operations = {
      {"queues", [](const BusySwitch& of, U32 fd,
                    U32 fmt) { of.printer->showInterfacesQueueCounters(fd, fmt, of.intfs, false, false); }},
      {"ingress",
       [](const BusySwitch& of, U32 fd, U32 fmt) {
         of.printer->showInterfacesQueueIngressCounters(fd, fmt, of.intfs, false, false);
       }},
      {"drops", [](const BusySwitch& of, U32 fd,
                   U32 fmt) { of.printer->showInterfacesQueueDropsCounters(fd, fmt, of.intfs); }},
      {"cpu", [](const BusySwitch& of, U32 fd, U32 fmt) {
         of.printer->showCpuQueueCounters(fd, fmt, false, false);
       }}};
  return
      [&on, format, operation = operations.at(name)](int fd) { operation(on, static_cast<U32>(fd), format); };
}

Writes writesOf(const Answer& answer) {
  // A socket of messages keeps apart what was written apart. A child answers, since a thread would make what
  // is measured afterwards count its handles atomically, which the program need not do.
  int ends[2];
  constexpr int roomy = 1 << 20;
  if (::socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends) != 0) std::abort();
  ::setsockopt(ends[0], SOL_SOCKET, SO_SNDBUF, &roomy, sizeof roomy);
  const pid_t child = ::fork();
  if (child == 0) {
    ::close(ends[1]);
    answer(ends[0]);
    ::_exit(0);
  }
  ::close(ends[0]);
  Writes writes;
  std::string message(std::size_t{128} * 1024, '\0');
  for (ssize_t size = 0; (size = ::read(ends[1], message.data(), message.size())) > 0;) {
    writes.emplace_back(message.data(), static_cast<std::size_t>(size));
  }
  ::close(ends[1]);
  int status = 0;
  if (::waitpid(child, &status, 0) != child || status != 0) std::abort();
  return writes;
}

void writeAll(int fd, const Writes& writes) {
  for (const std::string& part : writes) {
    if (::write(fd, part.data(), part.size()) != static_cast<ssize_t>(part.size())) std::abort();
  }
}

int nullFd() {
  static const int fd = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
  return fd;
}

}  // namespace loambench

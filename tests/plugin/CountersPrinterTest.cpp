// The operations of CountersPrinter on state objects that are missing, change, or violate their contract.

#include <gmock/gmock.h>

#include <functional>
#include <thread>

#include "LoamCounters/QueueCountersPrinter/CountersPrinter.h"
#include "loamshow/state/StateFile.h"
#include "platform/tabula.h"
#include "tests/AnswerParts.h"
#include "tests/Faults.h"

namespace loamtest {

namespace {

using namespace LoamCounters;

/// Counter tables of zeros, except the dropped packets of each interface, that call a function at each read.
class Tables : public CounterTables {
 public:
  using Key = EgressCounterKey;
  std::function<void()> atRead = [] {};
  U64 dropped = 1;

  IngressTcCounter ingressTcCounter(FapId, LocalCoreId, Nexo::IntfId) const override {
    return atRead(), IngressTcCounter({{0, 0, dropped, 0}}, {});
  }
  IngressCounter ingressCounter(const IngressCounterKey&) const override {
    return atRead(), IngressCounter{};
  }
  EgressCounter egressCounter(const Key&) const override { return atRead(), EgressCounter(); }
  EgressTmCounter egressTmCounter(const Key&) const override { return atRead(), EgressTmCounter(); }
  EgressLagCounter egressLagCounter(const Key&) const override { return atRead(), EgressLagCounter(); }
  Keel::MaybeU63 egressAclCounter(const Key&) const override { return atRead(), Keel::MaybeU63(); }
  EgressMtuCounter egressMtuEnqDropCounter(FapId) const override { return atRead(), EgressMtuCounter(); }
  Keel::MaybeU63 egressMtuTotalCounter(FapId) const override { return {}; }
};

/// A printer on the small switch with a CPU port, with the counters of the tables.
struct Fixture {
  loamshow::SwitchState state = loamshow::parseState("state", smallSwitch().dump());
  Mote::Ptr<Tables> tables = Mote::make<Tables>();
  IntfList::PtrConst intfs;
  CountersPrinter::Ptr printer = make(state.status);

  Fixture() {
    const auto all = intfListFactory();
    for (const Nexo::IntfId intf : state.interfaces) all->intfEnq(intf);
    intfs = all;
    state.status->sppidToIntfId.set(Hardware::Loam::SystemPhyPortId(2), Nexo::IntfId("CpuTm0"));
  }
  CountersPrinter::Ptr make(const CountersPrinter::StatusPtr& status) const {
    const auto entityManager = Mote::make<Cortex::EntityManager>();
    entityManager->mountIs(CounterTables::path, tables);
    return countersPrinterFactory(status, state.tmMapping, state.internalLagStatus, nullptr, nullptr,
                                  entityManager, false);
  }
  /// The users of what a command may hold: status, mapping, LAG status, interfaces, accessors.
  std::vector<U32> users() const {
    return {state.status->users(),
            state.tmMapping->users(),
            state.internalLagStatus->users(),
            intfs->users(),
            printer->fapCounterAccessor()->users(),
            printer->egressAclCountersAccessor()->users()};
  }
};

void call(const CountersPrinter::Ptr& printer, const std::string& operation, U32 fd, U32 fmt,
          const IntfList::PtrConst& intfs) {
  if (operation == "queues") printer->showInterfacesQueueCounters(fd, fmt, intfs, true, false);
  if (operation == "ingress") printer->showInterfacesQueueIngressCounters(fd, fmt, intfs, true, false);
  if (operation == "cpu") printer->showCpuQueueCounters(fd, fmt, true, false);
  if (operation == "cores") printer->showCpuQueueCounters(fd, fmt, false, false);
  if (operation == "drops") printer->showInterfacesQueueDropsCounters(fd, fmt, intfs);
  if (operation == "acl") printer->showInterfacesEgressAclDropCounters(fd, fmt, intfs);
  if (operation == "mtu") printer->showInterfacesEgressMtuCounters(fd, fmt);
}

/// The output of operations.
std::string called(const CountersPrinter::Ptr& printer, const std::string& operations, U32 fmt,
                   const IntfList::PtrConst& intfs) {
  const MemoryFile file;
  const U32 fd = file.fdNumber();
  for (const std::string& operation : words(operations)) call(printer, operation, fd, fmt, intfs);
  return file.content();
}

TEST(CountersPrinter, WithoutItsSourcesShowsHeadsAndEmptyCollections) {
  const Fixture fixture;
  const CountersPrinter::Ptr printer = fixture.printer;
  printer->fapCounterAccessorDel();
  printer->egressAclCountersAccessorDel();
  const auto answers = [&](const CountersPrinter::Ptr& of, U32 fmt) {
    return called(of, "queues drops mtu cpu ingress cores", fmt, fixture.intfs);
  };
  const std::string summary = "Aggregate CPU counters:";
  const std::string common = ingressHead("Aggregate VoQ Counters") + "\n" + egressHead + "\n" + dropsHead +
                             "\n" + mtuHead + classHead(summary, queueTitle, false) + "\n" +
                             classHead(summary, policerTitle, false) + "\n" + cpuEgressHead;
  std::string ofIngress;
  std::string ofCpu;
  for (const std::string source : {"A.0:", "A.1:", "B:"}) {
    ofIngress += ingressHead(source) + "\n";
    ofCpu += classHead(source, "", true) + "\n" + classHead(source, perChipTitle, false) + "\n";
  }
  EXPECT_EQ(answers(printer, tabula::formatText), common + ofIngress + ofCpu + cpuEgressHead);
  EXPECT_EQ(answers(fixture.make(nullptr), tabula::formatText), common + cpuEgressHead);
  EXPECT_EQ(called(printer, "acl", tabula::formatText, fixture.intfs), aclHead);
  EXPECT_EQ(
      answers(printer, tabula::formatJson),
      R"({"ingressVoqCounters":{"interfaces":{}},"egressQueueCounters":{"interfaces":{}}}
{"interfaces":{}}
{"destinations":{}}
{"ingressVoqs":{"sources":{"all":{"cpuClasses":{}}}},"egressQueues":{"sources":{"all":{"cpuPorts":{}}}}}
{"sources":{"A.0":{"interfaces":{}},"A.1":{"interfaces":{}},"B":{"interfaces":{}}}}
)"
      R"({"ingressVoqs":{"sources":{"A.0":{"cpuClasses":{}},"A.1":{"cpuClasses":{}},"B":{"cpuClasses":{}}}},)"
      R"("egressQueues":{"sources":{"all":{"cpuPorts":{}}}}})"
      "\n");
  EXPECT_EQ(called(printer, "queues ingress acl", tabula::formatJson, nullptr), "");
  EXPECT_EQ(called(printer, "drops", tabula::formatText, nullptr), dropsHead + "\n");
}

TEST(CountersPrinter, WalksAStatusThatChanges) {
  using Status = Hardware::Loam::Status;
  // The names that an operation shows if the status changes at a read.
  const auto shown = [](const char* operation, const char* path, const std::function<void(Status&)>& change,
                        int atRead = 2, const std::vector<const char*>& intfs = {"Ethernet3"}) {
    const Fixture fixture;
    fixture.state.status->sppidToIntfId.set(Hardware::Loam::SystemPhyPortId(64), Nexo::IntfId("Ethernet1.7"));
    int reads = 0;
    fixture.tables->atRead = [&] {
      if (++reads == atRead) change(*fixture.state.status);
    };
    const auto list = intfListFactory();
    for (const char* intf : intfs) list->intfEnq(Nexo::IntfId(intf));
    const std::string json = called(fixture.printer, operation, tabula::formatJson, list);
    EXPECT_EQ(Json::parse(json).dump() + "\n", json) << "no member comes twice";
    return keysAt(json, path);
  };
  // The FAP that is being shown is removed, and others are added below and above it.
  const auto replace = [](Status& status) {
    status.fapIdToName.remove(FapId(3));
    for (const auto& [id, name] : {std::pair{1U, "Below"}, std::pair{5U, "Above"}}) {
      status.fapNumCores.set(FapId(id), 1);
      status.fapIdToName.set(FapId(id), name);
    }
  };
  const auto remove = [](Status& status) { status.fapIdToName.remove(FapId(7)); };
  const auto removeCores = [](Status& status) { status.fapNumCores.remove(FapId(7)); };
  EXPECT_EQ(shown("ingress", "/sources", replace), words("A.0 A.1 Above B"));
  EXPECT_EQ(shown("ingress", "/sources", removeCores), words("A.0 A.1"));
  EXPECT_EQ(shown("ingress", "/sources", remove), words("A.0 A.1"));
  EXPECT_EQ(shown("mtu", "/destinations", replace, 1), words("A Above B"));
  // In the drops command, read 2 is that of the egress record, which precedes the walk.
  const char* const voqs = "/interfaces/Ethernet3/trafficClasses/TC0/ingressVoqCounters/sources";
  EXPECT_EQ(shown("drops", voqs, replace), words("Below Above B"));
  // The number of VOQs changes while Ethernet1.5 is shown, which keeps the old number. Port 64 belongs to
  // Ethernet1.7.
  const auto classes = [&](const char* path) {
    return shown("drops", path, [](Status& status) { status.subIntfNumVoqs = 3; }, 3,
                 {"Ethernet1.5", "Ethernet1"});
  };
  EXPECT_EQ(classes("/interfaces/Ethernet1.5/trafficClasses"), words("TC0-1 TC2-3 TC4-5 TC6-7"));
  EXPECT_EQ(classes("/interfaces/Ethernet1.7/trafficClasses"), words("TC0-1 TC2-3 TC4-5"));
}

// So a caller may release everything while an operation runs.
TEST(CountersPrinter, HoldsWhatItReads) {
  const std::pair<const char*, std::vector<U32>> cases[] = {
      {"queues", {1, 1, 1, 1, 1, 0}}, {"ingress", {1, 1, 1, 1, 1, 0}}, {"drops", {1, 1, 1, 1, 1, 0}},
      {"cpu", {1, 0, 0, 0, 1, 0}},    {"acl", {1, 0, 0, 1, 0, 1}},     {"mtu", {1, 0, 0, 0, 1, 1}}};
  const Fixture fixture;
  const std::vector<U32> before = fixture.users();
  for (const auto& [operation, expected] : cases) {
    std::vector<U32> held;
    fixture.tables->atRead = [&] {
      held = fixture.users();
      for (std::size_t i = 0; i < held.size(); ++i) held[i] = held[i] > before[i] ? 1 : 0;
    };
    called(fixture.printer, operation, tabula::formatJson, fixture.intfs);
    EXPECT_EQ(held, expected) << operation;
    EXPECT_EQ(fixture.users(), before) << operation;
  }
}

TEST(CountersPrinter, CarriesOnOrEndsCleanlyAtEveryFault) {
  const Fixture fixture;
  const auto usersBefore = fixture.users();
  const auto tryAll = [&](const std::string& operation, std::size_t flushes, std::array<std::size_t, 2> rest,
                          const std::string& raised = "") {
    for (const U32 fmt : {tabula::formatText, tabula::formatJson}) {
      expectEveryFaultHandled(
          {operation + " " + std::to_string(fmt), flushes + rest[fmt - 1],
           [&](U32 fd) { call(fixture.printer, operation, fd, fmt, fixture.intfs); }, raised,
           [&] { EXPECT_EQ(fixture.users(), usersBefore) << "released before it is said"; }});
    }
  };
  // A flush per interface and fabric multicast VOQ, egress row, CoPP class, traffic class with drops, ACL
  // interface, FAP; then the rest: in text an empty line or nothing, in JSON the end of the model.
  constexpr std::size_t egressRows = 16 + 16 + 24 + 24;  // with LAG rows for interfaces without a FAP
  tryAll("queues", 4 + 8 + egressRows, {1, 1});
  tryAll("ingress", std::size_t{3} * (3 + 8), {1, 1});
  tryAll("cpu", 1 + 2, {0, 1});
  tryAll("drops", 8 + 4 + 8, {1, 1});
  tryAll("acl", 5, {0, 1});
  tryAll("mtu", 2, {0, 1});
  fixture.state.status->fapNumCores.set(FapId(3), 9);
  tryAll("ingress", std::size_t{7} * (3 + 8), {1, 1},
         "Hardware::Loam::LocalCoreId::value < Hardware::Loam::LocalCoreId::min or > "
         "Hardware::Loam::LocalCoreId::null not allowed");
  EXPECT_EQ(fixture.users(), usersBefore);
}

TEST(CountersPrinter, NoticesAnInterruptWhereItShowsNothing) {
  const Fixture fixture;
  fixture.tables->dropped = 0;
  int reads = 0;
  fixture.tables->atRead = [&] {
    if (++reads == 3) tabula::interrupt();
  };
  testing::internal::CaptureStdout();
  EXPECT_EQ(called(fixture.printer, "drops", tabula::formatText, fixture.intfs), "");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "exiting interrupted by user\n");
  EXPECT_EQ(reads, 4) << "an ingress and an egress record of each interface";
}

TEST(Threads, ShareOnePrinter) {
  const Fixture fixture;
  // The CPU command runs first, in all threads at the same time: it fills the class sets, which the process
  // keeps.
  const auto answers = [&] {
    constexpr const char* operations = "cpu queues ingress drops acl mtu";
    return called(fixture.printer, operations, tabula::formatText, fixture.intfs) +
           called(fixture.printer, operations, tabula::formatJson, fixture.intfs);
  };
  std::vector<std::string> got(4);
  std::vector<std::thread> threads;
  for (std::string& all : got) threads.emplace_back([&] { all = answers(); });
  for (std::thread& thread : threads) thread.join();
  EXPECT_THAT(got, testing::Each(answers()));
  EXPECT_THAT(got.front(), testing::HasSubstr("CoppSystemDefault"));
}

TEST(CountersPrinter, BrokenInvariantsAreFatal) {
  const Fixture fixture;
  const auto show = [&](const char* operation, U32 fmt) {
    called(fixture.printer, operation, fmt, fixture.intfs);
  };
  EXPECT_DEATH(show("acl", 3), "false && \"Invalid data format\"");
  EXPECT_DEATH(show("mtu", 3), "hasValue");
  EXPECT_DEATH(show("queues", 3), "hasValue");
  fixture.state.status->subIntfNumVoqs = 9;
  EXPECT_DEATH(show("ingress", tabula::formatText), "tcPerPort >= countersPerPort");
}

}  // namespace

}  // namespace loamtest

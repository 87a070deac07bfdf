// The operations of CountersPrinter on state objects that are missing, change, or violate their contract.

#include <gmock/gmock.h>

#include <functional>
#include <optional>
#include <thread>

#include "LoamCounters/QueueCountersPrinter/CountersPrinter.h"
#include "LoamCounters/QueueCountersPrinter/CpuQueues.h"
#include "LoamCounters/QueueCountersPrinter/IntfSelection.h"
#include "loamshow/state/StateFile.h"
#include "platform/tabula.h"
#include "tests/AnswerParts.h"
#include "tests/Faults.h"

namespace loamtest {

namespace {

using namespace LoamCounters;
using testing::ElementsAre;
using testing::HasSubstr;

/// Counter tables of zeros that call a function at each read.
class Tables : public CounterTables {
 public:
  std::function<void()> atRead = [] {};
  U64 dropped = 1;  // packets of each interface
  Keel::MaybeU63 mtuTotal;

  IngressTcCounter ingressTcCounter(FapId, LocalCoreId, Nexo::IntfId) const override {
    atRead();
    IngressTcCounter counter;
    counter.total.droppedPackets = dropped;
    return counter;
  }
  IngressCounter ingressCounter(const IngressCounterKey&) const override {
    return atRead(), IngressCounter();
  }
  EgressCounter egressCounter(const EgressCounterKey&) const override { return atRead(), EgressCounter(); }
  EgressTmCounter egressTmCounter(const EgressCounterKey&) const override {
    return atRead(), EgressTmCounter();
  }
  EgressLagCounter egressLagCounter(const EgressCounterKey&) const override {
    return atRead(), EgressLagCounter();
  }
  Keel::MaybeU63 egressAclCounter(const EgressCounterKey&) const override {
    return atRead(), Keel::MaybeU63();
  }
  EgressMtuCounter egressMtuEnqDropCounter(FapId) const override {
    return atRead(), EgressMtuCounter({}, {}, mtuTotal);
  }
  Keel::MaybeU63 egressMtuTotalCounter(FapId) const override {
    if (!mtuTotal.null()) std::fputs("total read\n", stderr);
    return {};
  }
};

/// A printer on the small switch, with the counters of the tables.
struct Fixture {
  loamshow::SwitchState state = loamshow::parseState("state", smallSwitch().dump());
  Mote::Ptr<Tables> tables = Mote::make<Tables>();
  IntfList::Ptr intfs = intfListFactory();

  Fixture() {
    for (const Nexo::IntfId intf : state.interfaces) intfs->intfEnq(intf);
  }
  CountersPrinter::Ptr printer(bool withStatus = true) const {
    const auto entityManager = Mote::make<Cortex::EntityManager>();
    entityManager->mountIs(CounterTables::path, tables);
    return countersPrinterFactory(withStatus ? state.status : nullptr, state.tmMapping,
                                  state.internalLagStatus, nullptr, nullptr, entityManager, false);
  }
};

void call(const CountersPrinter::Ptr& printer, const std::string& operation, U32 fd, U32 fmt,
          const IntfList::PtrConst& intfs) {
  if (operation == "queues") printer->showInterfacesQueueCounters(fd, fmt, intfs, true, false);
  if (operation == "ingress") printer->showInterfacesQueueIngressCounters(fd, fmt, intfs, true, false);
  if (operation == "cpu") printer->showCpuQueueCounters(fd, fmt, true, false);
  if (operation == "cpu per core") printer->showCpuQueueCounters(fd, fmt, false, false);
  if (operation == "drops") printer->showInterfacesQueueDropsCounters(fd, fmt, intfs);
  if (operation == "acl") printer->showInterfacesEgressAclDropCounters(fd, fmt, intfs);
  if (operation == "mtu") printer->showInterfacesEgressMtuCounters(fd, fmt);
}

/// The output of an operation.
std::string called(const CountersPrinter::Ptr& printer, const std::string& operation, U32 fmt,
                   const IntfList::PtrConst& intfs) {
  const MemoryFile file;
  call(printer, operation, file.fdNumber(), fmt, intfs);
  return file.content();
}

TEST(CountersPrinter, WithoutItsSourcesShowsHeadsAndEmptyCollections) {
  const std::string cpuEgress = R"("egressQueues":{"sources":{"all":{"cpuPorts":{}}}}})";
  const auto cpuHeads = [](const char* title) {
    return classHead(title, "", true) + "\n" + classHead(title, perChipTitle, false) + "\n";
  };
  // Text and JSON; then those with a status, if that makes a difference.
  const std::map<std::string, std::vector<std::string>> empty = {
      {"queues",
       {ingressHead("Aggregate VoQ Counters") + "\n" + egressHead() + "\n",
        R"({"ingressVoqCounters":{"interfaces":{}},"egressQueueCounters":{"interfaces":{}}})"}},
      {"ingress",
       {"", R"({"sources":{}})",
        ingressHead("A.0:") + "\n" + ingressHead("A.1:") + "\n" + ingressHead("B:") + "\n",
        R"({"sources":{"A.0":{"interfaces":{}},"A.1":{"interfaces":{}},"B":{"interfaces":{}}}})"}},
      {"cpu",
       {classHead("Aggregate CPU counters:", queueTitle, false) + "\n" +
            classHead("Aggregate CPU counters:", policerTitle, false) + "\n" + cpuEgressHead(),
        R"({"ingressVoqs":{"sources":{"all":{"cpuClasses":{}}}},)" + cpuEgress}},
      {"cpu per core",
       {cpuEgressHead(), R"({"ingressVoqs":{"sources":{}},)" + cpuEgress,
        cpuHeads("A.0:") + cpuHeads("A.1:") + cpuHeads("B:") + cpuEgressHead(),
        R"({"ingressVoqs":{"sources":{"A.0":{"cpuClasses":{}},"A.1":{"cpuClasses":{}},)"
        R"("B":{"cpuClasses":{}}}},)" +
            cpuEgress}},
      {"drops", {dropsHead() + "\n", R"({"interfaces":{}})"}},
      {"acl", {aclHead(), R"({"interfaces":{}})"}},
      {"mtu", {mtuHead(), R"({"destinations":{}})"}},
  };
  const Fixture fixture;
  fixture.tables->atRead = [] { ADD_FAILURE() << "read"; };
  const auto printer = fixture.printer();
  printer->fapCounterAccessorDel();
  printer->egressAclCountersAccessorDel();
  const auto withoutStatus = fixture.printer(false);
  for (const auto& [operation, answers] : empty) {
    for (const auto& of : {printer, withoutStatus}) {
      if (of == withoutStatus && operation == "acl") continue;  // acl reads no status
      const std::size_t first = of == printer ? answers.size() - 2 : 0;
      EXPECT_EQ(called(of, operation, tabula::formatText, fixture.intfs), answers[first]);
      EXPECT_EQ(called(of, operation, tabula::formatJson, fixture.intfs), answers[first + 1] + "\n");
    }
  }
  for (const char* operation : {"queues", "ingress", "acl"}) {
    EXPECT_EQ(called(printer, operation, tabula::formatText, nullptr) +
                  called(printer, operation, tabula::formatJson, nullptr),
              "");
  }
  EXPECT_EQ(called(printer, "drops", tabula::formatText, nullptr), empty.at("drops").front());
}

TEST(CountersPrinter, WalksAStatusThatChanges) {
  using Status = Hardware::Loam::Status;
  // The names of the sources that an operation shows if the status changes at a read.
  const auto sources = [](const char* operation, const char* path, const std::function<void(Status&)>& change,
                          int atRead = 2, const std::vector<const char*>& shown = {"Ethernet3"}) {
    const Fixture fixture;
    fixture.state.status->sppidToIntfId.set(Hardware::Loam::SystemPhyPortId(64), Nexo::IntfId("Ethernet1.7"));
    int reads = 0;
    fixture.tables->atRead = [&] {
      if (++reads == atRead) change(*fixture.state.status);
    };
    const auto intfs = intfListFactory();
    for (const char* intf : shown) intfs->intfEnq(Nexo::IntfId(intf));
    std::vector<std::string> names;
    const Json json = Json::parse(called(fixture.printer(), operation, 2, intfs));
    for (const auto& source : json[Json::json_pointer(path)].items()) names.push_back(source.key());
    return names;
  };
  // The FAP that is being shown is removed, and others are added below and above it.
  const auto replace = [](Status& status) {
    status.fapIdToName.remove(FapId(3));
    for (const auto& [id, name] : {std::pair{1U, "Below"}, std::pair{5U, "Above"}}) {
      status.fapNumCores.set(FapId(id), 1);
      status.fapIdToName.set(FapId(id), name);
    }
  };
  // Assigns both collections, after the same number of changes as in the old ones.
  const auto assign = [](Status& status) {
    decltype(status.fapIdToName) names;
    decltype(status.fapNumCores) cores;
    for (const auto& [id, name, count] : {std::tuple{3U, "A", U16{2}}, std::tuple{5U, "Above", U16{1}}}) {
      names.set(FapId(id), name);
      cores.set(FapId(id), count);
    }
    status.fapIdToName = names;
    status.fapNumCores = cores;
  };
  const auto remove = [](Status& status) { status.fapIdToName.remove(FapId(7)); };
  const auto removeCores = [](Status& status) { status.fapNumCores.remove(FapId(7)); };
  EXPECT_THAT(sources("ingress", "/sources", [](Status&) {}), ElementsAre("A.0", "A.1", "B"));
  EXPECT_THAT(sources("ingress", "/sources", replace), ElementsAre("A.0", "A.1", "Above", "B"));
  EXPECT_THAT(sources("ingress", "/sources", removeCores), ElementsAre("A.0", "A.1"));
  EXPECT_THAT(sources("ingress", "/sources", remove), ElementsAre("A.0", "A.1"));
  EXPECT_THAT(sources("ingress", "/sources", assign), ElementsAre("A.0", "A.1", "Above"));
  EXPECT_THAT(sources("mtu", "/destinations", remove), ElementsAre("A", "B"))
      << "read 2 is already that of B";
  EXPECT_THAT(sources("mtu", "/destinations", assign, 1), ElementsAre("A", "Above"));
  EXPECT_THAT(sources("mtu", "/destinations", replace, 1), ElementsAre("A", "Above", "B"));
  // In the drops command, read 2 is that of the egress record, which precedes the walk.
  const char* const voqs = "/interfaces/Ethernet3/trafficClasses/TC0/ingressVoqCounters/sources";
  EXPECT_THAT(sources("drops", voqs, replace), ElementsAre("Below", "Above", "B"));
  // The number of VOQs changes while Ethernet1.5 is shown, which keeps the old number.
  const auto classes = [&](const std::string& intf) {
    return sources("drops", ("/interfaces/" + intf + "/trafficClasses").c_str(),
                   [](Status& status) { status.subIntfNumVoqs = 2; }, 3, {"Ethernet1.5", "Ethernet1"});
  };
  EXPECT_THAT(classes("Ethernet1.5"), ElementsAre("TC0-1", "TC2-3", "TC4-5", "TC6-7"));
  EXPECT_THAT(classes("Ethernet1.7"), ElementsAre("TC0-3", "TC4-7")) << "to which port 64 belongs";
}

// A caller may release everything while an operation runs.
TEST(CountersPrinter, HoldsWhatItReads) {
  for (const std::string operation : {"queues", "ingress", "cpu", "drops", "acl", "mtu"}) {
    SCOPED_TRACE(operation);
    std::optional<Fixture> fixture(std::in_place);
    fixture->state.status->sppidToIntfId.set(Hardware::Loam::SystemPhyPortId(2), Nexo::IntfId("C"));
    CountersPrinter::Ptr printer = fixture->printer();
    IntfList::PtrConst intfs = fixture->intfs;
    const auto users = [&] {
      return std::vector{fixture->state.status->users(), fixture->state.tmMapping->users(),
                         fixture->state.internalLagStatus->users(), intfs->users()};
    };
    const std::string expected = called(printer, operation, tabula::formatJson, intfs);
    const auto before = users();
    std::vector<bool> held;
    fixture->tables->atRead = [&] {
      if (printer == nullptr) return;
      const auto during = users();
      for (std::size_t i = 0; i < before.size(); ++i) held.push_back(during[i] > before[i]);
      printer = nullptr;
      intfs = nullptr;
      fixture.reset();
    };
    EXPECT_EQ(called(printer, operation, tabula::formatJson, intfs), expected);
    const bool translates = operation == "queues" || operation == "ingress" || operation == "drops";
    EXPECT_THAT(held, ElementsAre(true, translates, translates, translates || operation == "acl"));
  }
}

TEST(CountersPrinter, CarriesOnOrEndsCleanlyAtEveryFault) {
  const Fixture fixture;
  const auto printer = fixture.printer();
  const IntfList::PtrConst intfs = fixture.intfs;
  const auto users = [&] {
    return std::vector{fixture.state.status->users(), printer->fapCounterAccessor()->users(),
                       printer->users(), intfs->users()};
  };
  const auto usersBefore = users();
  const auto tryAll = [&](const std::string& operation, std::size_t flushes, std::array<std::size_t, 2> rest,
                          const std::string& raised = "") {
    for (const U32 fmt : {tabula::formatText, tabula::formatJson}) {
      expectEveryFaultHandled({operation + " " + std::to_string(fmt), flushes + rest[fmt - 1],
                               [&](U32 fd) { call(printer, operation, fd, fmt, intfs); }, raised,
                               [&] { EXPECT_EQ(users(), usersBefore) << "released before it is said"; }});
      // Also between two writes.
      fixture.tables->atRead = [] { tabula::interrupt(); };
      testing::internal::CaptureStdout();
      called(printer, operation, fmt, intfs);
      EXPECT_EQ(testing::internal::GetCapturedStdout(), "exiting interrupted by user\n") << operation;
      fixture.tables->atRead = [] {};
    }
  };
  fixture.state.status->sppidToIntfId.set(Hardware::Loam::SystemPhyPortId(2), Nexo::IntfId("C"));
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
  EXPECT_EQ(users(), usersBefore);
}

TEST(CountersPrinter, NoticesAnInterruptWhereItShowsNothing) {
  const Fixture fixture;
  fixture.tables->dropped = 0;
  int reads = 0;
  fixture.tables->atRead = [&] {
    if (++reads == 3) tabula::interrupt();
  };
  const auto intfs = intfListFactory();
  for (int i = 0; i < 100; ++i) intfs->intfEnq(Nexo::IntfId("Ethernet1"));
  testing::internal::CaptureStdout();
  EXPECT_EQ(called(fixture.printer(), "drops", 1, intfs), "");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "exiting interrupted by user\n");
  EXPECT_EQ(reads, 4) << "an ingress and an egress record of each interface";
}

// Also in steps without a result: here no port has an interface, and no interface a port.
TEST(IntfSelection, NoticesAnInterruptAtEveryStep) {
  using Hardware::Loam::Status;
  const Hardware::Loam::SystemPhyPortId port(64);
  const auto notices = [](const auto& choose) {
    tabula::interrupt();
    EXPECT_THROW(choose(allIntfListFactory()), tabula::SigIntException);
    EXPECT_FALSE(tabula::interruptPending());
  };
  const std::pair<const char*, std::function<void(Status&)>> ports[] = {
      {"kind with a map of ports", [&](Status& status) { status.olpPort.set(0, port); }},
      {"recirculation", [&](Status& status) { status.recircPort.set({.recircType = 0, .id = 0}, port); }},
      {"sFlow", [&](Status& status) { status.fapToSflowAccelSppid.set("A", port); }}};
  for (const auto& [name, enter] : ports) {
    SCOPED_TRACE(name);
    const auto status = Mote::make<Status>();
    enter(*status);
    notices([&](const auto& lists) { appendSpecialIngressInterfaceNames(lists, status); });
    notices([&](const auto& lists) { appendSpecialEgressInterfaceNames(lists, status); });
  }
  const auto intfs = intfListFactory();
  intfs->intfEnq(Nexo::IntfId("Ethernet1"));
  notices([&](const auto& lists) {
    appendWithVoqInterfaceNames(lists, intfs, Mote::make<Status>(), nullptr, nullptr, true);
  });
}

TEST(Threads, ShareOnePrinter) {
  const Fixture fixture;
  fixture.state.status->sppidToIntfId.set(Hardware::Loam::SystemPhyPortId(2), Nexo::IntfId("CpuTm0"));
  const auto printer = fixture.printer();
  // The CPU command runs first, in all threads at the same time: it fills the class sets, which the process
  // keeps.
  const auto answers = [&] {
    std::string all;
    for (const char* operation : {"cpu", "queues", "ingress", "drops", "acl", "mtu"}) {
      for (const U32 fmt : {tabula::formatText, tabula::formatJson}) {
        all += called(printer, operation, fmt, fixture.intfs);
      }
    }
    return all;
  };
  std::vector<std::string> got(4);
  std::vector<std::thread> threads;
  for (std::string& all : got) threads.emplace_back([&] { all = answers(); });
  for (std::thread& thread : threads) thread.join();
  EXPECT_THAT(got, testing::Each(answers()));
  EXPECT_THAT(got.front(), HasSubstr("CoppSystemDefault"));
}

TEST(CountersPrinter, BrokenInvariantsAreFatal) {
  const Fixture fixture;
  const auto printer = fixture.printer();
  EXPECT_DEATH(called(printer, "acl", 3, fixture.intfs), "false && \"Invalid data format\"");
  EXPECT_DEATH(called(printer, "mtu", 3, fixture.intfs), "hasValue");
  EXPECT_DEATH(called(printer, "queues", 3, fixture.intfs), "hasValue");
  fixture.tables->mtuTotal = Keel::MaybeU63(0);
  EXPECT_DEATH(
      called(printer, "mtu", tabula::formatText, nullptr),
      testing::AllOf(HasSubstr("mtuCounter.totalCounter().null()"), testing::Not(HasSubstr("total read"))));
  fixture.state.status->subIntfNumVoqs = 9;
  EXPECT_DEATH(called(printer, "ingress", tabula::formatText, fixture.intfs), "tcPerPort >= countersPerPort");
  const auto classRows = [&](U32 width, bool totalsOnly) {
    tabula::Printer out(-1, tabula::formatText, true, false, true, 0);
    QueueCountersAttrs attrs(out);
    printCpuIngressCountersPerCoppClass(out, printer->fapCounterAccessor(), fixture.state.status, FapId(3),
                                        LocalCoreId(0), width, true, totalsOnly, false, attrs);
  };
  EXPECT_DEATH(classRows(10, true), "queueColWidth == 0");
  EXPECT_DEATH(classRows(0, false), "queueColWidth > 0");
}

}  // namespace

}  // namespace loamtest

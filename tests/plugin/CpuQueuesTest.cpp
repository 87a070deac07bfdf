#include <gmock/gmock.h>

#include "LoamCounters/QueueCountersPrinter/CpuQueues.h"
#include "tests/AnswerParts.h"

namespace loamtest {

namespace {

/// Classes on ports 24, 56 and 2 (queues) and 12, 22 (policers), with counters on both cores of FAP A, and
/// CPU ports 2, 4 and 6: on FAP A, on FAP B, and without a FAP. Interface names are not in the order of
/// ports.
Json cpuSwitch() {
  Json state = smallSwitch();
  Json& status = state["status"];
  status["coppClassNumVoqs"] = 2;
  status["sppidToIntfId"].update({{"24", "Zulu"},
                                  {"56", "Alpha"},
                                  {"57", "NotAClass"},
                                  {"2", "CpuTm0"},
                                  {"23", "NotAClassEither"},
                                  {"12", "Police2"},
                                  {"22", "Police1"},
                                  {"4", "CpuB"},
                                  {"6", "CpuNowhere"},
                                  {"7", "NotACpuPort"}});
  status["intfIdToSppid"]["CpuTm0"] = 2;
  status["intfIdToSppid"]["CpuB"] = 4;
  status["portMap"]["2"] = {{"fapId", 3}};
  status["portMap"]["4"] = {{"fapId", 7}};
  status["portMapToIntfId"] = {{{"fapPortId", 0}, {"fapId", 3}, {"coreId", 0}, {"intfId", "Ethernet1"}},
                               {{"fapPortId", 1}, {"fapId", 3}, {"coreId", 0}, {"intfId", "Port-Channel1"}},
                               {{"fapPortId", 65}, {"fapId", 3}, {"coreId", 1}, {"intfId", "Ethernet2"}}};
  Json& counters = state["counters"];
  U64 base = 0;
  for (const char* name : {"Alpha", "CpuTm0", "Police1", "Police2", "Zulu"}) {
    base += 1000;
    for (const U64 core : {1U, 0U}) {
      counters["ingress"].push_back({{"fapId", 3},
                                     {"coreId", core},
                                     {"intfId", name},
                                     {"queues", {quad(base + 10 * core), quad(base + 10 * core + 100)}},
                                     {"total", quad(base + 10 * core + 500)}});
    }
  }
  for (const char* name : {"CpuTm0", "CpuNowhere"}) counters["egress"][name]["queues"] = {quad(10), quad(20)};
  for (const char* name : {"CpuB", "CpuNowhere"}) {
    const Json pair{{"ucast", quad(100)}, {"mcast", quad(200)}};
    counters["egressTm"][name] = {{"queues", Json(8, pair)}, {"ambiguousTcs", {0, 1}}};
  }
  return state;
}

const char* const classes[] = {"Alpha", "CoppSystemDefault", "Zulu"};
const char* const policers[] = {"Police1", "Police2"};
const std::map<std::string, U64> bases = {
    {"Alpha", 1000}, {"CoppSystemDefault", 2000}, {"Police1", 3000}, {"Police2", 4000}, {"Zulu", 5000}};

// CpuTm0 in port mode: the sum of its two queues. CpuB in queue mode: traffic classes 4 and 5 share the
// counters of 0 and 1, so six of eight count. CpuNowhere has no FAP: both.
const Json tm0 = plus(quad(10), quad(20));
const Json cpuBUnicast = {606, 612, 618, 624};
const Json cpuBMulticast = {1206, 1212, 1218, 1224};

const std::tuple<const char*, Json, Json> cpuPorts[] = {
    {"CpuTm0", tm0, zeros()},
    {"CpuB", cpuBUnicast, cpuBMulticast},
    {"CpuNowhere", plus(tm0, cpuBUnicast), cpuBMulticast}};

std::string portRows(const char* name, const Json& unicast, const Json& multicast) {
  return line("%-20s %-10s ", name, "UC") + columns(17, unicast) + line("%-20s %-10s ", name, "MC") +
         columns(17, multicast);
}

std::string egressSection() {
  std::string text = cpuEgressHead();
  for (const auto& [name, unicast, multicast] : cpuPorts) text += portRows(name, unicast, multicast);
  return text;
}

Json egressJson() {
  Json json;
  for (const auto& [name, unicast, multicast] : cpuPorts) {
    json["sources"]["all"]["cpuPorts"][name] = {{"ucastQueues", {{"queues", {{"0", members(unicast)}}}}},
                                                {"mcastQueues", {{"queues", {{"0", members(multicast)}}}}}};
  }
  return json;
}

TEST(CpuQueues, ShowsTwoTablesPerFapCore) {
  std::string expected;
  Json json;
  for (const std::string source : {"A.0", "A.1", "B"}) {
    const bool counted = source != "B";
    const U64 core = source == "A.1" ? 10 : 0;
    Json& cpuClasses = json["ingressVoqs"]["sources"][source]["cpuClasses"];
    expected += classHead(source + ":", "", true);
    for (const std::string name : classes) {
      const U64 base = bases.at(name) + core;
      const Quads quads = counted ? Quads{quad(base), quad(base + 100)} : Quads{zeros(), zeros()};
      expected += ingressRows(name, {"TC0", "TC1"}, quads, 10);
      cpuClasses[name] = ingressJson({"TC0", "TC1"}, quads, "ports");
    }
    expected += "\n" + classHead(source + ":", perChipTitle, false);
    for (const std::string name : policers) {
      const Quads total = {counted ? quad(bases.at(name) + core + 500) : zeros()};
      expected += ingressRows(name, {""}, total, 0);
      cpuClasses[name] = ingressJson({""}, total, "ports");
    }
    expected += "\n";
  }
  json["egressQueues"] = egressJson();
  EXPECT_EQ(answer(cpuSwitch(), {"cpu"}), expected + egressSection());
  EXPECT_EQ(lines(answer(cpuSwitch(), {"cpu", "-j"})), lines(json.dump() + "\n"));
}

TEST(CpuQueues, SummaryIsOfTheWholeSwitch) {
  std::string expected;
  Json json;
  const auto table = [&](const char* subtitle, const auto& names) {
    expected += classHead("Aggregate CPU counters:", subtitle, false);
    for (const std::string name : names) {
      const Quads total = {plus(quad(bases.at(name) + 500), quad(bases.at(name) + 510))};
      expected += ingressRows(name, {""}, total, 0);
      json["ingressVoqs"]["sources"]["all"]["cpuClasses"][name] = ingressJson({""}, total, "ports");
    }
    expected += "\n";
  };
  table(queueTitle, classes);
  table(policerTitle, policers);
  json["egressQueues"] = egressJson();
  EXPECT_EQ(answer(cpuSwitch(), {"cpu", "--summary"}), expected + egressSection());
  EXPECT_EQ(lines(answer(cpuSwitch(), {"cpu", "--summary", "--per-port", "-j"})), lines(json.dump() + "\n"));
}

TEST(CpuQueues, APortWithoutAFapIsReadInEveryModeThatAFapHas) {
  Json state = cpuSwitch();
  const std::string rows[] = {portRows("CpuNowhere", tm0, zeros()),
                              portRows("CpuNowhere", cpuBUnicast, cpuBMulticast)};
  for (const int major : {1, 2}) {
    for (auto& entry : state["status"]["fapRevision"].items()) entry.value()["major"] = major;
    EXPECT_THAT(answer(state, {"cpu", "--summary"}), testing::EndsWith(rows[major - 1]));
  }
}

TEST(CpuQueues, CountsOfAPortAreAdded) {
  const auto tables = Mote::make<LoamCounters::MemoryCounterTables>();
  LoamCounters::EgressCounter record;
  record.quadIs(LoamCounters::EgressCounterIndex(28), {1, 2, 3, 4});
  const Nexo::IntfId intf("C");
  tables->egress.set(intf, record);
  const auto entityManager = Mote::make<Cortex::EntityManager>();
  entityManager->mountIs(LoamCounters::CounterTables::path, tables);
  const auto accessor = Mote::make<LoamCounters::CounterEngineAccessor>(nullptr, nullptr, nullptr, nullptr,
                                                                        entityManager, false);
  LoamCounters::CpuPortCounters counters{};
  for (const bool queueMode : {false, true, false}) {
    LoamCounters::addIntfEgrCpuCounters(accessor, counters, intf, queueMode);
  }
  EXPECT_EQ(counters[0], (LoamCounters::CounterQuad{2, 4, 6, 8}));
  EXPECT_EQ(counters[1], LoamCounters::CounterQuad());
}

TEST(CpuQueues, LabelsVoqsByInputPort) {
  const auto labels = [](const Json& state, const char* source) {
    const Json json = Json::parse(answer(state, {"cpu", "--per-port", "-j"}))["ingressVoqs"]["sources"];
    std::string names;
    for (const auto& port : json[source]["cpuClasses"]["Alpha"]["ports"].items()) names += port.key() + " ";
    return names;
  };
  // The ports of a core start at 64 times its number, those of core 5 at 0. Labels of unmapped ports count
  // from 0.
  EXPECT_EQ(labels(cpuSwitch(), "A.0"), "Et1 Port1 ");
  EXPECT_EQ(labels(cpuSwitch(), "A.1"), "Port0 Et2 ");
  EXPECT_EQ(labels(cpuSwitch(), "B"), "Port0 Port1 ");
  Json state = cpuSwitch();
  state["status"]["fapNumCores"] = {{"3", 6}};
  state["status"]["coppClassNumVoqs"] = 1;  // needs port 256 for core 4, the highest port
  state["status"]["portMapToIntfId"] = {
      {{"fapPortId", 0}, {"fapId", 3}, {"coreId", 5}, {"intfId", "Ethernet7"}}};
  EXPECT_EQ(labels(state, "A.4"), "Port0 ");
  EXPECT_EQ(labels(state, "A.5"), "Et7 ");
  state["status"]["coppClassNumVoqs"] = 2;  // needs port 257, which is invalid
  EXPECT_THROW(answer(state, {"cpu", "--per-port"}), Vane::RangeException);
}

TEST(CpuQueues, ClassesOfTheFirstSwitchThatHasAnyStay) {
  Json bare = smallSwitch();
  const std::string headsOnly = answer(bare, {"cpu", "--summary"});
  EXPECT_EQ(headsOnly.find("Alpha"), std::string::npos);
  EXPECT_NE(answer(cpuSwitch(), {"cpu", "--summary"}).find("Alpha"), std::string::npos);
  EXPECT_NE(answer(bare, {"cpu", "--summary"}).find("Alpha"), std::string::npos);
}

}  // namespace

}  // namespace loamtest

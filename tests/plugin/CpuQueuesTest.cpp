#include <gmock/gmock.h>

#include "tests/AnswerParts.h"

namespace loamtest {

namespace {

const char* const classes[] = {"Alpha", "CoppSystemDefault", "Zulu"};
const char* const policers[] = {"Police1", "Police2"};
const std::map<std::string, U64> bases = {
    {"Alpha", 1000}, {"CoppSystemDefault", 2000}, {"Police1", 3000}, {"Police2", 4000}, {"Zulu", 5000}};

/// Classes on ports 24, 56 and 2 (queues) and 12, 22 (policers), with counters on both cores of FAP A, and
/// CPU ports 2, 4 and 6: on FAP A, on FAP B, and without a FAP. Interface names are not in the order of
/// ports.
Json cpuSwitch() {
  Json state = smallSwitch();
  state["status"].merge_patch(Json::parse(R"({
    "coppClassNumVoqs": 2,
    "sppidToIntfId": {"24": "Zulu", "56": "Alpha", "57": "NotAClass", "2": "CpuTm0", "23": "NotAClassEither",
                      "12": "Police2", "22": "Police1", "4": "CpuB", "6": "CpuNowhere", "7": "NotACpuPort"},
    "intfIdToSppid": {"CpuTm0": 2, "CpuB": 4},
    "portMap": {"2": {"fapId": 3}, "4": {"fapId": 7}},
    "portMapToIntfId": [{"fapPortId": 0, "fapId": 3, "coreId": 0, "intfId": "Ethernet1"},
                        {"fapPortId": 1, "fapId": 3, "coreId": 0, "intfId": "Port-Channel1"},
                        {"fapPortId": 65, "fapId": 3, "coreId": 1, "intfId": "Ethernet2"}]
  })"));
  Json& counters = state["counters"];
  for (const auto& [name, base] : bases) {
    for (const U64 core : {1U, 0U}) {
      counters["ingress"].push_back({{"fapId", 3},
                                     {"coreId", core},
                                     {"intfId", name == "CoppSystemDefault" ? "CpuTm0" : name},
                                     {"queues", {quad(base + 10 * core), quad(base + 10 * core + 100)}},
                                     {"total", quad(base + 10 * core + 500)}});
    }
  }
  for (const char* name : {"CpuTm0", "CpuNowhere"}) counters["egress"][name]["queues"] = Json(8, quad(10));
  for (const char* name : {"CpuB", "CpuNowhere"}) {
    const Json pair{{"ucast", quad(100)}, {"mcast", quad(200)}};
    counters["egressTm"][name] = {{"queues", Json(8, pair)}, {"ambiguousTcs", {0, 1}}};
  }
  return state;
}

// CpuTm0 in port mode: the sum of its eight queues. CpuB in queue mode: traffic classes 4 and 5 share the
// counters of 0 and 1, so six of eight count. CpuNowhere has no FAP: both.
const Json tm0 = {88, 96, 104, 112};
const Json cpuBUnicast = {606, 612, 618, 624};
const Json cpuBMulticast = {1206, 1212, 1218, 1224};

std::string portRows(const char* name, const Json& unicast, const Json& multicast) {
  return line("%-20s %-10s ", name, "UC") + columns(17, unicast) + line("%-20s %-10s ", name, "MC") +
         columns(17, multicast);
}

/// Expects the ingress tables, and those of the CPU ports after them, in both formats.
void expectAnswer(std::vector<std::string> command, std::string text, const Json& ingress) {
  Json json{{"ingressVoqs", ingress}};
  text += cpuEgressHead;
  const std::tuple<const char*, Json, Json> ports[] = {{"CpuTm0", tm0, zeros},
                                                       {"CpuB", cpuBUnicast, cpuBMulticast},
                                                       {"CpuNowhere", plus(tm0, cpuBUnicast), cpuBMulticast}};
  for (const auto& [name, unicast, multicast] : ports) {
    text += portRows(name, unicast, multicast);
    json["egressQueues"]["sources"]["all"]["cpuPorts"][name] = {
        {"ucastQueues", {{"queues", {{"0", members(unicast)}}}}},
        {"mcastQueues", {{"queues", {{"0", members(multicast)}}}}}};
  }
  EXPECT_EQ(answer(cpuSwitch(), command), text);
  command.emplace_back("-j");
  EXPECT_EQ(lines(answer(cpuSwitch(), command)), lines(json.dump() + "\n"));
}

TEST(CpuQueues, ShowsTwoTablesPerFapCore) {
  std::string text;
  Json json;
  for (const std::string source : {"A.0", "A.1", "B"}) {
    const auto counts = [&](const std::string& name, U64 offset) {
      return source == "B" ? zeros : quad(bases.at(name) + (source == "A.1" ? 10 : 0) + offset);
    };
    Json& cpuClasses = json["sources"][source]["cpuClasses"];
    text += classHead(source + ":", "", true);
    for (const std::string name : classes) {
      const Quads quads = {counts(name, 0), counts(name, 100)};
      text += ingressRows(name, {"TC0", "TC1"}, quads, 10);
      cpuClasses[name] = ingressJson({"TC0", "TC1"}, quads, "ports");
    }
    text += "\n" + classHead(source + ":", perChipTitle, false);
    for (const std::string name : policers) {
      text += ingressRows(name, {""}, {counts(name, 500)}, 0);
      cpuClasses[name] = ingressJson({""}, {counts(name, 500)}, "ports");
    }
    text += "\n";
  }
  expectAnswer({"cpu"}, text, json);
}

TEST(CpuQueues, SummaryIsOfTheWholeSwitch) {
  std::string text;
  Json json;
  const auto table = [&](const char* subtitle, const auto& names) {
    text += classHead("Aggregate CPU counters:", subtitle, false);
    for (const std::string name : names) {
      const Quads total = {plus(quad(bases.at(name) + 500), quad(bases.at(name) + 510))};
      text += ingressRows(name, {""}, total, 0);
      json["sources"]["all"]["cpuClasses"][name] = ingressJson({""}, total, "ports");
    }
    text += "\n";
  };
  table(queueTitle, classes);
  table(policerTitle, policers);
  expectAnswer({"cpu", "--summary", "--per-port"}, text, json);
}

TEST(CpuQueues, APortWithoutAFapIsReadInEveryModeThatAFapHas) {
  Json state = cpuSwitch();
  for (const auto& [major, rows] : {std::pair{1, portRows("CpuNowhere", tm0, zeros)},
                                    std::pair{2, portRows("CpuNowhere", cpuBUnicast, cpuBMulticast)}}) {
    for (Json& revision : state["status"]["fapRevision"]) revision["major"] = major;
    EXPECT_THAT(answer(state, {"cpu", "--summary"}), testing::EndsWith(rows));
  }
}

TEST(CpuQueues, LabelsVoqsByInputPort) {
  const auto labels = [](const Json& state, const std::string& source) {
    return keysAt(answer(state, {"cpu", "--per-port", "-j"}),
                  "/ingressVoqs/sources/" + source + "/cpuClasses/Alpha/ports");
  };
  // The ports of a core start at 64 times its number, those of core 5 at 0. Labels of unmapped ports count
  // from 0.
  EXPECT_EQ(labels(cpuSwitch(), "A.0"), words("Et1 Port1"));
  EXPECT_EQ(labels(cpuSwitch(), "A.1"), words("Port0 Et2"));
  EXPECT_EQ(labels(cpuSwitch(), "B"), words("Port0 Port1"));
  Json state = cpuSwitch();
  state["status"]["fapNumCores"] = {{"3", 6}};
  state["status"]["coppClassNumVoqs"] = 1;  // needs port 256 for core 4, the highest port
  state["status"]["portMapToIntfId"] = {
      {{"fapPortId", 0}, {"fapId", 3}, {"coreId", 5}, {"intfId", "Ethernet7"}}};
  EXPECT_EQ(labels(state, "A.4"), words("Port0"));
  EXPECT_EQ(labels(state, "A.5"), words("Et7"));
  state["status"]["coppClassNumVoqs"] = 2;  // needs port 257, which is invalid
  EXPECT_THROW(answer(state, {"cpu", "--per-port"}), Vane::RangeException);
}

TEST(CpuQueues, ClassesOfTheFirstSwitchThatHasAnyStay) {
  using testing::HasSubstr;
  EXPECT_THAT(answer(smallSwitch(), {"cpu", "--summary"}), testing::Not(HasSubstr("Alpha")));
  EXPECT_THAT(answer(cpuSwitch(), {"cpu", "--summary"}), HasSubstr("Alpha"));
  EXPECT_THAT(answer(smallSwitch(), {"cpu", "--summary"}), HasSubstr("Alpha"));
}

}  // namespace

}  // namespace loamtest

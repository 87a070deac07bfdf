#include <gmock/gmock.h>

#include "tests/AnswerParts.h"

namespace loamtest {

namespace {

using testing::HasSubstr;

const char* const sources[] = {"A.0", "A.1", "B"};

std::string row(const std::string& label, const Json& quad) {
  return line("%-15s %7s ", label.c_str(), "") + columns(17, quad);
}

std::string titles(const std::string& name, const std::string& label) {
  return line("%-15s %7s %17s %17s %17s %17s\n", name.c_str(), label.c_str(), "", "", "", "");
}

std::string egressRowsOf(const Json& ucast, const Json& mcast) {
  return row(" Egress queue", plus(ucast, mcast)) + row(" - DP0-3 UC", ucast) + row(" - DP0-3 MC", mcast);
}

Json egressJsonOf(const Json& ucast, const Json& mcast) {
  return {
      {"countersSum", members(plus(ucast, mcast))},
      {"dropPrecedences", {{"DP0-3", {{"ucastQueues", members(ucast)}, {"mcastQueues", members(mcast)}}}}}};
}

/// The ingress part of a traffic class.
std::string ingressRowsOf(U64 intf, U64 t) {
  std::string text = row(" VOQ", ingressSum(intf, t));
  for (U64 s = 0; s < 3; ++s) text += row(std::string(" - ") + sources[s], quad(ingressBase(intf, s, t)));
  return text;
}

Json ingressJsonOf(U64 intf, U64 t) {
  Json json{{"countersSum", members(ingressSum(intf, t))}};
  for (U64 s = 0; s < 3; ++s) json["sources"][sources[s]] = members(quad(ingressBase(intf, s, t)));
  return json;
}

Json um(U64 kind, U64 intf, U64 t, U64 destType) {
  return quad(egressBase(kind, intf, t, destType));
}

TEST(QueueDrops, ShowsIngressAndEgressPerTrafficClass) {
  std::string expected = dropsHead();
  Json json;
  const auto trafficClass = [&](const char* longName, const char* shortName, const std::string& label,
                                U64 intf, U64 t, const std::string& egressText, const Json& egress) {
    expected += titles(shortName, label) + ingressRowsOf(intf, t) + egressText;
    json["interfaces"][longName]["trafficClasses"][label] = {{"ingressVoqCounters", ingressJsonOf(intf, t)},
                                                             {"egressQueueCounters", egress}};
  };
  for (U64 t = 0; t < 8; ++t) {  // port mode: no multicast
    trafficClass("Ethernet1", "Et1", "TC" + std::to_string(t), 1, t, egressRowsOf(um(0, 1, t, 0), zeros()),
                 egressJsonOf(um(0, 1, t, 0), zeros()));
  }
  const char* subIntfLabels[] = {"TC0-1", "TC2-3", "TC4-5", "TC6-7"};
  for (U64 t = 0; t < 4; ++t) {
    trafficClass("Ethernet1.5", "Et1.5", subIntfLabels[t], 2, t, "", Json::object());
  }
  // Queue mode: traffic classes 1 and 5 share a counter, which follows the others.
  for (U64 t = 0; t < 8; ++t) {
    const bool shared = t == 1 || t == 5;
    trafficClass("Ethernet3", "Et3", "TC" + std::to_string(t), 3, t,
                 shared ? "" : egressRowsOf(um(1, 3, t, 0), um(1, 3, t, 1)),
                 shared ? Json::object() : egressJsonOf(um(1, 3, t, 0), um(1, 3, t, 1)));
  }
  expected += titles("Et3", "TC1,5") + egressRowsOf(um(1, 3, 1, 0), um(1, 3, 1, 1)) + "\n";
  json["interfaces"]["Ethernet3"]["trafficClasses"]["TC1,5"]["egressQueueCounters"] =
      egressJsonOf(um(1, 3, 1, 0), um(1, 3, 1, 1));
  EXPECT_EQ(answer(smallSwitch(), {"drops"}), expected);
  EXPECT_EQ(answer(smallSwitch(), {"drops", "-j"}), json.dump() + "\n");
}

TEST(QueueDrops, LeavesOutInterfacesWithoutDrops) {
  const Json calm = {1, 2, 0, 4};
  const auto shown = [&](const char* record, const char* intf) {
    Json state = smallSwitch();
    for (Json& entry : state["counters"]["ingress"]) entry["total"] = calm;
    for (const char* kind : {"egress", "egressTm", "egressLag"}) {
      for (Json& entry : state["counters"][kind]) entry["total"] = calm;
    }
    if (record != nullptr) state["counters"][record][intf]["total"] = {1, 2, 1, 4};
    std::vector<std::string> names;
    const Json json = Json::parse(answer(state, {"drops", "-j"}));
    for (const auto& [name, classes] : json["interfaces"].items()) names.push_back(name);
    return names;
  };
  EXPECT_THAT(shown(nullptr, ""), testing::IsEmpty());
  EXPECT_THAT(shown("egress", "Ethernet1"), testing::ElementsAre("Ethernet1"));
  EXPECT_THAT(shown("egress", "Ethernet3"), testing::IsEmpty())
      << "a record of the other mode does not count";
  EXPECT_THAT(shown("egressTm", "Ethernet3"), testing::ElementsAre("Ethernet3"));
}

TEST(QueueDrops, AnInterfaceWithoutAFapIsShownInBothModes) {
  Json state = smallSwitch();
  state["status"]["portMap"].erase("66");
  state["counters"]["egress"]["Ethernet3"]["queues"] = {quad(50)};
  const std::string text = answer(state, {"drops", "Et3"});
  const std::string port = egressRowsOf(quad(50), zeros());
  const std::string queue = egressRowsOf(um(1, 3, 0, 0), um(1, 3, 0, 1));
  EXPECT_THAT(text, HasSubstr(ingressRowsOf(3, 0) + port + queue));
  EXPECT_THAT(text, HasSubstr(ingressRowsOf(3, 1) + egressRowsOf(zeros(), zeros()) + titles("Et3", "TC2")));
}

TEST(QueueDrops, ASubInterfaceHasNoEgressPart) {
  Json state = smallSwitch();
  state["status"]["portMap"]["65"]["fapId"] = 7;  // in queue mode
  state["counters"]["egressTm"]["Ethernet1.5"] = state["counters"]["egressTm"]["Ethernet3"];
  const std::string text = answer(state, {"drops", "et1.5"});
  EXPECT_EQ(text.find("Egress"), std::string::npos);
  EXPECT_EQ(text.find("TC1,5"), std::string::npos);
}

TEST(QueueDrops, LongLabelsShiftTheirRow) {
  Json state = smallSwitch();
  state["status"]["fapIdToName"] = {{"7", "Quarterdeck42"}};
  state["status"]["subIntfNumVoqs"] = 0;
  const Json count = quad(ingressBase(1, 2, 0));
  EXPECT_THAT(answer(state, {"drops", "et1"}), HasSubstr(" - Quarterdeck42         " + columns(17, count)));
  EXPECT_EQ(answer(state, {"drops", "et1.5", "-j"}),
            "{\"interfaces\":{\"Ethernet1.5\":{\"trafficClasses\":{}}}}\n");
}

}  // namespace

}  // namespace loamtest

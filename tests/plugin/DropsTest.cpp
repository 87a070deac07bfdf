#include <gmock/gmock.h>

#include "platform/Nexo.h"
#include "tests/AnswerParts.h"

namespace loamtest {

namespace {

using testing::HasSubstr;

std::string row(const std::string& label, const Json& quad) {
  return line("%-15s %7s ", label.c_str(), "") + columns(17, quad);
}

std::string titles(const std::string& name, const std::string& label) {
  return line("%-15s %7s %17s %17s %17s %17s\n", name.c_str(), label.c_str(), "", "", "", "");
}

/// Rows of a traffic class in both formats.
struct Part {
  std::string text;
  Json json = Json::object();
};

Part egress(const Json& ucast, const Json& mcast) {
  const Json sum = plus(ucast, mcast);
  return {
      row(" Egress queue", sum) + row(" - DP0-3 UC", ucast) + row(" - DP0-3 MC", mcast),
      {{"countersSum", members(sum)},
       {"dropPrecedences", {{"DP0-3", {{"ucastQueues", members(ucast)}, {"mcastQueues", members(mcast)}}}}}}};
}

Part queueMode(U64 t) {
  return egress(quad(egressBase(EgressRecord::queueMode, ethernet3, t, DestType::unicast)),
                quad(egressBase(EgressRecord::queueMode, ethernet3, t, DestType::multicast)));
}

Part ingress(U64 intf, U64 t) {
  Part part{row(" VOQ", ingressSum(intf, t)), {{"countersSum", members(ingressSum(intf, t))}}};
  const char* const sources[] = {"A.0", "A.1", "B"};
  for (U64 s = 0; s < 3; ++s) {
    const Json counts = quad(ingressBase(intf, s, t));
    part.text += row(std::string(" - ") + sources[s], counts);
    part.json["sources"][sources[s]] = members(counts);
  }
  return part;
}

TEST(QueueDrops, ShowsIngressAndEgressPerTrafficClass) {
  std::string expected = dropsHead;
  Json json;
  const auto trafficClass = [&](const char* name, const std::string& label, U64 intf, U64 t,
                                const Part& egress) {
    expected += titles(Nexo::IntfId(name).shortName().c_str(), label) + ingress(intf, t).text + egress.text;
    json["interfaces"][name]["trafficClasses"][label] = {{"ingressVoqCounters", ingress(intf, t).json},
                                                         {"egressQueueCounters", egress.json}};
  };
  for (U64 t = 0; t < 8; ++t) {  // port mode has no multicast
    const Json unicast = quad(egressBase(EgressRecord::portMode, ethernet1, t, DestType::unicast));
    trafficClass("Ethernet1", tcs()[t], ethernet1, t, egress(unicast, zeros));
  }
  // A sub-interface has no egress part, although its FAP is in queue mode.
  Json state = smallSwitch();
  state["status"]["portMap"]["65"]["fapId"] = 7;
  state["counters"]["egressTm"]["Ethernet1.5"] = state["counters"]["egressTm"]["Ethernet3"];
  const char* subIntfLabels[] = {"TC0-1", "TC2-3", "TC4-5", "TC6-7"};
  for (U64 t = 0; t < 4; ++t) trafficClass("Ethernet1.5", subIntfLabels[t], subInterface, t, {});
  // Queue mode: traffic classes 1 and 5 share a counter, which follows the others.
  for (U64 t = 0; t < 8; ++t) {
    trafficClass("Ethernet3", tcs()[t], ethernet3, t, t % 4 == 1 ? Part() : queueMode(t));
  }
  expected += titles("Et3", "TC1,5") + queueMode(1).text + "\n";
  json["interfaces"]["Ethernet3"]["trafficClasses"]["TC1,5"]["egressQueueCounters"] = queueMode(1).json;
  EXPECT_EQ(answer(state, {"drops"}), expected);
  EXPECT_EQ(lines(answer(state, {"drops", "-j"})), lines(json.dump() + "\n"));
}

TEST(QueueDrops, LeavesOutInterfacesWithoutDrops) {
  // The interfaces shown if one record has a drop.
  const auto shown = [](const std::string& record) {
    Json state = smallSwitch();
    for (const char* kind : {"ingress", "egress", "egressTm", "egressLag"}) {
      for (Json& entry : state["counters"][kind]) entry["total"] = {1, 2, 0, 4};
    }
    state["counters"][Json::json_pointer(record)]["total"] = {1, 2, 1, 4};
    return keysAt(answer(state, {"drops", "-j"}), "/interfaces");
  };
  EXPECT_EQ(shown("/ingress/0"), words("Ethernet1"));  // the first of its three sources
  EXPECT_EQ(shown("/egress/Ethernet1"), words("Ethernet1"));
  EXPECT_EQ(shown("/egress/Ethernet3"), words(""));  // a record of the other mode does not count
  EXPECT_EQ(shown("/egressTm/Ethernet3"), words("Ethernet3"));
}

TEST(QueueDrops, AnInterfaceWithoutAFapIsShownInEveryModeThatAFapHas) {
  Json state = smallSwitch();
  state["status"]["portMap"].erase("66");
  state["counters"]["egress"]["Ethernet3"]["queues"] = {quad(50)};
  const std::string port = egress(quad(50), zeros).text;
  const std::string queue = queueMode(0).text;
  const std::tuple<int, int, std::string> cases[] = {{1, 2, port + queue}, {1, 1, port}, {2, 2, queue}};
  for (const auto& [majorA, majorB, egress] : cases) {
    state["status"]["fapRevision"] = {{"3", {{"major", majorA}}}, {"7", {{"major", majorB}}}};
    EXPECT_THAT(answer(state, {"drops", "Et3"}),
                HasSubstr(ingress(ethernet3, 0).text + egress + titles("Et3", "TC1")));
  }
}

TEST(QueueDrops, LongLabelsShiftTheirRow) {
  Json state = smallSwitch();
  state["status"]["fapIdToName"] = {{"7", "Quarterdeck42"}};
  state["status"]["subIntfNumVoqs"] = 0;
  const Json count = quad(ingressBase(ethernet1, 2, 0));
  EXPECT_THAT(answer(state, {"drops", "et1"}), HasSubstr(" - Quarterdeck42         " + columns(17, count)));
  EXPECT_EQ(answer(state, {"drops", "et1.5", "-j"}),
            "{\"interfaces\":{\"Ethernet1.5\":{\"trafficClasses\":{}}}}\n");
}

TEST(EgressAclDrops, DistinguishNoCountFromZero) {
  Json state = smallSwitch();
  state["interfaces"] = {"Loopback0", "Ethernet3", "Ethernet1", "Port-Channel1"};
  state["counters"]["egressAcl"] = {
      {"Ethernet3", 9223372036854775807}, {"Ethernet1", 0}, {"Loopback0", nullptr}};
  EXPECT_EQ(answer(state, {"acl"}), aclHead + R"(Loopback0                  n/a                 n/a
Et3                        n/a 9223372036854775807
Et1                        n/a                   0
Po1                        n/a                 n/a
)");
  EXPECT_EQ(answer(state, {"acl", "-j"}),
            R"({"interfaces":{"Loopback0":{},"Ethernet3":{"mlagPackets":9223372036854775807},)"
            R"("Ethernet1":{"mlagPackets":0},"Port-Channel1":{}}})"
            "\n");
}

TEST(EgressMtu, DistinguishesNoCountFromZero) {
  Json state = smallSwitch();
  state["status"]["fapIdToName"] = {{"30", "Aa"}, {"4", "Zz"}, {"9", "None"}};
  state["counters"]["egressMtu"] = {
      {"4", {{"enqueuedPackets", 0}, {"droppedPackets", 7}, {"totalPackets", 8}}},
      {"30", {{"totalPackets", 5}, {"droppedPackets", nullptr}}}};
  EXPECT_EQ(answer(state, {"mtu"}),
            mtuHead + R"(Zz                                  0                   7                   8
None                              n/a                 n/a                 n/a
Aa                                n/a                 n/a                   5
)");
  EXPECT_EQ(answer(state, {"mtu", "-j"}),
            R"({"destinations":{"Zz":{"enqueuedPackets":0,"droppedPackets":7,"totalPackets":8},"None":{},)"
            R"("Aa":{"totalPackets":5}}})"
            "\n");
}

}  // namespace

}  // namespace loamtest

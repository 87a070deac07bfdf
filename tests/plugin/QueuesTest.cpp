#include <gmock/gmock.h>

#include "tests/AnswerParts.h"

namespace loamtest {

namespace {

using testing::ElementsAre;

const Labels subIntfLabels = {"TC0-1", "TC2-3", "TC4-5", "TC6-7"};
const Labels pairedLabels = {"TC0", "TC1,5", "TC2", "TC3", "TC4", "TC6", "TC7"};
const std::vector<U64> pairedTcs = {0, 1, 2, 3, 4, 6, 7};
const std::vector<U64> allTcs = {0, 1, 2, 3, 4, 5, 6, 7};
const std::vector<U64> lagTcs = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11};

Labels lagLabels() {
  Labels labels = tcs();
  labels.insert(labels.end(), {"TC0,4", "TC1,5", "TC2,6", "TC3,7"});
  return labels;
}

Quads noCounts() {
  return Quads(8, zeros());
}

TEST(Queues, ShowsAggregateIngressThenEgress) {
  const Json state = smallSwitch();
  std::string text = ingressHead("Aggregate VoQ Counters");
  Json json;
  Json& ingress = json["ingressVoqCounters"]["interfaces"];
  addIngress(text, ingress, "Ethernet1", tcs(), ingressSums(ethernet1));
  addIngress(text, ingress, "Ethernet1.5", subIntfLabels, ingressSums(subInterface, 4));
  addIngress(text, ingress, "Ethernet3", tcs(), ingressSums(ethernet3));
  addIngress(text, ingress, "Port-Channel1", tcs(), ingressSums(portChannel1));
  text += "\n" + egressHead();
  Json& egress = json["egressQueueCounters"]["interfaces"];
  addEgress(text, egress, "Ethernet1", tcs(),
            egressQuads(EgressRecord::portMode, ethernet1, DestType::unicast, allTcs), noCounts());
  addEgress(text, egress, "Ethernet3", pairedLabels,
            egressQuads(EgressRecord::queueMode, ethernet3, DestType::unicast, pairedTcs),
            egressQuads(EgressRecord::queueMode, ethernet3, DestType::multicast, pairedTcs));
  // The port channel has no FAP, so it has both modes of the switch: its rows come twice.
  for (int mode = 0; mode < 2; ++mode) {
    addEgress(text, egress, "Port-Channel1", lagLabels(),
              egressQuads(EgressRecord::lag, portChannel1, DestType::unicast, lagTcs),
              egressQuads(EgressRecord::lag, portChannel1, DestType::multicast, lagTcs));
  }
  EXPECT_EQ(answer(state, {"queues"}), text + "\n");
  std::string twice = json.dump();
  twice.insert(twice.size() - 3, ",\"Port-Channel1\":" + egress["Port-Channel1"].dump());
  EXPECT_EQ(lines(answer(state, {"queues", "--json"})), lines(twice + "\n"));
  EXPECT_EQ(answer(state, {"queues", "--detail"}), text + "\n");
}

TEST(Queues, RowsOfAQueueModeFapDependOnItsSharedClasses) {
  const std::tuple<std::vector<int>, Labels, std::vector<U64>> cases[] = {
      {{}, tcs(), allTcs},
      {{0, 1, 2, 3}, {"TC0,4", "TC1,5", "TC2,6", "TC3,7"}, {0, 1, 2, 3}},
      {{3}, {"TC0", "TC1", "TC2", "TC3,7", "TC4", "TC5", "TC6"}, {0, 1, 2, 3, 4, 5, 6}}};
  for (const auto& [shared, labels, tcs] : cases) {
    Json state = smallSwitch();
    state["counters"]["egressTm"]["Ethernet3"]["ambiguousTcs"] = shared;
    std::string text = egressHead();
    Json json;
    addEgress(text, json, "Ethernet3", labels,
              egressQuads(EgressRecord::queueMode, ethernet3, DestType::unicast, tcs),
              egressQuads(EgressRecord::queueMode, ethernet3, DestType::multicast, tcs));
    EXPECT_THAT(answer(state, {"queues", "et3"}), testing::EndsWith("\n" + text + "\n"));
    EXPECT_EQ(Json::parse(answer(state, {"queues", "et3", "-j"}))["egressQueueCounters"]["interfaces"], json);
  }
}

TEST(Queues, AnInterfaceWithoutAFapIsShownInEveryModeThatAFapHas) {
  for (const int major : {1, 2}) {
    Json state = smallSwitch();
    for (auto& entry : state["status"]["fapRevision"].items()) entry.value()["major"] = major;
    // Queue mode adds rows of shared classes.
    const Labels labels = major == 1 ? tcs() : lagLabels();
    const std::vector<U64>& shown = major == 1 ? allTcs : lagTcs;
    std::string text = egressHead();
    Json json;
    addEgress(text, json, "Port-Channel1", labels,
              egressQuads(EgressRecord::lag, portChannel1, DestType::unicast, shown),
              egressQuads(EgressRecord::lag, portChannel1, DestType::multicast, shown));
    EXPECT_THAT(answer(state, {"queues", "po1"}), testing::EndsWith("\n" + text + "\n"));
  }
}

/// The small switch with every kind of special port. Every port except 340 maps to an interface named after
/// it.
Json specialSwitch() {
  Json state = smallSwitch();
  Json& status = state["status"];
  status["olpPort"] = {{"9", 301}, {"1", 302}};
  status["erpPort"] = {{"0", 303}};
  for (const int type : {0, 1, 4, 5, 7, 8, 9, 10, 17, 18, 19, 20, 21}) {
    status["recircPort"].push_back({{"recircType", type}, {"id", 0}, {"systemPhyPortId", 304 + type}});
  }
  status["fabricMeshDropPort"] = {{"0", 326}};
  status["fapToSflowAccelSppid"] = {{"A", 330}, {"B", 330}, {"C", 328}};
  status["ipsecPort"] = {{"0", 331}, {"1", 340}};
  status["eventorPort"] = {{"7", 332}, {"3", 333}};
  status["sppidToIntfId"]["11"] = "P11";
  for (int port = 301; port <= 333; ++port) {
    status["sppidToIntfId"][std::to_string(port)] = "P" + std::to_string(port);
  }
  return state;
}

TEST(Queues, InternalAddsSpecialInterfacesInTheOrderOfTheirKinds) {
  Json state = specialSwitch();
  state["fabricMcastVoq"] = {{"min", 20}, {"max", 23}};
  state["counters"]["ingress"].push_back(
      {{"fapId", 7}, {"intfId", "FabricMcast1"}, {"queues", {quad(500), quad(600)}}});
  state["status"]["sppidToIntfId"]["332"] = "Port-Channel9";
  state["status"]["sppidToIntfId"]["333"] = "X.5";
  const std::string text = answer(state, {"queues", "Ethernet1", "--internal"});
  const std::size_t middle = text.find("Egress Queue Counters");
  const std::string ingress = text.substr(0, middle);
  // OLP, ERP, L3 flood (recirculation types 1 to 4), routing (8), shared (10 to 17), PLR (9), fabric mesh
  // (port 11), sFlow by port, IPsec, Eventor by FAP. CPU recirculation is not enabled.
  EXPECT_THAT(rowNames(ingress), ElementsAre("Et1", "P302", "P301", "P303", "P305", "P308", "P312", "P314",
                                             "P321", "P313", "P11", "P328", "P330", "P331", "X.5", "Po9",
                                             "FabricMcast0", "FabricMcast1", "FabricMcast2", "FabricMcast3"));
  EXPECT_THAT(rowNames(text.substr(middle)),
              ElementsAre("Et1", "P302", "P301", "P305", "P308", "P312", "P314", "P321", "P313", "P326",
                          "P328", "P330", "P331", "X.5", "Po9"));
  EXPECT_NE(ingress.find(ingressRows("X.5", tcs(), Quads(8, zeros()))), std::string::npos)
      << "a special interface has the traffic classes of a port";
  EXPECT_EQ(text.find("TC0,4"), std::string::npos) << "and none of a port channel";
  EXPECT_NE(ingress.find(ingressRows("FabricMcast1", {"TC2-3"}, {quad(500)})), std::string::npos);
  EXPECT_EQ(Json::parse(answer(
                state, {"queues", "--internal", "-j"}))["ingressVoqCounters"]["interfaces"]["FabricMcast1"],
            ingressJson({"TC2-3"}, {quad(500)}));

  state["status"]["cpuRecircEnabled"] = true;
  const std::string enabled = answer(state, {"queues", "--internal"});
  EXPECT_EQ(rowNames(enabled.substr(0, enabled.find("Egress Queue Counters")))[13], "P324");
  EXPECT_EQ(rowNames(enabled.substr(enabled.find("Egress Queue Counters")))[11], "P324");
}

TEST(Queues, TranslatesInterfacesToThoseThatOwnQueues) {
  Json state = smallSwitch();
  Json& status = state["status"];
  status["intfIdToSppid"]["Port-Channel1"] = 70;  // no TM entry: kept unchanged, except with VOQ ports only
  status["sppidToIntfId"]["66"] = "Ethernet9";    // a port maps back to another interface
  status["intfIdToSppid"]["Loopback0"] = 64;      // two interfaces on one port
  const std::string ingress = answer(state, {"ingress"});
  EXPECT_THAT(rowNames(ingress.substr(0, ingress.find("A.1"))), ElementsAre("Et1", "Et1.5", "Et9", "Et1"));
  const std::string queues = answer(state, {"queues"});
  EXPECT_THAT(rowNames(queues.substr(0, queues.find("Egress Queue"))),
              ElementsAre("Et1", "Et1.5", "Et9", "Po1", "Et1"));
}

TEST(Ingress, ShowsATablePerFapCore) {
  std::string text;
  Json json;
  const char* labels[] = {"A.0", "A.1", "B"};
  for (U64 source = 0; source < 3; ++source) {
    text += ingressHead(std::string(labels[source]) + ":");
    Json& interfaces = json["sources"][labels[source]]["interfaces"];
    addIngress(text, interfaces, "Ethernet1", tcs(), ingressQuads(ethernet1, source));
    addIngress(text, interfaces, "Ethernet1.5", subIntfLabels, ingressQuads(subInterface, source, 4));
    addIngress(text, interfaces, "Ethernet3", tcs(), ingressQuads(ethernet3, source));
    text += "\n";
  }
  EXPECT_EQ(answer(smallSwitch(), {"ingress"}), text);
  EXPECT_EQ(lines(answer(smallSwitch(), {"ingress", "--detail", "-j"})), lines(json.dump() + "\n"));
}

TEST(Ingress, InternalAddsSpecialInterfacesToEveryTable) {
  Json state = specialSwitch();
  state["status"]["fapNumCores"] = {{"3", 0}, {"7", 1}, {"9", 2}};  // one without cores, one without a name
  state["status"]["subIntfNumVoqs"] = 0;
  EXPECT_THAT(
      rowNames(answer(state, {"ingress", "--internal", "et1,et1.5"})),
      ElementsAre("Et1", "P302", "P301", "P303", "P305", "P308", "P312", "P314", "P321", "P313", "P11",
                  "P328", "P330", "P331", "P333", "P332", "FabricMcast0", "FabricMcast1", "FabricMcast2",
                  "FabricMcast3", "FabricMcast4", "FabricMcast5", "FabricMcast6", "FabricMcast7"));
  EXPECT_EQ(answer(state, {"ingress", "et1.5", "-j"}),
            "{\"sources\":{\"B\":{\"interfaces\":{\"Ethernet1.5\":{\"trafficClasses\":{}}}}}}\n");
}

TEST(Ingress, CountsAreExactAndWideOnesShiftTheirRow) {
  Json state = smallSwitch();
  state["interfaces"] = {"Ethernet1"};
  state["counters"]["ingress"] = {{{"fapId", 7},
                                   {"intfId", "Ethernet1"},
                                   {"queues", {{18446744073709551615U, 9007199254740993U, 0, 10}}}},
                                  {{"fapId", 3}, {"intfId", "Ethernet1"}, {"queues", {{2, 0, 0, 0}}}}};
  EXPECT_THAT(answer(state, {"ingress"}),
              testing::HasSubstr("Et1                        TC0     18446744073709551615   9007199254740993 "
                                 "                 0                 10\n"));
  // The sum over the sources wraps.
  EXPECT_EQ(
      Json::parse(answer(
          state, {"queues", "-j"}))["ingressVoqCounters"]["interfaces"]["Ethernet1"]["trafficClasses"]["TC0"],
      members({1, 9007199254740993U, 0, 10}));
}

}  // namespace

}  // namespace loamtest

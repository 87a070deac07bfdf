#include <gmock/gmock.h>

#include "tests/AnswerParts.h"

namespace loamtest {

namespace {

const Labels subIntfLabels = {"TC0-1", "TC2-3", "TC4-5", "TC6-7"};
const Labels pairedLabels = {"TC0", "TC1,5", "TC2", "TC3", "TC4", "TC6", "TC7"};
const Labels lagLabels = {"TC0", "TC1", "TC2",   "TC3",   "TC4",   "TC5",
                          "TC6", "TC7", "TC0,4", "TC1,5", "TC2,6", "TC3,7"};

TEST(Queues, ShowsAggregateIngressThenEgress) {
  std::string text = ingressHead("Aggregate VoQ Counters");
  Json json;
  Json& ingress = json["ingressVoqCounters"]["interfaces"];
  addIngress(text, ingress, "Ethernet1", tcs(), ingressQuads(ethernet1, {}));
  addIngress(text, ingress, "Ethernet1.5", subIntfLabels, ingressQuads(subInterface, {}, 4));
  addIngress(text, ingress, "Ethernet3", tcs(), ingressQuads(ethernet3, {}));
  addIngress(text, ingress, "Port-Channel1", tcs(), ingressQuads(portChannel1, {}));
  text += "\n" + egressHead;
  Json& egress = json["egressQueueCounters"]["interfaces"];
  addEgress(text, egress, "Ethernet1", tcs(), EgressRecord::portMode, ethernet1);
  addEgress(text, egress, "Ethernet3", pairedLabels, EgressRecord::queueMode, ethernet3);
  // The port channel has no FAP, so it has both modes of the switch: its rows come twice.
  addEgress(text, egress, "Port-Channel1", lagLabels, EgressRecord::lag, portChannel1);
  addEgress(text, egress, "Port-Channel1", lagLabels, EgressRecord::lag, portChannel1);
  EXPECT_EQ(answer(smallSwitch(), {"queues"}), text + "\n");
  EXPECT_EQ(answer(smallSwitch(), {"queues", "--detail"}), text + "\n");
  std::string twice = json.dump();
  twice.insert(twice.size() - 3, ",\"Port-Channel1\":" + egress["Port-Channel1"].dump());
  EXPECT_EQ(lines(answer(smallSwitch(), {"queues", "--json"})), lines(twice + "\n"));
}

void expectEgress(const Json& state, const std::string& name, const Labels& labels, EgressRecord record,
                  U64 intf) {
  std::string text = egressHead;
  Json json;
  addEgress(text, json, name, labels, record, intf);
  EXPECT_THAT(answer(state, {"queues", name}), testing::EndsWith("\n" + text + "\n"));
  EXPECT_EQ(Json::parse(answer(state, {"queues", name, "-j"}))["egressQueueCounters"]["interfaces"], json);
}

TEST(Queues, RowsOfAQueueModeFapDependOnItsSharedClasses) {
  const std::pair<std::vector<int>, Labels> cases[] = {
      {{}, tcs()},
      {{0, 1, 2, 3}, {"TC0,4", "TC1,5", "TC2,6", "TC3,7"}},
      {{3}, {"TC0", "TC1", "TC2", "TC3,7", "TC4", "TC5", "TC6"}}};
  for (const auto& [shared, labels] : cases) {
    Json state = smallSwitch();
    state["counters"]["egressTm"]["Ethernet3"]["ambiguousTcs"] = shared;
    expectEgress(state, "Ethernet3", labels, EgressRecord::queueMode, ethernet3);
  }
}

TEST(Queues, AnInterfaceWithoutAFapIsShownInEveryModeThatAFapHas) {
  for (const auto& [major, labels] : {std::pair{1, tcs()}, std::pair{2, lagLabels}}) {
    Json state = smallSwitch();
    for (Json& revision : state["status"]["fapRevision"]) revision["major"] = major;
    expectEgress(state, "Port-Channel1", labels, EgressRecord::lag, portChannel1);
  }
}

TEST(Queues, InternalAddsSpecialInterfacesInTheOrderOfTheirKinds) {
  Json state = smallSwitch();
  state["fabricMcastVoq"] = {{"min", 20}, {"max", 23}};
  state["counters"]["ingress"].push_back(
      {{"fapId", 7}, {"intfId", "FabricMcast1"}, {"queues", {quad(500), quad(600)}}});
  Json& status = state["status"];
  status.merge_patch(Json::parse(R"({
    "olpPort": {"9": 301, "1": 302}, "erpPort": {"0": 303}, "fabricMeshDropPort": {"0": 326},
    "fapToSflowAccelSppid": {"A": 330, "B": 330, "C": 328}, "ipsecPort": {"0": 331, "1": 340},
    "eventorPort": {"7": 332, "3": 333}
  })"));
  for (const int type : {0, 1, 4, 5, 7, 8, 9, 10, 17, 18, 19, 20, 21}) {
    status["recircPort"].push_back({{"recircType", type}, {"id", 0}, {"systemPhyPortId", 304 + type}});
  }
  // Every port except 340 maps to an interface, most of them to one that is named after it.
  for (int port = 301; port <= 331; ++port) {
    status["sppidToIntfId"][std::to_string(port)] = "P" + std::to_string(port);
  }
  status["sppidToIntfId"].update({{"11", "P11"}, {"332", "Port-Channel9"}, {"333", "X.5"}});
  const auto tables = [&] {
    const std::string text = answer(state, {"queues", "Ethernet1", "--internal"});
    const std::size_t middle = text.find("Egress Queue Counters");
    return std::pair{text.substr(0, middle), text.substr(middle)};
  };
  const auto [ingress, egress] = tables();
  // OLP, ERP, L3 flood (recirculation types 1 to 4), routing (8), shared (10 to 17), PLR (9), fabric mesh
  // (port 11), sFlow by port, IPsec, Eventor by FAP. CPU recirculation is not enabled.
  EXPECT_EQ(rowNames(ingress),
            words("Et1 P302 P301 P303 P305 P308 P312 P314 P321 P313 P11 P328 P330 P331 X.5 Po9 "
                  "FabricMcast0 FabricMcast1 FabricMcast2 FabricMcast3"));
  EXPECT_EQ(rowNames(egress),
            words("Et1 P302 P301 P305 P308 P312 P314 P321 P313 P326 P328 P330 P331 X.5 Po9"));
  EXPECT_NE(ingress.find(ingressRows("X.5", tcs(), Quads(8, zeros))), std::string::npos)
      << "a special interface has the traffic classes of a port";
  status["fapNumCores"] = {{"3", 0}, {"7", 1}, {"9", 2}};  // one without cores, one without a name
  EXPECT_EQ(rowNames(answer(state, {"ingress", "Ethernet1", "--internal"})), rowNames(ingress));
  EXPECT_EQ(egress.find("TC0,4"), std::string::npos) << "and none of a port channel";
  EXPECT_NE(ingress.find(ingressRows("FabricMcast1", {"TC2-3"}, {quad(500)})), std::string::npos);
  const Json json = Json::parse(answer(state, {"queues", "--internal", "-j"}));
  EXPECT_EQ(json["ingressVoqCounters"]["interfaces"]["FabricMcast1"], ingressJson({"TC2-3"}, {quad(500)}));

  status["cpuRecircEnabled"] = true;
  EXPECT_EQ(rowNames(tables().first)[10], "P324");
  EXPECT_EQ(rowNames(tables().second)[9], "P324");
}

TEST(Queues, TranslatesInterfacesToThoseThatOwnQueues) {
  Json state = smallSwitch();
  Json& status = state["status"];
  status["intfIdToSppid"]["Port-Channel1"] = 70;  // no TM entry: kept unchanged, except with VOQ ports only
  status["sppidToIntfId"]["66"] = "Ethernet9";    // a port maps back to another interface
  status["intfIdToSppid"]["Loopback0"] = 64;      // two interfaces on one port
  const std::string ingress = answer(state, {"ingress"});
  EXPECT_EQ(rowNames(ingress.substr(0, ingress.find("A.1"))), words("Et1 Et1.5 Et9 Et1"));
  const std::string queues = answer(state, {"queues"});
  EXPECT_EQ(rowNames(queues.substr(0, queues.find("Egress Queue"))), words("Et1 Et1.5 Et9 Po1 Et1"));
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

TEST(Ingress, CountsAreExactAndWideOnesShiftTheirRow) {
  Json state = smallSwitch();
  const Json wide = {18446744073709551615U, 9007199254740993U, 0, 10};
  state["counters"]["ingress"] = {{{"fapId", 7}, {"intfId", "Ethernet1"}, {"queues", {wide}}},
                                  {{"fapId", 3}, {"intfId", "Ethernet1"}, {"queues", {{2, 0, 0, 0}}}}};
  EXPECT_THAT(answer(state, {"ingress", "et1"}), testing::HasSubstr(ingressRows("Et1", {"TC0"}, {wide})));
  const Json interfaces = Json::parse(answer(state, {"queues", "-j"}))["ingressVoqCounters"]["interfaces"];
  EXPECT_EQ(interfaces["Ethernet1"]["trafficClasses"]["TC0"], members({1, 9007199254740993U, 0, 10}))
      << "the sum over the sources wraps";
}

}  // namespace

}  // namespace loamtest

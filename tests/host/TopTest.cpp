// The command `top`.

#include <gmock/gmock.h>

#include <sstream>

#include "loamshow/now/LossTable.h"
#include "tests/Support.h"

namespace loamtest {

namespace {

using testing::HasSubstr;
using testing::Not;

/// The small switch with a loss of every kind, some of them equal.
Json lossySwitch() {
  Json state = smallSwitch();
  state["status"]["coppClassNumVoqs"] = 2;
  for (const auto& [port, name] : {std::pair("2", "CpuTm0"), {"12", "CoppPolicer"}, {"25", "CoppQueues"}}) {
    state["status"]["sppidToIntfId"][port] = name;
  }
  state["counters"] = Json::parse(R"({
    "ingress": [
      {"fapId": 3, "coreId": 0, "intfId": "Ethernet1", "queues": [[9, 9, 0, 0], [9, 9, 100, 6400], [9, 9, 0, 7]]},
      {"fapId": 3, "coreId": 1, "intfId": "Ethernet1.5", "queues": [[9, 9, 30, 3000]]},
      {"fapId": 7, "coreId": 0, "intfId": "Ethernet1", "queues": [[0, 0, 0, 0], [8, 8, 100, 6400]]},
      {"fapId": 3, "coreId": 0, "intfId": "Port-Channel1", "queues": [[0, 0, 0, 0], [0, 0, 600000, 1200000]]},
      {"fapId": 7, "coreId": 0, "intfId": "Port-Channel1", "queues": [[0, 0, 0, 0], [0, 0, 400000, 800000]]},
      {"fapId": 3, "coreId": 1, "intfId": "CoppQueues", "queues": [[0, 0, 0, 0], [0, 0, 12, 1200]]},
      {"fapId": 7, "coreId": 0, "intfId": "CoppPolicer", "total": [0, 0, 9, 900]}
    ],
    "egress": {"Ethernet1": {"queues": [[0, 0, 100, 5000]]}, "CpuTm0": {"queues": [[0, 0, 3, 33]]}},
    "egressTm": {"CpuTm0": {"queues": [{"mcast": [0, 0, 2, 22]}]}},
    "egressLag": {"Port-Channel1": {"queues": [{}, {"ucast": [0, 0, 40, 4000], "mcast": [0, 0, 40, 4400]}]}},
    "egressAcl": {"Ethernet3": 70, "Port-Channel1": 70, "Loopback0": null},
    "egressMtu": {"3": {"droppedPackets": 21}, "7": {"enqueuedPackets": 5}}
  })");
  return state;
}

/// The losses of that switch, worst first.
const char* const expectedLosses = R"([
  {"interface": "Port-Channel1", "queue": "TC1", "kind": "voq", "droppedPackets": 1000000, "droppedBytes": 2000000},
  {"interface": "Ethernet1", "queue": "TC1", "kind": "voq", "source": "A.0", "droppedPackets": 100, "droppedBytes": 6400},
  {"interface": "Ethernet1", "queue": "TC1", "kind": "voq", "source": "B", "droppedPackets": 100, "droppedBytes": 6400},
  {"interface": "Ethernet1", "queue": "TC0", "kind": "egressUnicast", "droppedPackets": 100, "droppedBytes": 5000},
  {"interface": "Ethernet3", "kind": "acl", "droppedPackets": 70},
  {"interface": "Port-Channel1", "kind": "acl", "droppedPackets": 70},
  {"interface": "Port-Channel1", "queue": "TC1", "kind": "egressUnicast", "droppedPackets": 40, "droppedBytes": 4000},
  {"interface": "Port-Channel1", "queue": "TC1", "kind": "egressMulticast", "droppedPackets": 40, "droppedBytes": 4400},
  {"interface": "Ethernet1.5", "queue": "TC0-1", "kind": "voq", "source": "A.1", "droppedPackets": 30, "droppedBytes": 3000},
  {"kind": "mtu", "source": "A", "droppedPackets": 21},
  {"interface": "CoppQueues", "queue": "TC1", "kind": "cpuVoq", "source": "A.1", "droppedPackets": 12, "droppedBytes": 1200},
  {"interface": "CoppPolicer", "kind": "cpuPolicer", "source": "B", "droppedPackets": 9, "droppedBytes": 900},
  {"interface": "CpuTm0", "kind": "cpuEgressUnicast", "droppedPackets": 3, "droppedBytes": 33},
  {"interface": "CpuTm0", "kind": "cpuEgressMulticast", "droppedPackets": 2, "droppedBytes": 22}
])";

TEST(Top, ListsEveryKindOfLossWorstFirst) {
  const Json expected = {
      {"droppedPackets", 1000597}, {"droppedBytes", 2031355}, {"losses", Json::parse(expectedLosses)}};
  EXPECT_EQ(answer(lossySwitch(), {"top", "-j", "-n", "0"}), expected.dump() + "\n");
  EXPECT_EQ(answer(lossySwitch(), {"top", "-n", "0"}), R"(Dropped packets
Interface         Queue Where                  Packets              Octets Share
Po1               TC1   VOQ all chips        1,000,000           2,000,000 99.9%
Et1               TC1   VOQ A.0                    100               6,400 <0.1%
Et1               TC1   VOQ B                      100               6,400 <0.1%
Et1               TC0   egress unicast             100               5,000 <0.1%
Et3                     egress ACL                  70                 n/a <0.1%
Po1                     egress ACL                  70                 n/a <0.1%
Po1               TC1   egress unicast              40               4,000 <0.1%
Po1               TC1   egress multicast            40               4,400 <0.1%
Et1.5             TC0-1 VOQ A.1                     30               3,000 <0.1%
-                       MTU A                       21                 n/a <0.1%
CoppQueues        TC1   CPU A.1                     12               1,200 <0.1%
CoppPolicer             policer B                    9                 900 <0.1%
CpuTm0                  CPU port unicast             3                  33 <0.1%
CpuTm0            CPU port multicast                 2                  22 <0.1%
Total                                        1,000,597           2,031,355  100%
)");
}

TEST(Top, RanksByOctetsShowsTheFirstRowsAndChoosesInterfaces) {
  const auto shown = [](const std::string& arguments) {
    return Json::parse(answer(lossySwitch(), words("top -j " + arguments)));
  };
  const auto rows = [&](const std::string& arguments) {
    std::string list;
    const Json answered = shown(arguments);
    for (const Json& loss : answered["losses"]) {
      list +=
          loss.value("interface", "-") + " " + loss.value("kind", "") + " " + loss.value("queue", "-") + "; ";
    }
    return list;
  };
  EXPECT_EQ(rows("-n 3"), "Port-Channel1 voq TC1; Ethernet1 voq TC1; Ethernet1 voq TC1; ");
  EXPECT_EQ(shown("-n 3")["droppedPackets"], 1000597) << "of the rows that are not shown, too";
  EXPECT_EQ(rows("--by octets -n 6"),
            "Port-Channel1 voq TC1; Ethernet1 voq TC1; Ethernet1 voq TC1; Ethernet1 egressUnicast TC0; "
            "Port-Channel1 egressMulticast TC1; Port-Channel1 egressUnicast TC1; ");
  EXPECT_THAT(rows("--by octets -n 0"),
              testing::AllOf(HasSubstr("Ethernet1 voq TC2;"), Not(HasSubstr("acl"))));
  const Json byOctets = shown("--by octets");
  EXPECT_EQ(byOctets["droppedPackets"], 1000597 - 70 - 70 - 21);
  EXPECT_EQ(byOctets["droppedBytes"], 2031355 + 7);
  EXPECT_EQ(rows("Et3 -n 0"), "Ethernet3 acl -; ");
  EXPECT_EQ(rows("Po1,po1 Port-Channel1 -n 0"),
            "Port-Channel1 voq TC1; Port-Channel1 acl -; Port-Channel1 egressUnicast TC1; "
            "Port-Channel1 egressMulticast TC1; ");
}

TEST(Top, TellsSwitchTimeAndRatesWhereTheyAreKnown) {
  Json then = lossySwitch();
  then["switch"] = {{"name", "leaf7"}, {"takenAt", "2026-11-23T10:53:31.04Z"}};
  Json now = then;
  now["switch"]["takenAt"] = "2026-11-23T10:53:41Z";
  EXPECT_EQ(answer(now, {"top", "Et3"}, &then),
            "No dropped packets: leaf7, 2026-11-23T10:53:41Z, in 10.0 s\n");
  EXPECT_EQ(
      answer(now, {"top", "-j"}, &then),
      R"({"switch":"leaf7","takenAt":"2026-11-23T10:53:41Z","seconds":10,"droppedPackets":0,"droppedBytes":0,)"
      "\"losses\":[]}\n");
  now["counters"]["egress"]["Ethernet1"]["queues"][0] = {0, 0, 140, 25005000};
  now["counters"]["egressMtu"]["3"]["droppedPackets"] = 22;
  EXPECT_EQ(answer(now, {"top"}, &then), R"(Dropped packets: leaf7, 2026-11-23T10:53:41Z, in 10.0 s
Interface         Queue Where              Packets   /s        Octets   /s Share
Et1               TC0   egress unicast          40  4.0    25,000,000 2.5M 97.6%
-                       MTU A                    1  0.1           n/a       2.4%
Total                                           41  4.1    25,000,000 2.5M  100%
)");
  now["switch"]["takenAt"] = "2026-11-23T10:53:31.08Z";
  EXPECT_THAT(answer(now, {"top", "-n", "1"}, &then),
              testing::AllOf(testing::StartsWith("Dropped packets: leaf7, 2026-11-23T10:53:31.08Z\n"),
                             testing::EndsWith("Total, 1 row not shown                              41 "
                                               "         25,000,000  100%\n")))
      << "an interval that rounds to 0 is not known";
}

TEST(Top, FitsEightyColumnsUpToLongNamesAndLargeCounts) {
  using loamshow::LossKind;
  loamshow::Losses losses(false);
  const auto add = [&](LossKind kind, const char* interface, const char* queue, const char* source) {
    using loamshow::LossName;
    const auto name = [&](const char* text) { return *text == '\0' ? LossName::none : losses.name(text); };
    losses.add({(1U << 20U) - 1, (1U << 30U) - 1, name(interface), name(queue), name(source), kind});
  };
  add(LossKind::voq, "Ethernet23456789012345.7", "TC0-1", "Fap45678.6");
  add(LossKind::egressUnicast, "Ethernet234567890123456", "TC0,4", "");
  add(LossKind::egressMulticast, "Port-Channel234567890123456", "TC3,7", "");
  add(LossKind::cpuVoq, "CoppSystemDefault", "TC79", "Fap45678.6");
  add(LossKind::cpuPolicer, "CoppSystemDefault", "", "Fap45678.6");
  add(LossKind::cpuEgressUnicast, "CpuTm678901234567", "", "");
  add(LossKind::cpuEgressMulticast, "CpuTm678901234567", "", "");
  add(LossKind::acl, "Ethernet234567890123456", "", "");
  add(LossKind::mtu, "", "", "Fap45678");
  for (const std::optional<double> seconds :
       {std::optional<double>(), std::optional(0.1), std::optional(86400.0)}) {
    std::string shown;
    writeLossTable({"leaf7", "2026-11-23T10:53:41.123456Z", seconds}, losses, 0,
                   [&](std::string_view part) { shown += part; });
    std::istringstream lines(shown);
    for (std::string row; std::getline(lines, row);) {
      // All lines but the title have 80 columns.
      EXPECT_TRUE(row.size() == 80 || row.starts_with("Dropped")) << row;
    }
  }
}

}  // namespace

}  // namespace loamtest

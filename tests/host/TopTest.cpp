// The command `top`.

#include <gmock/gmock.h>

#include "tests/Support.h"

namespace loamtest {

namespace {

using testing::HasSubstr;

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
      {"fapId": 3, "coreId": 0, "intfId": "CoppPolicer", "total": [0, 0, 12, 900]}
    ],
    "egress": {"Ethernet1": {"queues": [[0, 0, 100, 5000]]}, "CpuTm0": {"queues": [[0, 0, 3, 33]]}},
    "egressTm": {"CpuTm0": {"queues": [{"mcast": [0, 0, 2, 22]}]}},
    "egressLag": {"Port-Channel1": {"queues": [{}, {"ucast": [0, 0, 40, 4000], "mcast": [0, 0, 40, 4400]}]}},
    "egressAcl": {"Ethernet3": 70, "Port-Channel1": 70, "Loopback0": null},
    "egressMtu": {"3": {"droppedPackets": 21}, "7": {"enqueuedPackets": 5}}
  })");
  return state;
}

Json shown(const std::string& options) {
  return Json::parse(answer(lossySwitch(), words("top -j " + options)));
}

/// The interface, queue, kind and source of each row.
std::string rows(const std::string& options) {
  std::string list;
  const Json answered = shown(options);
  for (const Json& loss : answered["losses"]) {
    for (const char* key : {"interface", "queue", "kind", "source"}) {
      if (loss.contains(key)) list += loss[key].get<std::string>() + ' ';
    }
    list.back() = ';';
  }
  return list;
}

TEST(Top, ListsEveryKindOfLossWorstFirst) {
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
CoppPolicer             policer A.0                 12                 900 <0.1%
CpuTm0                  CPU port unicast             3                  33 <0.1%
CpuTm0            CPU port multicast                 2                  22 <0.1%
Total                                        1,000,600           2,031,355  100%
)");
  EXPECT_EQ(
      rows("-n 0"),
      "Port-Channel1 TC1 voq;Ethernet1 TC1 voq A.0;Ethernet1 TC1 voq B;Ethernet1 TC0 egressUnicast;"
      "Ethernet3 acl;Port-Channel1 acl;Port-Channel1 TC1 egressUnicast;Port-Channel1 TC1 egressMulticast;"
      "Ethernet1.5 TC0-1 voq A.1;mtu A;CoppQueues TC1 cpuVoq A.1;CoppPolicer cpuPolicer A.0;"
      "CpuTm0 cpuEgressUnicast;CpuTm0 cpuEgressMulticast;");
}

TEST(Top, RanksByOctetsShowsTheFirstRowsAndChoosesInterfaces) {
  const std::string first = R"("losses":[{"interface":"Port-Channel1","queue":"TC1","kind":"voq",)"
                            R"("droppedPackets":1000000,"droppedBytes":2000000}]})";
  EXPECT_EQ(shown("-n 1").dump(), R"({"droppedPackets":1000600,"droppedBytes":2031355,)" + first);
  EXPECT_EQ(shown("-n 1 --by octets").dump(), R"({"droppedPackets":1000439,"droppedBytes":2031362,)" + first);
  EXPECT_EQ(rows("--by octets -n 6"),
            "Port-Channel1 TC1 voq;Ethernet1 TC1 voq A.0;Ethernet1 TC1 voq B;Ethernet1 TC0 egressUnicast;"
            "Port-Channel1 TC1 egressMulticast;Port-Channel1 TC1 egressUnicast;");
  EXPECT_THAT(rows("--by octets -n 0"),
              AllOf(HasSubstr(";Ethernet1 TC2 voq A.0;"), testing::Not(HasSubstr("acl"))));
  EXPECT_EQ(rows("Et3"), "Ethernet3 acl;");
  EXPECT_EQ(rows("Po1,po1 Port-Channel1 -n 0"),
            "Port-Channel1 TC1 voq;Port-Channel1 acl;Port-Channel1 TC1 egressUnicast;"
            "Port-Channel1 TC1 egressMulticast;");
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
  now["switch"]["takenAt"] = "2026-11-23T10:55:11Z";
  now["counters"]["ingress"][3]["queues"][1] = {0, 0, 600'000 + 1'234'500, 1'200'000 + 98'760'000};
  now["counters"]["egress"]["Ethernet1"]["queues"][0] = {0, 0, 140, 25'005'000};
  now["counters"]["egressAcl"]["Ethernet3"] = 70 + 5'000;
  now["counters"]["egressMtu"]["3"]["droppedPackets"] = 22;
  EXPECT_EQ(answer(now, {"top"}, &then), R"(Dropped packets: leaf7, 2026-11-23T10:55:11Z, in 100.0 s
Interface         Queue Where              Packets   /s        Octets   /s Share
Po1               TC1   VOQ all chips    1,234,500  12k    98,760,000 988k 99.6%
Et3                     egress ACL           5,000   50           n/a       0.4%
Et1               TC0   egress unicast          40  0.4    25,000,000 250k <0.1%
-                       MTU A                    1 <0.1           n/a      <0.1%
Total                                    1,239,541  12k   123,760,000 1.2M  100%
)");
  now["switch"]["takenAt"] = "2026-11-23T10:53:31.08Z";
  const std::string shown = answer(now, {"top", "-n", "3"}, &then);
  EXPECT_THAT(shown, testing::StartsWith("Dropped packets: leaf7, 2026-11-23T10:53:31.08Z\n"))
      << "an interval that rounds to 0 is not known";
  EXPECT_THAT(shown,
              HasSubstr("Total, 1 row not shown                       1,239,541         123,760,000  100%"));
}

}  // namespace

}  // namespace loamtest

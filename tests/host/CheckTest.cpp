#include <gmock/gmock.h>

#include "loamshow/state/Check.h"
#include "loamshow/state/StateFile.h"
#include "tests/Support.h"

namespace loamtest {

namespace {

/// The small switch without its findings, and with debug counters of one FAP.
Json cleanSwitch() {
  Json state = smallSwitch();
  state["interfaces"].erase(4);
  state["debug"]["faps"] = Json::parse(R"({"A": {
    "directory": {"valid": true, "readiness": 1, "blocks": {"cgm": {
      "Two": {"offset": 1, "firstInstance": 4, "numInstances": 2},
      "None": {"offset": 100, "numInstances": 0},
      "Fields": {"offset": 100, "fetchType": 9, "numInstances": 1, "fields": {"hi": {"offset": 6}, "lo": {"fetchType": 3}}}
    }}},
    "snapshots": {"short": [{}], "current": [{}, {}, {}, {}, {}, {}, {}]}}})");
  return state;
}

TEST(Check, NamesEveryMistakeThatAStatePlants) {
  // A merge patch of the clean switch (null removes a member, an array replaces one), and the findings.
  const std::pair<const char*, std::vector<std::string>> cases[] = {
      {"{}", {}},
      {R"({"interfaces": ["Ethernet1", "Loopback0", "Ethrnet2", "Et1", "po1"]})",
       {"/interfaces/1: only acl can show Loopback0: it has no port",
        "/interfaces/2: only acl can show Ethrnet2: it has no port; did you mean Ethernet3?",
        "/interfaces/3: only acl can show Et1: it has no port",
        "/interfaces/3: Et1 looks like a short name; did you mean Ethernet1?",
        "/interfaces/4: only acl can show po1: it has no port",
        "/interfaces/4: po1 looks like a short name; did you mean Port-Channel1?"}},
      {R"({"tmMapping": {"portTmMap": [64, 65]}})",
       {"/interfaces/2: only acl can show Ethernet3: its port 66 has no traffic-manager queues"}},
      {R"({"status": {"intfIdToSppid": {"Ethernet3": 64}}})",
       {"/interfaces/2: only acl can show Ethernet3: its port 64 belongs to Ethernet1",
        "/status/intfIdToSppid/Ethernet3: sppidToIntfId maps port 64 to Ethernet1",
        "/counters/egressTm/Ethernet3: never shown: A runs in port mode (major revision 1)"}},
      {R"({"status": {"sppidToIntfId": {"66": null}}})",
       {"/interfaces/2: only acl can show Ethernet3: its port 66 has no interface name",
        "/status/intfIdToSppid/Ethernet3: port 66 has no interface in sppidToIntfId"}},
      {R"({"status": {
            "sppidToIntfId": {"300": "Olp/~0", "70": "Ethernet3", "71": "", "11": "Mesh", "100": "X",
                              "12": "Copp1", "22": "Copp2", "23": "Y", "24": "Copp3", "56": "Copp4", "57": "Z"},
            "intfIdToSppid": {"Mesh": 11, "X": 100},
            "portMap": {"64": {"fapId": 2047, "coreId": 6}, "65": {"coreId": 2}, "66": {"fapId": 9}}}})",
       {"/status/intfIdToSppid/Ethernet3: port 66, but sppidToIntfId gives port 70",
        "/status/intfIdToSppid/Olp~1~00: no port, but sppidToIntfId gives port 300",
        "/status/intfIdToSppid/Y: no port, but sppidToIntfId gives port 23",
        "/status/intfIdToSppid/Z: no port, but sppidToIntfId gives port 57",
        "/status/portMap/65: A has no core 2 (fapNumCores is 2)",
        "/status/portMap/66: fapIdToName has no FAP 9", "/status/portMap/100: missing: X has no known FAP",
        "/counters/egressTm/Ethernet3: never shown: FAP 9 runs in port mode (major revision 0)"}},
      {R"({"status": {"fapNumCores": {"10": 8, "3": 6, "7": 7}, "coppClassNumVoqs": 81}})",
       {"/status/fapNumCores/7: 7 cores: drops shows at most 6, ingress and cpu at most 7",
        "/status/fapNumCores/10: 8 cores: drops shows at most 6, ingress and cpu at most 7",
        "/status/coppClassNumVoqs: 81 VOQs: cpu shows at most 80"}},
      {R"({"status": {"fapNumCores": {"3": 5}, "coppClassNumVoqs": 80}})", {}},
      {R"({"perInputPortCoppVoqs": true, "status": {"fapNumCores": {"3": 6, "7": 4}, "coppClassNumVoqs": 2}})",
       {"/status/fapNumCores/3: cpu needs FAP port 257 (perInputPortCoppVoqs, coppClassNumVoqs 2), but the "
        "highest is 256"}},
      {R"({"perInputPortCoppVoqs": true, "status": {"fapNumCores": {"3": 7, "7": 6}, "coppClassNumVoqs": 1}})",
       {"/status/fapNumCores/3: 7 cores: drops shows at most 6, ingress and cpu at most 7",
        "/status/fapNumCores/3: cpu needs FAP port 384 (perInputPortCoppVoqs, coppClassNumVoqs 1), but the "
        "highest is 256"}},
      {R"({"counters": {"ingress": [
            {"fapId": 9, "coreId": 6, "intfId": "Ethernet1"},
            {"fapId": 3, "coreId": 2, "intfId": "Ethrnet1", "queues": [[1, 2, 3, 4], [5, 6, 7, 8]], "total": [6, 8, 11, 12]},
            {"fapId": 7, "intfId": "FabricMcast7"},
            {"fapId": 7, "intfId": "FabricMcast8"},
            {"fapId": 7, "intfId": "po1"},
            {"fapId": 7}]}})",
       {"/counters/ingress/0/fapId: fapIdToName has no FAP 9",
        "/counters/ingress/1/coreId: A has no core 2 (fapNumCores is 2)",
        "/counters/ingress/1/intfId: the switch has no interface Ethrnet1; did you mean Ethernet1?",
        "/counters/ingress/1/total: 11 dropped packets, but the sum of the queues is 10",
        "/counters/ingress/3/intfId: the switch has no interface FabricMcast8; did you mean FabricMcast0?",
        "/counters/ingress/4/intfId: the switch has no interface po1; did you mean Port-Channel1?",
        "/counters/ingress/5/intfId: no interface name"}},
      {R"({"counters": {
            "egress": {"Ethernet3": {}, "Ethernet1": {"queues": [[18446744073709551615, 0, 0, 0], [2, 0, 0, 0]], "total": [1, 0, 0, 0]}},
            "egressTm": {"Ethernet1": {"queues": [{"ucast": [1, 2, 3, 4]}, {"mcast": [1, 1, 1, 1]}], "total": [2, 3, 4, 6]},
                         "Ethernet33": {}},
            "egressLag": {"X": {}, "Port-Channel1": {"queues": [], "total": [0, 1, 0, 0]}},
            "egressAcl": {"Ethernet1": 3, "Ethernet2": 0},
            "egressMtu": {"10": {}, "9": {}, "7": {}}}})",
       {"/counters/egress/Ethernet3: never shown: B runs in queue mode (major revision 2)",
        "/counters/egressTm/Ethernet1: never shown: A runs in port mode (major revision 1)",
        "/counters/egressTm/Ethernet1/total: 6 dropped bytes, but the sum of the queues is 5",
        "/counters/egressTm/Ethernet33: the switch has no interface Ethernet33; did you mean Ethernet3?",
        "/counters/egressLag/Port-Channel1/total: 1 enqueued bytes, but the sum of the queues is 0",
        "/counters/egressLag/X: the switch has no interface X",
        "/counters/egressAcl/Ethernet2: the switch has no interface Ethernet2; did you mean Ethernet1?",
        "/counters/egressMtu/9: fapIdToName has no FAP 9",
        "/counters/egressMtu/10: fapIdToName has no FAP 10"}},
      {R"({"debug": {"faps": {
            "AA": {"directory": {"blocks": {"b": {"c": {"numInstances": 1, "displayType": 1}}}}},
            "A": {"directory": {"blocks": {
              "cgm": {"Two": {"offset": 2, "fetchType": 4}, "Fields": {"numInstances": 2, "displayType": 2,
                "fields": {"hi": {"fetchType": 255}}}},
              "Egq": {"Far": {"offset": 4294967295, "firstInstance": 8, "numInstances": 1},
                      "Near": {"offset": 4294967295, "firstInstance": 7, "numInstances": 1},
                      "All": {"numInstances": 4294967295}}}}}}}})",
       {"/debug/faps/A/directory/blocks/Egq/All: needs record 4294967294, but the longest snapshot has 7",
        "/debug/faps/A/directory/blocks/Egq/Far: needs record 7, but the longest snapshot has 7",
        "/debug/faps/A/directory/blocks/cgm/Fields/displayType: unknown kind 2 (known: 0)",
        "/debug/faps/A/directory/blocks/cgm/Fields/fields/hi: needs record 7, but the longest snapshot has 7",
        "/debug/faps/A/directory/blocks/cgm/Fields/fields/hi/fetchType: unknown kind 255 (known: 0 to 3)",
        "/debug/faps/A/directory/blocks/cgm/Two: needs record 7, but the longest snapshot has 7",
        "/debug/faps/A/directory/blocks/cgm/Two/fetchType: unknown kind 4 (known: 0 to 3)",
        "/debug/faps/AA: the switch has no FAP AA; did you mean A?",
        "/debug/faps/AA/directory/blocks/b/c: needs record 0, but the longest snapshot has 0",
        "/debug/faps/AA/directory/blocks/b/c/displayType: unknown kind 1 (known: 0)"}}};
  for (const auto& [patch, expected] : cases) {
    Json state = cleanSwitch();
    state.merge_patch(Json::parse(patch));
    std::vector<std::string> found;
    for (const loamshow::Finding& finding : loamshow::check(loamshow::parseState("state", state.dump()))) {
      found.push_back(finding.member + ": " + finding.problem);
    }
    EXPECT_THAT(found, testing::ElementsAreArray(expected)) << patch;
  }
}

}  // namespace

}  // namespace loamtest

#include <gmock/gmock.h>

#include "loamshow/state/Capture.h"
#include "loamshow/state/StateFile.h"

namespace loamtest {

namespace {

using loamshow::JsonWriter;

std::string captured(const std::string& text,
                     void (*write)(const loamshow::SwitchState&, JsonWriter&) = loamshow::capture) {
  std::string written;
  JsonWriter out(written, JsonWriter::Layout::oneLine);
  write(loamshow::parseState("s.json", text), out);
  return written;
}

// Every member, most of them twice: out of order, with members at their defaults and totals that are sums.
constexpr const char* disorderly = R"({
  "debug": {
    "faps": {
      "Fap1": {"directory": null},
      "Fap0": {
        "snapshots": {"saved": [{}], "current": [{"overflow": true, "value": 18446744073709551615,
          "firstUpdate": 1.5, "lastUpdate": 1700000000.25, "lastDiscontinuity": 3e-7}, {"value": 0}], "a": []},
        "directory": {"blocks": {"b": {}, "Cgm": {
          "z": {"displayName": "z", "offset": 0, "firstInstance": null, "numInstances": 2, "fields": {
            "y": {"displayName": "y", "offset": 7, "order": 1, "fetchType": 2, "isDropCounter": true},
            "x": {"displayName": "X", "offset": 0}}},
          "Y": {"displayName": "", "offset": 1, "firstInstance": 0, "numInstances": 1, "fetchType": 3,
                "displayType": 1, "isDropCounter": true}}}, "readiness": 2, "valid": true}
      }
    },
    "switchTimeOffset": 0.1
  },
  "counters": {
    "egressMtu": {"10": {"enqueuedPackets": null}, "9": {"totalPackets": 0, "droppedPackets": 9223372036854775807}},
    "egressAcl": {"b": null, "a": 0},
    "egressLag": {"P": {"queues": [{"mcast": [1, 2, 3, 4]}, {}]}},
    "egressTm": {"E": {"total": [0, 0, 0, 1], "ambiguousTcs": [3, 1], "queues": [{}, {"ucast": [1, 0, 0, 0]}]}},
    "egress": {"b": {"queues": [[1, 1, 1, 1], [0, 0, 0, 0]], "total": [1, 1, 1, 1]}, "a": {"queues": []}},
    "ingress": [
      {"fapId": 1, "coreId": 0, "intfId": "a", "queues": [[0, 0, 0, 0], [1, 2, 3, 4]], "total": [1, 2, 3, 4]},
      {"fapId": 0, "coreId": 1, "intfId": "a", "queues": [], "total": [0, 0, 0, 0]},
      {"fapId": 0, "coreId": 0, "intfId": "b", "total": [18446744073709551615, 0, 0, 0]},
      {"fapId": 0, "coreId": 0, "intfId": "B", "queues": [[18446744073709551615, 0, 0, 0], [2, 0, 0, 0]]}
    ]
  },
  "perInputPortCoppVoqs": true,
  "skeinMountMode": true,
  "fabricMcastVoq": {"max": 7, "min": 1},
  "internalLagStatus": {"lagIngressVoqCounterTable": ["b", "a", "b"]},
  "tmMapping": {"portTmMap": [100, 34]},
  "status": {
    "coppClassNumVoqs": 2, "subIntfNumVoqs": 8, "cpuRecircEnabled": true,
    "eventorPort": {"0": 2}, "ipsecPort": {"65535": 3}, "fapToSflowAccelSppid": {"b": 4, "a": 5},
    "fabricMeshDropPort": {"1": 6},
    "recircPort": [{"recircType": 1, "systemPhyPortId": 7}, {"id": 2, "systemPhyPortId": 8}],
    "erpPort": {"2": 9}, "olpPort": {"10": 10, "9": 11},
    "portMapToIntfId": [{"fapPortId": 0, "fapId": 1, "intfId": ""}, {"fapPortId": 2, "coreId": 1, "intfId": "x"},
                        {"fapPortId": 3, "intfId": "y"}],
    "portMap": {"100": {}, "34": {"fapPortId": 256, "fapId": 2047, "coreId": 6}},
    "intfIdToSppid": {"b": 34, "a": 100}, "sppidToIntfId": {"100": "", "34": "b"},
    "fapRevision": {"1": {"major": 0}, "0": {"major": 4294967295}},
    "fapNumCores": {"1": 0, "0": 2}, "fapIdToName": {"10": "", "9": "\u00e9\""}
  },
  "interfaces": ["b", "a"],
  "switch": {"takenAt": "2024-02-29T23:59:59.000001Z", "name": "leaf7"}
})";

constexpr const char* orderly =
    R"({"switch":{"name":"leaf7","takenAt":"2024-02-29T23:59:59.000001Z"},"interfaces":["b","a"],"status":{)"
    R"("fapIdToName":{"9":"é\"","10":""},"fapNumCores":{"0":2,"1":0},"fapRevision":{"0":{"major":4294967295},"1":{}},)"
    R"("sppidToIntfId":{"34":"b","100":""},"intfIdToSppid":{"a":100,"b":34},)"
    R"("portMap":{"34":{"fapPortId":256,"fapId":2047,"coreId":6},"100":{}},)"
    R"("portMapToIntfId":[{"fapPortId":3,"intfId":"y"},{"fapPortId":2,"coreId":1,"intfId":"x"},{"fapId":1}],)"
    R"("olpPort":{"9":11,"10":10},"erpPort":{"2":9},)"
    R"("recircPort":[{"id":2,"systemPhyPortId":8},{"recircType":1,"systemPhyPortId":7}],)"
    R"("fabricMeshDropPort":{"1":6},"fapToSflowAccelSppid":{"a":5,"b":4},"ipsecPort":{"65535":3},)"
    R"("eventorPort":{"0":2},"cpuRecircEnabled":true,"subIntfNumVoqs":8,"coppClassNumVoqs":2},)"
    R"("tmMapping":{"portTmMap":[34,100]},"internalLagStatus":{"lagIngressVoqCounterTable":["a","b"]},)"
    R"("fabricMcastVoq":{"min":1,"max":7},"skeinMountMode":true,"perInputPortCoppVoqs":true,)"
    "COUNTERS"
    R"("debug":{"switchTimeOffset":0.1,"faps":{"Fap0":{"directory":{"valid":true,"readiness":2,"blocks":{"Cgm":{)"
    R"("Y":{"displayName":"","offset":1,"firstInstance":0,"numInstances":1,"fetchType":3,"displayType":1,)"
    R"("isDropCounter":true},"z":{"numInstances":2,"fields":{"x":{"displayName":"X"},)"
    R"("y":{"offset":7,"order":1,"fetchType":2,"isDropCounter":true}}}},"b":{}}})"
    "SNAPSHOTS"
    R"(},"Fap1":{}}}})"
    "\n";

constexpr const char* orderlyCounters =
    R"("counters":{"ingress":[{"intfId":"B","queues":[[18446744073709551615,0,0,0],[2,0,0,0]]},)"
    R"({"intfId":"b","total":[18446744073709551615,0,0,0]},{"coreId":1,"intfId":"a"},)"
    R"({"fapId":1,"intfId":"a","queues":[[0,0,0,0],[1,2,3,4]]}],"egress":{"a":{},"b":{"queues":[[1,1,1,1]]}},)"
    R"("egressTm":{"E":{"queues":[{},{"ucast":[1,0,0,0]}],"ambiguousTcs":[1,3],"total":[0,0,0,1]}},)"
    R"("egressLag":{"P":{"queues":[{"mcast":[1,2,3,4]}]}},"egressAcl":{"a":0,"b":null},)"
    R"("egressMtu":{"9":{"droppedPackets":9223372036854775807,"totalPackets":0},"10":{}}},)";

constexpr const char* orderlySnapshots =
    R"(,"snapshots":{"a":[],"current":[{"value":18446744073709551615,"firstUpdate":1.5,)"
    R"("lastUpdate":1700000000.25,"lastDiscontinuity":3e-07,"overflow":true},{}],"saved":[{}]})";

std::string orderlyWith(const std::string& counters, const std::string& snapshots) {
  std::string text = orderly;
  text.replace(text.find("COUNTERS"), 8, counters);
  return text.replace(text.find("SNAPSHOTS"), 9, snapshots);
}

TEST(Capture, WritesWhatIsNotAtItsDefaultInOneOrder) {
  const std::string expected = orderlyWith(orderlyCounters, orderlySnapshots);
  EXPECT_EQ(captured(disorderly), expected);
  EXPECT_EQ(captured(expected), expected);
  EXPECT_EQ(captured(disorderly, loamshow::captureDescription), orderlyWith("", ""));
  EXPECT_EQ(captured(R"({"status": {}, "tmMapping": {"portTmMap": []}, "fabricMcastVoq": {"min": 0, "max": 7},
                         "debug": {"switchTimeOffset": -0.0, "faps": {}}, "counters": {"egress": {}}})"),
            "{}\n");
}

}  // namespace

}  // namespace loamtest

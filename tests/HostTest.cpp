#include <gmock/gmock.h>

#include "loamshow/IntfArguments.h"
#include "loamshow/JsonDocument.h"
#include "loamshow/StateFile.h"
#include "tests/Support.h"

namespace loamtest {

namespace {

using loamshow::InputError;

/// The text of the error that a state file raises; empty when it raises none.
std::string stateError(const std::string& text) {
  try {
    loamshow::parseState("s.json", text);
  } catch (const InputError& error) {
    return error.what();
  }
  return "";
}

TEST(StateFile, NamesFileAndMemberOfEveryError) {
  struct Case {
    const char* text;
    const char* error;
  };
  const Case cases[] = {
      {R"({"status": {"fapNumCores": {"0": "two"}}})", "/status/fapNumCores/0: expected a number"},
      {R"({"status": {"fapNumCores": {"0": 1.5}}})",
       "/status/fapNumCores/0: expected an integer from 0 to 65535"},
      {R"({"status": {"fapNumCores": {"0": -1}}})",
       "/status/fapNumCores/0: expected an integer from 0 to 65535"},
      {R"({"status": {"fapNumCores": {"2047": 1}}})",
       "/status/fapNumCores/2047: expected a key from 0 to 2046"},
      {R"({"status": {"fapNumCores": {"01": 1}}})", "/status/fapNumCores/01: expected a key from 0 to 2046"},
      {R"({"status": {"fapNumCores": {"": 1}}})", "/status/fapNumCores/: expected a key from 0 to 2046"},
      {R"({"status": {"fapNumCores": {"1": 1, "1": 1}}})", "/status/fapNumCores/1: repeated key"},
      {R"({"status": {"fapNumCores": {}, "fapNumCores": {}}})", "/status/fapNumCores: repeated member"},
      {R"({"status": {"fapIdToName": {"0": 1}}})", "/status/fapIdToName/0: expected a string"},
      {R"({"status": {"fapIdToName": {"0": "a\u0000"}}})",
       "/status/fapIdToName/0: a name cannot hold U+0000"},
      {R"({"status": {"fapRevision": {"0": {"minor": 1}}}})", "/status/fapRevision/0/minor: unknown member"},
      {R"({"status": {"sppidToIntfId": {"1": "a"}}})",
       "/status/sppidToIntfId/1: expected a key from 2 to 32767"},
      {R"({"status": {"intfIdToSppid": {"Et1/1": 32768}}})",
       "/status/intfIdToSppid/Et1~11: expected an integer from 2 to 32767"},
      {R"({"status": {"portMap": {"2": {"fapPortId": 257}}}})",
       "/status/portMap/2/fapPortId: expected an integer from 0 to 256"},
      {R"({"status": {"portMap": {"2": {"fapId": 2048}}}})",
       "/status/portMap/2/fapId: expected an integer from 0 to 2047"},
      {R"({"status": {"portMap": {"2": {"coreId": 7}}}})",
       "/status/portMap/2/coreId: expected an integer from 0 to 6"},
      {R"({"status": {"portMap": {"2": {"intfId": "a"}}}})", "/status/portMap/2/intfId: unknown member"},
      {R"({"status": {"portMapToIntfId": [{"fapId": 1}, {"fapId": 1, "intfId": "x"}]}})",
       "/status/portMapToIntfId/1: repeated entry of this FAP, core and port"},
      {R"({"status": {"recircPort": [{"recircType": 1}]}})",
       "/status/recircPort/0: expected a systemPhyPortId"},
      {R"({"status": {"recircPort": [{"systemPhyPortId": 3}, {"systemPhyPortId": 4}]}})",
       "/status/recircPort/1: repeated entry of this recircType and id"},
      {R"({"status": {"olpPort": {"65536": 3}}})", "/status/olpPort/65536: expected a key from 0 to 65535"},
      {R"({"status": {"cpuRecircEnabled": 1}})", "/status/cpuRecircEnabled: expected true or false"},
      {R"({"status": {"subIntfNumVoqs": 9}})", "/status/subIntfNumVoqs: expected an integer from 0 to 8"},
      {R"({"status": []})", "/status: expected an object"},
      {R"({"interfaces": ["a", "b", "a"]})", "/interfaces/2: repeated entry"},
      {R"({"interfaces": ["a", ""]})", "/interfaces/1: expected an interface name"},
      {R"({"interfaces": {}})", "/interfaces: expected an array"},
      {R"({"tmMapping": {"portTmMap": [3, 4, 3]}})", "/tmMapping/portTmMap/2: repeated entry"},
      {R"({"tmMapping": {"other": []}})", "/tmMapping/other: unknown member"},
      {R"({"fabricMcastVoq": {"min": 3}})", "/fabricMcastVoq: expected both min and max"},
      {R"({"fabricMcastVoq": {"min": 3, "max": 2}})", "/fabricMcastVoq: expected a max from min to min + 7"},
      {R"({"fabricMcastVoq": {"min": 3, "max": 11}})", "/fabricMcastVoq: expected a max from min to min + 7"},
      {R"({"counters": {"ingress": [{"fapId": 2047}]}})",
       "/counters/ingress/0/fapId: expected an integer from 0 to 2046"},
      {R"({"counters": {"ingress": [{"intfId": "a"}, {"intfId": "b"}, {"intfId": "a"}]}})",
       "/counters/ingress/2: repeated entry of this FAP, core and interface"},
      {R"({"counters": {"egress": {"a": {"queues": [[1, 2, 3]]}}}})",
       "/counters/egress/a/queues/0: expected four counts"},
      {R"({"counters": {"egress": {"a": {"total": [1, 2, 3, 18446744073709551616]}}}})",
       "/counters/egress/a/total/3: expected an integer from 0 to 18446744073709551615"},
      {R"({"counters": {"egress": {"a": {"ambiguousTcs": []}}}})",
       "/counters/egress/a/ambiguousTcs: unknown member"},
      {R"({"counters": {"egressTm": {"a": {"ambiguousTcs": [4]}}}})",
       "/counters/egressTm/a/ambiguousTcs/0: expected an integer from 0 to 3"},
      {R"({"counters": {"egressAcl": {"a": 9223372036854775808}}})",
       "/counters/egressAcl/a: expected an integer from 0 to 9223372036854775807"},
      {R"({"counters": {"egressMtu": {"1": {"totalPackets": "x"}}}})",
       "/counters/egressMtu/1/totalPackets: expected a number"},
      {R"({"debug": {"faps": {"F": {"directory": {"blocks": {"b": {"c": {"fields": {"f": {"offset": null}}}}}}}}}})",
       "/debug/faps/F/directory/blocks/b/c/fields/f/offset: expected a number"},
      {R"({"debug": {"faps": {"F": {"snapshots": {"s": [{"firstUpdate": "x"}]}}}}})",
       "/debug/faps/F/snapshots/s/0/firstUpdate: expected a number"},
      {R"({"debug": {"faps": {"F": {}, "F": {}}}})", "/debug/faps/F: repeated key"},
      {R"({"colour": 1})", "/colour: unknown member"},
      {R"({"status": {"a\nb": 1}})", "/status/a?b: unknown member"},
  };
  for (const Case& c : cases) EXPECT_EQ(stateError(c.text), std::string("s.json: ") + c.error);
  EXPECT_EQ(stateError("[]"), "s.json: expected an object");
  EXPECT_EQ(stateError("{}"), "");
}

TEST(StateFile, RefusesMoreQueuesThanARecordHolds) {
  for (const auto& [kind, capacity] :
       std::map<std::string, std::size_t>{{"egress", 8}, {"egressTm", 8}, {"egressLag", 16}}) {
    const Json queue = kind == "egress" ? zeros() : Json::object();
    EXPECT_EQ(stateError(Json{{"counters", {{kind, {{"a", {{"queues", Json(capacity, queue)}}}}}}}}.dump()),
              "");
    EXPECT_EQ(
        stateError(Json{{"counters", {{kind, {{"a", {{"queues", Json(capacity + 1, queue)}}}}}}}}.dump()),
        "s.json: /counters/" + kind + "/a/queues: expected at most " + std::to_string(capacity) + " queues");
  }
  const auto ingress = [](std::size_t queues) {
    return stateError(Json{{"counters", {{"ingress", {{{"queues", Json(queues, zeros())}}}}}}}.dump());
  };
  EXPECT_EQ(ingress(80), "");
  EXPECT_EQ(ingress(81), "s.json: /counters/ingress/0/queues: expected at most 80 queues");
}

TEST(StateFile, SurvivesNonsense) {
  const auto isSyntaxError = testing::AllOf(
      testing::StartsWith("s.json: parse error at line 1"), testing::Not(testing::HasSubstr("\n")),
      testing::ResultOf([](const std::string& s) { return s.size(); }, testing::Lt(300U)));
  EXPECT_EQ(stateError(""), "s.json: the file is empty");
  EXPECT_EQ(stateError({"{}\0{", 4}), "s.json: a NUL byte where JSON was expected");
  EXPECT_THAT(stateError("{} {}"), isSyntaxError);
  EXPECT_THAT(stateError("{\"a\": " + std::string(100'000, '[')), isSyntaxError);
  EXPECT_THAT(stateError("{\"interfaces\": [\"\xff\"]}"), isSyntaxError);
  EXPECT_THAT(stateError("{\"interfaces\": [\"" + std::string(1'000'000, 'x')), isSyntaxError);
  EXPECT_EQ(stateError("{\"interfaces\": [1, [1e999]]}"),
            "s.json: /interfaces/1/0: number overflow parsing '1e999'");
  const std::string deep = "{\"interfaces\": " + std::string(100'000, '[') + std::string(100'000, ']') + "}";
  EXPECT_EQ(stateError(deep), "s.json: /interfaces/0: expected a string");
}

TEST(IntfArguments, NameInterfacesInManyWays) {
  std::vector<Nexo::IntfId> interfaces;
  for (const char* name :
       {"Ethernet1/1", "Ethernet1/2", "Ethernet1/3", "Ethernet2", "ETHERNET2", "Port-Channel1", "a,b", "c-4",
        "Et9", "Ethernet9", "x8", "x9", "x10", "y18446744073709551615", "y18446744073709551616"}) {
    interfaces.emplace_back(name);
  }
  const auto selected = [&](std::vector<std::string> arguments) {
    std::string names;
    try {
      for (const Nexo::IntfId intf : loamshow::selectInterfaces(interfaces, arguments)) {
        names += (names.empty() ? "" : " ") + std::string(intf.stringValue().c_str());
      }
    } catch (const InputError& error) {
      return std::string(error.what());
    }
    return names;
  };
  struct Case {
    std::vector<std::string> arguments;
    const char* selected;
  };
  const Case cases[] = {
      {{"Et1/2", "ethernet1/1,PO1"}, "Ethernet1/2 Ethernet1/1 Port-Channel1"},
      {{"et1/1-3", "et1/2"}, "Ethernet1/1 Ethernet1/2 Ethernet1/3 Ethernet1/2"},
      {{"Port-Channel1-1"}, "Port-Channel1"},
      {{"a,b"}, "a,b"},
      {{"c-4,c-4"}, "c-4 c-4"},
      {{"x8-10"}, "x8 x9 x10"},
      {{"Ethernet2"}, "Ethernet2"},  // exact long names win
      {{"ETHERNET2"}, "ETHERNET2"},
      {{"ethernet2"}, "ambiguous interface \"ethernet2\": Ethernet2 or ETHERNET2"},
      {{"Et9"}, "Et9"},
      {{"et9"}, "ambiguous interface \"et9\": Et9 or Ethernet9"},
      {{"Et7"}, "no such interface \"Et7\"; did you mean Et2?"},
      {{"EHTERNET99"}, "no such interface \"EHTERNET99\"; did you mean Ethernet9?"},
      {{"Ethernet1/999"}, "no such interface \"Ethernet1/999\""},
      {{""}, "no such interface \"\""},
      {{"Et1/1,"}, "no such interface \"\""},
      {{"Et1/1, Et1/2"}, "no such interface \" Et1/2\"; did you mean Et1/2?"},
      {{"Et1/1-4"}, "no such interface \"Et1/4\" of \"Et1/1-4\""},
      {{"Et1/3-1"}, "backwards range \"Et1/3-1\""},
      {{"Et1/1-03"},
       "malformed range \"Et1/1-03\": expected a number without leading zeros, \"-\", and another"},
      {{"Et1/01-3"},
       "malformed range \"Et1/01-3\": expected a number without leading zeros, \"-\", and another"},
      {{"Et1/1-"}, "malformed range \"Et1/1-\": expected a number without leading zeros, \"-\", and another"},
      {{"Et-3"}, "malformed range \"Et-3\": expected a number without leading zeros, \"-\", and another"},
      {{"Et1/1-99999999999999999999"}, "no such interface \"Et1/4\" of \"Et1/1-99999999999999999999\""},
      {{"y18446744073709551615-18446744073709551616"}, "y18446744073709551615 y18446744073709551616"},
      {{"Et1/1-2-3"}, "no such interface \"Et1/1-2\" of \"Et1/1-2-3\""},
      {{"-1"}, "no such interface \"-1\""},
  };
  for (const Case& c : cases) EXPECT_EQ(selected(c.arguments), c.selected);
  EXPECT_EQ(loamshow::selectInterfaces(interfaces, {}), interfaces);
}

}  // namespace

}  // namespace loamtest

// Counts since an earlier state, through whole commands.

#include <gmock/gmock.h>

#include "loamshow/now/History.h"
#include "loamshow/state/StateFile.h"
#include "loamshow/text/InputError.h"
#include "tests/AnswerParts.h"

namespace loamtest {

namespace {

using testing::HasSubstr;

/// The small switch with these counters, in which "$" is replaced by a value; without counters if the value
/// is empty.
Json withCounters(std::string counters, const std::string& value) {
  Json state = smallSwitch();
  state["status"]["sppidToIntfId"]["12"] = "Policer";
  state.erase("counters");
  if (!value.empty()) state["counters"] = Json::parse(counters.replace(counters.find('$'), 1, value));
  return state;
}

TEST(Since, CountsFromTheEarlierValueUnlessItWasCleared) {
  using Cases = std::vector<std::array<const char*, 3>>;  // then, now, since; empty: no record
  const Cases quads = {
      {"[1, 2, 3, 4]", "[11, 22, 33, 44]", "[10, 20, 30, 40]"},
      {"[1, 2, 3, 4]", "[1, 2, 3, 4]", "[0, 0, 0, 0]"},
      {"[5, 0, 0, 0]", "[4, 9, 9, 9]", "[4, 9, 9, 9]"},
      {"[1, 5, 1, 1]", "[9, 4, 9, 9]", "[9, 4, 9, 9]"},
      {"[1, 1, 5, 1]", "[9, 9, 4, 9]", "[9, 9, 4, 9]"},
      {"[1, 1, 1, 5]", "[9, 9, 9, 4]", "[9, 9, 9, 4]"},
      {"[1, 0, 9007199254740993, 0]", "[2, 0, 18446744073709551615, 0]", "[1, 0, 18437736874454810622, 0]"},
      {"", "[1, 2, 3, 4]", "[1, 2, 3, 4]"},
      {"[1, 2, 3, 4]", "", "[0, 0, 0, 0]"}};
  const Cases counts = {{"5", "12", "7"}, {"5", "5", "0"},       {"12", "5", "5"}, {"null", "5", "5"},
                        {"", "5", "5"},   {"5", "null", "null"}, {"5", "", "null"}};
  const std::string egress = "queues /egressQueueCounters/interfaces/";
  const std::tuple<const Cases&, const char*, std::string> places[] = {
      {quads,
       R"({"ingress": [{"fapId": 3, "coreId": 1, "intfId": "Ethernet1", "queues": [[9, 9, 9, 9], $]}]})",
       "ingress /sources/A.1/interfaces/Ethernet1/trafficClasses/TC1"},
      {quads, R"({"ingress": [{"fapId": 3, "coreId": 1, "intfId": "Policer", "queues": [], "total": $}]})",
       "cpu /ingressVoqs/sources/A.1/cpuClasses/Policer/ports/"},
      {quads, R"({"ingress": [{"fapId": 7, "coreId": 0, "intfId": "FabricMcast0", "queues": [$]}]})",
       "ingress /sources/B/interfaces/FabricMcast0/trafficClasses/TC0 --internal"},
      {quads, R"({"egress": {"Ethernet1": {"queues": [[9, 9, 9, 9], $]}}})",
       egress + "Ethernet1/ucastQueues/trafficClasses/TC1/dropPrecedences/DP0-3"},
      {quads, R"({"egressTm": {"Ethernet3": {"queues": [{"ucast": [9, 9, 9, 9], "mcast": $}]}}})",
       egress + "Ethernet3/mcastQueues/trafficClasses/TC0/dropPrecedences/DP0-3"},
      {quads, R"({"egressLag": {"Port-Channel1": {"queues": [{"ucast": $, "mcast": [9, 9, 9, 9]}]}}})",
       egress + "Port-Channel1/ucastQueues/trafficClasses/TC0/dropPrecedences/DP0-3"},
      {counts, R"({"egressAcl": {"Ethernet1": $}})", "acl /interfaces/Ethernet1/mlagPackets"},
      {counts, R"({"egressMtu": {"3": {"enqueuedPackets": $}}})", "mtu /destinations/A/enqueuedPackets"},
      {counts, R"({"egressMtu": {"3": {"droppedPackets": $}}})", "mtu /destinations/A/droppedPackets"},
      {counts, R"({"egressMtu": {"3": {"totalPackets": $}}})", "mtu /destinations/A/totalPackets"}};
  for (const auto& [cases, counters, question] : places) {
    std::vector<std::string> command = words(question);
    const Json::json_pointer row(std::exchange(command[1], "-j"));
    for (const auto& [then, now, since] : cases) {
      const Json earlier = withCounters(counters, then);
      const Json shown = Json::parse(answer(withCounters(counters, now), command, &earlier));
      const Json expected = Json::parse(since);
      EXPECT_EQ(shown.contains(row) ? shown.at(row) : Json(),
                expected.is_array() ? members(expected) : expected)
          << counters << ": " << then << " to " << now;
    }
  }
}

TEST(Since, ASumIsTheSumOfTheDifferences) {
  const auto stateOf = [](const Json& quads) {
    Json state = smallSwitch();
    for (std::size_t i = 0; i < 3; ++i) state["counters"]["ingress"][i]["queues"] = {quads[i]};
    return state;
  };
  // The first source has continued counting, the second was cleared, the third had no record.
  Json then = stateOf({{100, 0, 10, 0}, {5000, 0, 500, 0}, {7, 0, 7, 0}});
  then["counters"]["ingress"].erase(2);
  const Json now = stateOf({{107, 0, 11, 0}, {20, 0, 2, 0}, {300, 0, 0, 0}});
  const Json sum = members({7 + 20 + 300, 0, 1 + 2 + 0, 0});
  const Json queues = Json::parse(answer(now, {"queues", "-j"}, &then));
  EXPECT_EQ(queues["ingressVoqCounters"]["interfaces"]["Ethernet1"]["trafficClasses"]["TC0"], sum);
  const Json drops = Json::parse(answer(now, {"drops", "-j"}, &then))["interfaces"];
  EXPECT_EQ(drops["Ethernet1"]["trafficClasses"]["TC0"]["ingressVoqCounters"]["countersSum"], sum);
  EXPECT_EQ(drops.size(), 1U) << "the others have dropped nothing since";
}

TEST(Since, DebugCountersKeepTheirTimesAndCountTheirValues) {
  Json now = Json::parse(R"({"debug": {"faps": {
    "A": {"snapshots": {"current": [{"value": 50, "lastUpdate": 60, "overflow": true}, {"value": 5}, {"value": 7}]}},
    "B": {"snapshots": {"current": [{"value": 3}]}}}}})");
  for (Json& fap : now["debug"]["faps"]) {
    fap["directory"] = R"({"valid": true, "readiness": 1, "blocks": {"b": {"c": {"numInstances": 3}}}})"_json;
  }
  const Json then = Json::parse(R"({"debug": {"faps": {
    "A": {"snapshots": {"current": [{"value": 8, "lastUpdate": 30}, {"value": 6}]}},
    "B": {}, "C": {"snapshots": {"current": [{"value": 1}]}}}}})");
  const std::string shown = answer(now, {"debug"}, &then);
  EXPECT_THAT(shown, HasSubstr(line("  *%-50s : %15d : %-19s : 1970-01-01 00:01:00", "c[0]", 42, "never")));
  EXPECT_THAT(shown, HasSubstr(line("   %-50s : %15d : ", "c[1]", 5))) << "was cleared";
  EXPECT_THAT(shown, HasSubstr(line("   %-50s : %15d : ", "c[2]", 7))) << "was not there";
  EXPECT_THAT(shown, HasSubstr(line("   %-50s : %15d : ", "c[0]", 3))) << "had no manager";
}

TEST(Since, TellsWhichStateIsWrongAndHowLongItTook) {
  // States as "name@takenAt", either of which may be empty.
  const auto stateOf = [](const std::string& text) {
    const std::size_t at = text.find('@');
    Json state;
    if (at > 0) state["switch"]["name"] = text.substr(0, at);
    if (at + 1 < text.size()) state["switch"]["takenAt"] = text.substr(at + 1);
    return loamshow::parseState("state", state.dump());
  };
  constexpr const char* unknown = "unknown";
  const std::array<const char*, 3> cases[] = {
      {"a@2026-11-23T10:53:31Z", "a@2026-11-23T10:53:41.25Z", "10.250000 s"},
      {"a@2024-02-28T23:59:59.999999Z", "@2024-03-01T00:00:00Z", "86400.000001 s"},
      {"@2026-11-23T10:53:31Z", "a@2026-11-23T10:53:31Z", "0.000000 s"},
      {"a@", "a@2026-11-23T10:53:31Z", unknown},
      {"a@2026-11-23T10:53:31Z", "a@", unknown},
      {"a@", "a@", unknown},
      {"b@", "a@", "then.json: /switch/name: expected a, not b"},
      {"a@2026-11-23T10:53:41.5Z", "a@2026-11-23T10:53:41.25Z",
       "then.json: /switch/takenAt: expected a time up to 2026-11-23T10:53:41.25Z, not "
       "2026-11-23T10:53:41.5Z"}};
  for (const auto& [then, now, result] : cases) {
    loamshow::History history("now.json");
    history.beginAt("then.json", stateOf(then));
    try {
      const std::optional<double> seconds = history.advance(stateOf(now)).seconds;
      EXPECT_EQ(seconds ? line("%f s", *seconds) : unknown, result);
    } catch (const loamshow::InputError& error) {
      EXPECT_STREQ(error.what(), result);
    }
  }
}

}  // namespace

}  // namespace loamtest

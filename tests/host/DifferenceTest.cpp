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

TEST(Since, AQuadCountsFromTheEarlierOneUnlessItWasCleared) {
  struct Place {
    const char* counters;
    const char* command;
    const char* row;
  };
  const Place places[] = {
      {R"({"ingress": [{"fapId": 3, "coreId": 1, "intfId": "Ethernet1", "queues": [[9, 9, 9, 9], $]}]})",
       "ingress", "/sources/A.1/interfaces/Ethernet1/trafficClasses/TC1"},
      {R"({"ingress": [{"fapId": 3, "coreId": 1, "intfId": "Policer", "queues": [[9, 9, 9, 9]], "total": $}]})",
       "cpu", "/ingressVoqs/sources/A.1/cpuClasses/Policer/ports/"},
      {R"({"ingress": [{"fapId": 7, "coreId": 0, "intfId": "FabricMcast0", "queues": [$]}]})",
       "ingress --internal", "/sources/B/interfaces/FabricMcast0/trafficClasses/TC0"},
      {R"({"egress": {"Ethernet1": {"queues": [[9, 9, 9, 9], $]}}})", "queues",
       "/egressQueueCounters/interfaces/Ethernet1/ucastQueues/trafficClasses/TC1/dropPrecedences/DP0-3"},
      {R"({"egressTm": {"Ethernet3": {"queues": [{"ucast": [9, 9, 9, 9], "mcast": $}]}}})", "queues",
       "/egressQueueCounters/interfaces/Ethernet3/mcastQueues/trafficClasses/TC0/dropPrecedences/DP0-3"},
      {R"({"egressLag": {"Port-Channel1": {"queues": [{"ucast": $, "mcast": [9, 9, 9, 9]}]}}})", "queues",
       "/egressQueueCounters/interfaces/Port-Channel1/ucastQueues/trafficClasses/TC0/dropPrecedences/DP0-3"}};
  const struct {
    const char* then;
    const char* now;
    const char* since;
  } cases[] = {
      {"[1, 2, 3, 4]", "[11, 22, 33, 44]", "[10, 20, 30, 40]"},
      {"[1, 2, 3, 4]", "[1, 2, 3, 4]", "[0, 0, 0, 0]"},
      {"[5, 0, 0, 0]", "[4, 9, 9, 9]", "[4, 9, 9, 9]"},
      {"[1, 5, 1, 1]", "[9, 4, 9, 9]", "[9, 4, 9, 9]"},
      {"[1, 1, 5, 1]", "[9, 9, 4, 9]", "[9, 9, 4, 9]"},
      {"[1, 1, 1, 5]", "[9, 9, 9, 4]", "[9, 9, 9, 4]"},
      {"[1, 0, 9007199254740993, 0]", "[2, 0, 18446744073709551615, 0]", "[1, 0, 18437736874454810622, 0]"},
      {"", "[1, 2, 3, 4]", "[1, 2, 3, 4]"},
      {"[1, 2, 3, 4]", "", "[0, 0, 0, 0]"}};
  for (const Place& place : places) {
    for (const auto& [then, now, since] : cases) {
      const Json earlier = withCounters(place.counters, then);
      const Json shown = Json::parse(
          answer(withCounters(place.counters, now), words(std::string(place.command) + " -j"), &earlier));
      EXPECT_EQ(shown.at(Json::json_pointer(place.row)), members(Json::parse(since)))
          << place.counters << ": " << then << " to " << now;
    }
  }
}

TEST(Since, ALoneCountCountsFromTheEarlierOneUnlessOneHasNoValue) {
  const struct {
    const char* then;
    const char* now;
    const char* since;  // empty: no value
  } cases[] = {{"5", "12", "7"}, {"5", "5", "0"},   {"12", "5", "5"}, {"null", "5", "5"},
               {"", "5", "5"},   {"5", "null", ""}, {"5", "", ""}};
  const std::pair<const char*, const char*> places[] = {
      {R"({"egressAcl": {"Ethernet1": $}})", "acl /interfaces/Ethernet1/mlagPackets"},
      {R"({"egressMtu": {"3": {"enqueuedPackets": $}}})", "mtu /destinations/A/enqueuedPackets"},
      {R"({"egressMtu": {"3": {"droppedPackets": $}}})", "mtu /destinations/A/droppedPackets"},
      {R"({"egressMtu": {"3": {"totalPackets": $}}})", "mtu /destinations/A/totalPackets"}};
  for (const auto& [counters, question] : places) {
    const std::string command = words(question)[0];
    const Json::json_pointer row(words(question)[1]);
    for (const auto& [then, now, since] : cases) {
      const Json earlier = withCounters(counters, then);
      const Json shown = Json::parse(answer(withCounters(counters, now), {command, "-j"}, &earlier));
      ASSERT_TRUE(shown.contains(row.parent_pointer()));
      EXPECT_EQ(shown.contains(row) ? shown.at(row).dump() : "", since)
          << counters << ": " << then << " to " << now;
    }
  }
}

TEST(Since, ASumIsTheSumOfTheDifferences) {
  const auto stateOf = [](const char* first, const char* second, const char* third) {
    Json state = smallSwitch();
    state["counters"] = {{"ingress", Json::array()}};
    for (const auto& [fap, core, quad] : {std::tuple(3, 0, first), {3, 1, second}, {7, 0, third}}) {
      const Json queues = {Json::parse(quad)};
      state["counters"]["ingress"].push_back(
          {{"fapId", fap}, {"coreId", core}, {"intfId", "Ethernet1"}, {"queues", queues}});
    }
    return state;
  };
  // The first source has continued counting, the second was cleared, the third has lost its record.
  Json then = stateOf("[100, 0, 10, 0]", "[5000, 0, 500, 0]", "[7, 0, 7, 0]");
  then["counters"]["ingress"].erase(2);
  const Json now = stateOf("[107, 0, 11, 0]", "[20, 0, 2, 0]", "[300, 0, 0, 0]");
  const Json sum = members({7 + 20 + 300, 0, 1 + 2 + 0, 0});
  EXPECT_EQ(Json::parse(answer(now, {"queues", "-j"}, &then))
                .at("/ingressVoqCounters/interfaces/Ethernet1/trafficClasses/TC0"_json_pointer),
            sum);
  EXPECT_EQ(Json::parse(answer(now, {"drops", "-j"}, &then))
                .at("/interfaces/Ethernet1/trafficClasses/TC0/ingressVoqCounters/countersSum"_json_pointer),
            sum);
}

TEST(Since, DropsShowsTheInterfacesThatHaveDroppedPacketsSince) {
  Json now = smallSwitch();
  const Json then = now;
  EXPECT_EQ(answer(now, {"drops", "-j"}, &then), "{\"interfaces\":{}}\n");
  now["counters"]["egress"]["Ethernet1"]["queues"][3][2] = 9'000'000;
  EXPECT_THAT(answer(now, {"drops", "-j"}, &then), testing::StartsWith("{\"interfaces\":{\"Ethernet1\":"));
  EXPECT_THAT(answer(now, {"drops", "-j"}, &then), testing::Not(HasSubstr("Ethernet3")));
}

TEST(Since, DebugCountersKeepTheirTimesAndCountTheirValues) {
  const auto stateOf = [](const char* faps) {
    Json state;
    state["debug"]["faps"] = Json::parse(faps);
    for (auto& fap : state["debug"]["faps"]) {
      fap["directory"] =
          Json::parse(R"({"valid": true, "readiness": 1, "blocks": {"b": {"c": {"numInstances": 3}}}})");
    }
    return state;
  };
  const Json now =
      stateOf(R"({"A": {"snapshots": {"current": [{"value": 50, "lastUpdate": 60, "overflow": true},
                                                             {"value": 5, "lastUpdate": 0}, {"value": 7}]}},
                             "B": {"snapshots": {"current": [{"value": 3}]}}})");
  const Json then =
      stateOf(R"({"A": {"snapshots": {"current": [{"value": 8, "lastUpdate": 30}, {"value": 6}]}},
                              "B": {}, "C": {"snapshots": {"current": [{"value": 1}]}}})");
  const std::string shown = answer(now, {"debug"}, &then);
  EXPECT_THAT(shown, HasSubstr(line("  *%-50s : %15d : %-19s : 1970-01-01 00:01:00", "c[0]", 42, "never")));
  EXPECT_THAT(shown, HasSubstr(line("   %-50s : %15d : ", "c[1]", 5))) << "was cleared";
  EXPECT_THAT(shown, HasSubstr(line("   %-50s : %15d : ", "c[2]", 7))) << "was not there";
  EXPECT_THAT(shown, HasSubstr(line("   %-50s : %15d : ", "c[0]", 3))) << "had no manager";
}

TEST(Since, TellsWhichStateIsWrongAndHowLongItTook) {
  const auto stateOf = [](const char* name, const char* takenAt) {
    Json state;
    if (*name != '\0') state["switch"]["name"] = name;
    if (*takenAt != '\0') state["switch"]["takenAt"] = takenAt;
    return loamshow::parseState("state", state.dump());
  };
  const struct {
    const char* then[2];
    const char* now[2];
    std::optional<double> seconds;
    const char* error;
  } cases[] = {{{"a", "2026-11-23T10:53:31Z"}, {"a", "2026-11-23T10:53:41.25Z"}, 10.25, nullptr},
               {{"a", "2024-02-28T23:59:59.999999Z"}, {"", "2024-03-01T00:00:00Z"}, 86400.000001, nullptr},
               {{"", "2026-11-23T10:53:31Z"}, {"a", "2026-11-23T10:53:31Z"}, 0.0, nullptr},
               {{"a", ""}, {"a", "2026-11-23T10:53:31Z"}, {}, nullptr},
               {{"a", "2026-11-23T10:53:31Z"}, {"a", ""}, {}, nullptr},
               {{"a", ""}, {"a", ""}, {}, nullptr},
               {{"b", ""}, {"a", ""}, {}, "then.json: /switch/name: expected a, not b"},
               {{"a", "2026-11-23T10:53:41.5Z"},
                {"a", "2026-11-23T10:53:41.25Z"},
                {},
                "then.json: /switch/takenAt: expected a time up to 2026-11-23T10:53:41.25Z, not "
                "2026-11-23T10:53:41.5Z"}};
  for (const auto& [then, now, seconds, error] : cases) {
    loamshow::History history("now.json");
    history.beginAt("then.json", stateOf(then[0], then[1]));
    try {
      const loamshow::Shown shown = history.advance(stateOf(now[0], now[1]));
      EXPECT_EQ(error, nullptr);
      EXPECT_EQ(shown.seconds.has_value(), seconds.has_value());
      EXPECT_NEAR(shown.seconds.value_or(0), seconds.value_or(0), 1e-7);
    } catch (const loamshow::InputError& raised) {
      EXPECT_STREQ(raised.what(), error == nullptr ? "none" : error);
    }
  }
}

}  // namespace

}  // namespace loamtest

// Parts of the host that work without a switch's counters.

#include <gmock/gmock.h>

#include "loamshow/cli/IntfArguments.h"
#include "loamshow/commands/Warnings.h"
#include "loamshow/json/JsonWriter.h"
#include "loamshow/state/StateFile.h"
#include "loamshow/text/InputError.h"
#include "tests/Support.h"

namespace loamtest {

namespace {

using Strings = std::vector<std::string>;

// The fuzz target compares names, texts and objects with another library.
TEST(JsonWriter, WritesEveryScalarInBothLayouts) {
  const auto write = [](loamshow::JsonWriter& out) {
    out.beginArray();
    for (const double number : {0.0, 1.5, 1700000000.0, -0.1, 1e16, 1e17, 1e-5, 1.25e-6, 5e-324}) {
      out.value(number);
    }
    out.value(U8{7});
    out.beginObject();
    out.member("no", false);
    out.endObject();
    out.value(true);
    out.null();
    out.beginArray();
    out.endArray();
    out.endArray();
  };
  using Layout = loamshow::JsonWriter::Layout;
  const std::string expected =
      "[0,1.5,1700000000,-0.1,10000000000000000,1e+17,0.00001,1.25e-06,5e-324,7,{\"no\":false},true,null,[]]"
      "\n";
  std::string pieces;
  loamshow::JsonWriter oneLine([&](std::string_view piece) { pieces += piece; }, Layout::oneLine);
  for (int i = 0; i < 2; ++i) write(oneLine);
  EXPECT_EQ(pieces, expected + expected);
  std::string lines;
  loamshow::JsonWriter indented(lines, Layout::indented);
  write(indented);
  EXPECT_THAT(lines, testing::StartsWith("[\n  0,\n  1.5,\n"));
  EXPECT_THAT(lines, testing::EndsWith("  7,\n  {\n    \"no\": false\n  },\n  true,\n  null,\n  []\n]\n"));
}

TEST(IntfArguments, NameInterfacesInManyWays) {
  std::vector<Nexo::IntfId> interfaces;
  for (const std::string& name : words("Ethernet1/1 Ethernet1/2 Ethernet1/3 Ethernet2 ETHERNET2 "
                                       "Port-Channel1 a,b c-4 Et9 Ethernet9 x8 x9 "
                                       "x10 y18446744073709551615 y18446744073709551616")) {
    interfaces.emplace_back(name);
  }
  const auto selected = [&](const Strings& arguments) {
    std::string names;
    try {
      for (const Nexo::IntfId intf : loamshow::selectInterfaces(interfaces, arguments)) {
        names += (names.empty() ? "" : " ") + std::string(intf.stringValue());
      }
    } catch (const loamshow::InputError& error) {
      return std::string(error.what());
    }
    return names;
  };
  // "%" stands for the argument.
  constexpr const char* malformed =
      "malformed range \"%\": expected a name, \"-\" and the last number, without leading zeros, as in "
      "Et1/1-4";
  constexpr const char* emptyName =
      "empty name in list \"%\": expected names with commas between, as in Et1/1,Po1";
  const std::pair<std::string, std::string> cases[] = {
      {"Port-Channel1-1", "Port-Channel1"},
      {"c-4,c-4", "c-4 c-4"},
      {"a,b", "a,b"},
      {"x8-10", "x8 x9 x10"},
      {"y18446744073709551615-18446744073709551616", "y18446744073709551615 y18446744073709551616"},
      {"Ethernet2", "Ethernet2"},  // exact long names win
      {"ethernet2", "ambiguous interface \"%\": Ethernet2 or ETHERNET2"},
      {"Et9", "Et9"},
      {"et9", "ambiguous interface \"%\": Et9 or Ethernet9"},
      {"Et7", "no such interface \"%\"; did you mean Et2?"},
      {"EHTERNET99", "no such interface \"%\"; did you mean Ethernet9?"},
      {"Ethernet1/999", "no such interface \"%\""},
      {"", "no such interface \"%\""},
      {"2", "no such interface \"%\""},
      {"-1", "no such interface \"%\""},
      {"Et1/1, Et1/2", "no such interface \" Et1/2\"; did you mean Et1/2?"},
      {"Et1/1,2",
       "incomplete name \"2\" in list \"%\": expected complete names or a range, as in Et1/1,Et1/2 or "
       "Et1/1-2"},
      {"Et1/1,", emptyName},
      {",Et1/1", emptyName},
      {"Et1/1-4", "no such interface \"Et1/4\" (in range \"%\")"},
      {"Et1/1-99999999999999999999", "no such interface \"Et1/4\" (in range \"%\")"},
      {"Et1/3-1", "descending range \"%\""},
      {"Et1/01-3", malformed},
      {"Et1/1-", malformed},
      {"Et1/1-3/4", malformed},
      {"Et9/1-9/4", malformed},
      {"Et1/1-Et1/2", malformed}};
  for (auto [argument, names] : cases) {
    const std::size_t at = names.find('%');
    if (at != std::string::npos) names.replace(at, 1, argument);
    EXPECT_EQ(selected({argument}), names);
  }
  EXPECT_EQ(selected({"Et1/2", "ethernet1/1,PO1"}), "Ethernet1/2 Ethernet1/1 Port-Channel1");
  EXPECT_EQ(selected({"et1/1-3", "et1/2"}), "Ethernet1/1 Ethernet1/2 Ethernet1/3 Ethernet1/2");
  EXPECT_EQ(loamshow::selectInterfaces(interfaces, {}), interfaces);
}

/// The warnings of a command line on the small switch, changed by a merge patch.
Strings warned(const char* patch, const Strings& arguments) {
  Json state = smallSwitch();
  state.merge_patch(Json::parse(patch));
  return loamshow::warnings(parsed(arguments), loamshow::parseState("state", state.dump()));
}

/// Whether a model has an entry of that name, with rows if it is one for rows.
bool hasRows(const Json& model, const std::string& name) {
  if (!model.is_object()) return false;
  for (const auto& [key, value] : model.items()) {
    const bool isEntry =
        key == name && !(value.contains("trafficClasses") && value["trafficClasses"].empty());
    if (isEntry || hasRows(value, name)) return true;
  }
  return false;
}

constexpr const char* unchanged = "{}";
constexpr const char* noSubIntfVoqs = R"({"status": {"subIntfNumVoqs": 0}})";
constexpr const char* noCores = R"({"status": {"fapNumCores": {"3": 0, "7": null}}})";
constexpr const char* faps = R"({"debug": {"faps": {
  "A": {"directory": {"blocks": {"cgm": {}, "Upper": {}}}, "snapshots": {"current": []}},
  "B": {"directory": null, "snapshots": {"lastClear": []}}, "C": {}}}})";

TEST(Warnings, SayWhyACommandHasNoRows) {
  const std::tuple<const char*, const char*, Strings> cases[] = {
      {unchanged, "queues", {}},
      {unchanged, "debug", {}},
      {unchanged,
       "queues Ethernet1,Loopback0,Po1,loopback0",
       {"Loopback0: queues has no rows for it (it has no port)"}},
      {unchanged,
       "drops po1 Loopback0",
       {"Port-Channel1: drops has no rows for it (counted in the LAG table; see queues)",
        "Loopback0: drops has no rows for it (it has no port)"}},
      {noSubIntfVoqs,
       "queues Et1.5",
       {"Ethernet1.5: queues has no rows for it (sub-interfaces have no VOQs)"}},
      {noCores, "ingress Et1", {"Ethernet1: ingress has no rows for it (the switch has no FAP cores)"}},
      {faps, "debug --block CGM --snapshot lastClear", {}},
      {faps, "debug --block CGN", {"no counter block \"CGN\" on any FAP; did you mean cgm?"}},
      {faps, "debug --block Upper", {"no counter block \"Upper\" on any FAP"}},
      {faps,
       "debug --block= --snapshot=curent",
       {"no counter block \"\" on any FAP", "no snapshot \"curent\" on any FAP; did you mean current?"}},
      {faps, "debug --snapshot=Current", {"no snapshot \"Current\" on any FAP; did you mean current?"}}};
  for (const auto& [patch, arguments, warnings] : cases) {
    EXPECT_EQ(warned(patch, words(arguments)), warnings) << arguments;
  }
}

TEST(Warnings, AreOfExactlyTheInterfacesThatAnAnswerLeavesOut) {
  constexpr const char* otherPort = R"({"status": {"intfIdToSppid": {"Ethernet3": 64}}})";
  constexpr const char* namelessPort = R"({"status": {"sppidToIntfId": {"66": null}}})";
  constexpr const char* noQueues = R"({"tmMapping": {"portTmMap": [64, 65]}})";
  for (const char* patch : {unchanged, otherPort, namelessPort, noQueues, noSubIntfVoqs, noCores}) {
    Json state = smallSwitch();
    state.merge_patch(Json::parse(patch));
    for (const char* command : {"queues", "ingress", "drops", "acl"}) {
      for (const std::string name : state["interfaces"]) {
        const Json model = Json::parse(answer(state, {command, name, "-j"}));
        EXPECT_EQ(warned(patch, {command, name}).empty(), hasRows(model, name))
            << patch << ' ' << command << ' ' << name;
      }
    }
  }
}

}  // namespace

}  // namespace loamtest

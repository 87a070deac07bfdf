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
TEST(JsonWriter, WritesNumbersWithoutExponentIfTheyFitIntoSeventeenDigits) {
  std::string written;
  for (const double number : {0.0, 1.5, 1700000000.0, -0.1, 1e16, 1e17, 1e-5, 1.25e-6, 5e-324}) {
    loamshow::JsonWriter(written, loamshow::JsonWriter::Layout::oneLine).value(number);
  }
  EXPECT_EQ(written, "0\n1.5\n1700000000\n-0.1\n10000000000000000\n1e+17\n0.00001\n1.25e-06\n5e-324\n");
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
  // "%" is replaced by the argument.
  constexpr const char* malformed =
      "malformed range \"%\": expected a name, \"-\" and the last number, without leading zeros, as in "
      "Et1/1-4";
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
      {"Et1/1,", "empty name in list \"%\": expected names with commas between, as in Et1/1,Po1"},
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

constexpr const char* unchanged = "{}";
constexpr const char* noSubIntfVoqs = R"({"status": {"subIntfNumVoqs": 0}})";
constexpr const char* noCores = R"({"status": {"fapNumCores": {"3": 0, "7": null}}})";
constexpr const char* faps = R"({"debug": {"faps": {
  "A": {"directory": {"blocks": {"cgm": {}, "Upper": {}}}, "snapshots": {"current": []}},
  "B": {"directory": null, "snapshots": {"lastClear": []}}, "C": {}}}})";

TEST(Warnings, SayWhyACommandHasNoRows) {
  const std::tuple<const char*, const char*, Strings> cases[] = {
      {unchanged, "queues", {}},
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
        const std::string row = "\n" + std::string(Nexo::IntfId(name).shortName()) + " ";
        EXPECT_EQ(warned(patch, {command, name}).empty(),
                  answer(state, {command, name}).find(row) != std::string::npos)
            << patch << ' ' << command << ' ' << name;
      }
    }
  }
}

}  // namespace

}  // namespace loamtest

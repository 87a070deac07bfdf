#include <gmock/gmock.h>

#include "loamshow/commands/Warnings.h"
#include "loamshow/state/StateFile.h"
#include "tests/Support.h"

namespace loamtest {

namespace {

/// The warnings of a command line on the small switch, changed by a merge patch.
std::vector<std::string> warned(const char* patch, const std::vector<std::string>& arguments) {
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
constexpr const char* otherPort = R"({"status": {"intfIdToSppid": {"Ethernet3": 64}}})";
constexpr const char* namelessPort = R"({"status": {"sppidToIntfId": {"66": null}}})";
constexpr const char* noQueues = R"({"tmMapping": {"portTmMap": [64, 65]}})";
constexpr const char* noSubIntfVoqs = R"({"status": {"subIntfNumVoqs": 0}})";
constexpr const char* noCores = R"({"status": {"fapNumCores": {"3": 0, "7": null}}})";

TEST(Warnings, SayWhyACommandHasNoRows) {
  const std::tuple<const char*, std::vector<std::string>, std::vector<std::string>> cases[] = {
      {unchanged, {"queues"}, {}},
      {unchanged,
       {"queues", "Ethernet1,Loopback0,Po1,loopback0"},
       {"Loopback0: queues has no rows for it (it has no port)"}},
      {unchanged,
       {"drops", "po1", "Loopback0"},
       {"Port-Channel1: drops has no rows for it (counted in the LAG table; see queues)",
        "Loopback0: drops has no rows for it (it has no port)"}},
      {unchanged,
       {"ingress", "Po1"},
       {"Port-Channel1: ingress has no rows for it (counted in the LAG table; see queues)"}},
      {noSubIntfVoqs,
       {"queues", "Et1.5"},
       {"Ethernet1.5: queues has no rows for it (sub-interfaces have no VOQs)"}},
      {noCores, {"ingress", "Et1"}, {"Ethernet1: ingress has no rows for it (the switch has no FAP cores)"}},
  };
  for (const auto& [patch, arguments, warnings] : cases) EXPECT_EQ(warned(patch, arguments), warnings);
}

TEST(Warnings, AreOfExactlyTheInterfacesThatAnAnswerLeavesOut) {
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

TEST(Warnings, NameBlocksAndSnapshotsThatNoFapHas) {
  constexpr const char* faps = R"({"debug": {"faps": {
    "A": {"directory": {"blocks": {"cgm": {}, "Upper": {}}}, "snapshots": {"current": []}},
    "B": {"directory": null, "snapshots": {"lastClear": []}}, "C": {}}}})";
  const std::pair<std::vector<std::string>, std::vector<std::string>> cases[] = {
      {{"debug", "--block", "CGM", "--snapshot", "lastClear"}, {}},
      {{"debug", "--block", "CGN"}, {"no counter block \"CGN\" on any FAP; did you mean cgm?"}},
      {{"debug", "--block", "Upper"}, {"no counter block \"Upper\" on any FAP"}},
      {{"debug", "--block=", "--snapshot=curent"},
       {"no counter block \"\" on any FAP", "no snapshot \"curent\" on any FAP; did you mean current?"}},
      {{"debug", "--snapshot=Current"}, {"no snapshot \"Current\" on any FAP; did you mean current?"}}};
  for (const auto& [arguments, warnings] : cases) EXPECT_EQ(warned(faps, arguments), warnings);
  EXPECT_EQ(warned(unchanged, {"debug"}), std::vector<std::string>());
}

}  // namespace

}  // namespace loamtest

#include <gmock/gmock.h>
#include <sys/time.h>

#include <cmath>
#include <csignal>
#include <ctime>

#include "LoamCounters/DebugCountersPrinter/DebugCountersPrinter.h"
#include "loamshow/cli/CommandLine.h"
#include "loamshow/commands/ShowCommands.h"
#include "loamshow/state/StateFile.h"
#include "platform/tabula.h"
#include "tests/Faults.h"
#include "tests/Support.h"

namespace loamtest {

namespace {

using namespace LoamCounters;
using namespace Brim::Counters;

// 1970-01-01 00:00:00 UTC is -100 on the switch's clock.
Json debugSwitch() {
  return Json::parse(R"({"debug": {"switchTimeOffset": 100, "faps": {
    "Fap10": {"directory": null, "snapshots": {}},
    "fap2": {
      "directory": {"valid": true, "readiness": 3, "blocks": {
        "b10": {"Only": {"numInstances": 1, "displayName": "Plain"}},
        "Upper": {"Lost": {"numInstances": 1}},
        "b9": {
          "c10": {"numInstances": 3, "fetchType": 1, "offset": 1, "isDropCounter": true},
          "c9": {"displayName": "Named", "firstInstance": 4, "numInstances": 2, "offset": 4294967292},
          "f": {"numInstances": 2, "firstInstance": 1, "displayType": 0, "fields": {
            "a": {"order": 2, "offset": 2, "fetchType": 2, "isDropCounter": true},
            "c": {"order": 2, "offset": 9, "fetchType": 2},
            "b": {"order": 1, "offset": 1, "fetchType": 3, "displayName": "First"}}},
          "none": {"numInstances": 0},
          "wraps": {"firstInstance": 4294967294, "numInstances": 2}
        }}},
      "snapshots": {"current": [
        {"value": 7, "firstUpdate": 1, "lastUpdate": 61.5, "lastDiscontinuity": 1},
        {"value": 18446744073709551615, "lastUpdate": 0.5, "overflow": true, "lastDiscontinuity": 5},
        {"value": 5, "firstUpdate": 20, "lastUpdate": 1e300, "lastDiscontinuity": 19.5}
      ], "old": [{"value": 1}]}
    }}}})");
}

std::string title(const std::string& fap) {
  return "\n" + fap + " Counters (* indicates overflow)\n" + std::string(fap.size() + 32, '-') + "\n" +
         line("%-53s   %-15s   %-19s   %-19s   %-19s\n", "Counter name", "Value", "First update",
              "Last update", "Last discontinuity");
}

std::string counterLine(char sign, const char* name, const char* value, const char* first, const char* last,
                        const char* discontinuity = nullptr) {
  return line("  %c%-50s : %15s : %-19s : %-19s", sign, name, value, first, last) +
         (discontinuity == nullptr ? "" : line(" : %s", discontinuity)) + "\n";
}

/// The line of a counter that was never fetched.
std::string unset(const char* name) {
  return counterLine(' ', name, "n/a", "", "never");
}

const std::string lineC10 = counterLine('*', "c10[0]", "18446744073709551615", "", "1970-01-01 00:01:40") +
                            counterLine(' ', "c10[1]", "5", "", "invalid") + unset("c10[2]");
const std::string blockB9 =
    "[B9]\n" +
    // The offset wraps: instance 4 is record 0.
    counterLine(' ', "Named[4]", "7", "1970-01-01 00:01:41", "1970-01-01 00:02:41", "1970-01-01 00:01:41") +
    counterLine('*', "Named[5]", "18446744073709551615", "never", "1970-01-01 00:01:40",
                "1970-01-01 00:01:45") +
    lineC10 + counterLine(' ', "First[1]", "5", "", "invalid") + unset("a[1]") + unset("c[1]") +
    unset("First[2]") + unset("a[2]") + unset("c[2]");
const std::string blockB10 = "[B10]\n" + counterLine(' ', "Plain", "7", "1970-01-01 00:01:41",
                                                     "1970-01-01 00:02:41", "1970-01-01 00:01:41");
const std::string lastFap = title("Fap10") + "FapDescriptors are not valid for: Fap10";

TEST(DebugReport, ShowsFapsBlocksAndCountersInNaturalOrder) {
  const std::pair<std::vector<std::string>, std::string> cases[] = {
      {{}, blockB9 + blockB10},
      {{"--drops"}, "[B9]\n" + lineC10 + unset("a[1]") + unset("a[2]")},
      {{"--block", "b10"}, blockB10},
      {{"--block", "B10", "--snapshot", "old"}, "[B10]\n" + counterLine(' ', "Plain", "1", "never", "never")},
      {{"--block", "Upper"}, ""}};  // its key is not in lower case, so it cannot be found
  for (auto [command, blocks] : cases) {
    command.insert(command.begin(), "debug");
    EXPECT_EQ(answer(debugSwitch(), command), title("fap2") + blocks + lastFap);
  }
  EXPECT_EQ(answer(Json::object(), {"debug"}), "");
}

TEST(DebugReport, StopsAtWhatItCannotShow) {
  const std::tuple<const char*, Json, const char*, std::string> cases[] = {
      {"/snapshots", nullptr, "no shared-memory manager of debug counters for fap2", ""},
      {"/directory/blocks/b10/Only/fetchType", 4, "unsupported fetch type", title("fap2") + "[B10]\n"},
      {"/directory/blocks/b10/Only/displayType", 1, "unsupported display type", title("fap2") + "[B10]\n"}};
  for (const auto& [member, value, message, shown] : cases) {
    Json state = debugSwitch();
    state["debug"]["faps"]["fap2"].merge_patch(Json{{member, value}}.unflatten());
    const MemoryFile file;
    const auto show = [&] {
      loamshow::runShowCommand(parsed({"debug", "--block", "b10"}),
                               loamshow::parseState("state", state.dump()), file.fdNumber());
    };
    EXPECT_THAT(show, testing::ThrowsMessage<Vane::InternalException>(message));
    EXPECT_EQ(file.content(), shown);
  }
}

/// A manager of zeros that calls a function at each read.
class Meddler : public MemoryShmemManager {
 public:
  explicit Meddler(std::function<void()> atRead) : atRead_(std::move(atRead)) {}
  Counter counter(const Mote::String&, U32) const override { return atRead_(), Counter(); }

 private:
  std::function<void()> atRead_;
};

/// FAPs F1 to F3, each with blocks b1 to b3 of counters c1 and c2.
loamshow::SwitchState plainSwitch() {
  const Json block = {{"c1", {{"numInstances", 1}}}, {"c2", {{"numInstances", 1}}}};
  const Json blocks = {{"b1", block}, {"b2", block}, {"b3", block}};
  const Json fap = {{"directory", {{"valid", true}, {"readiness", 1}, {"blocks", blocks}}}};
  const Json faps = {{"F1", fap}, {"F2", fap}, {"F3", fap}};
  return loamshow::parseState("state", Json{{"debug", {{"faps", faps}}}}.dump());
}

const std::string line1 = counterLine(' ', "c1", "0", "never", "never");
const std::string line2 = counterLine(' ', "c2", "0", "never", "never");
const std::string upToB2 = "[B1]\n" + line1 + line2 + "[B2]\n" + line1 + line2;
const std::string block3 = "[B3]\n" + line1 + line2;

CounterDescriptorDir& directoryOf(const loamshow::DebugFap& fap) {
  return const_cast<CounterDescriptorDir&>(*fap.descriptor->counterDescriptorDir);
}

TEST(DebugReport, FollowsADirectoryThatChanges) {
  // A report continues with its first directory.
  const auto removeDirectory = [](const auto& fap) {
    const_cast<FapDescriptor&>(*fap.descriptor).counterDescriptorDir = nullptr;
  };
  const auto removeC2 = [](const auto& fap) {
    const auto second = directoryOf(fap).blockToDescriptor.get("b2");
    const_cast<CounterBlockDescriptorPtrDir&>(*second).counterDescriptors.remove("c2");
  };
  const std::string invalid = "FapDescriptors are not valid for: F1";
  const std::string shortened = "[B1]\n" + line1 + line2 + "[B2]\n" + line1 + block3;
  // What changes, at which read, and the blocks of this report and of the next one. Read 4 is the last one of
  // the second block.
  const std::tuple<std::function<void(loamshow::DebugFap&)>, int, std::string, std::string> cases[] = {
      {[](auto& fap) { directoryOf(fap).readinessIs(0); }, 4, upToB2 + invalid, invalid},
      {[](auto& fap) { directoryOf(fap).validIs(false); }, 4, upToB2 + invalid, invalid},
      {removeDirectory, 1, upToB2 + block3, invalid},
      {removeC2, 3, shortened, shortened}};
  for (const auto& [change, atRead, first, second] : cases) {
    loamshow::SwitchState state = plainSwitch();
    state.debugFaps.resize(1);
    loamshow::DebugFap& fap = state.debugFaps[0];
    int reads = 0;
    fap.manager = Mote::make<Meddler>([&, &at = atRead, &change = change] {
      if (++reads == at) change(fap);
    });
    const MemoryFile file;
    for (int i = 0; i < 2; ++i) loamshow::runShowCommand(parsed({"debug"}), state, file.fdNumber());
    EXPECT_EQ(file.content(), title("F1") + first + title("F1") + second);
  }
}

// A caller may release what it has given while an operation runs, and remove a FAP.
TEST(DebugReport, HoldsWhatItReads) {
  const auto printer = debugCountersPrinterFactory();
  const loamshow::SwitchState state = plainSwitch();
  const auto descriptors = fapDescriptorMappingFactory();
  const auto managers = shmemMgrMappingFactory();
  std::vector<U32> users;
  const auto removing = Mote::make<Meddler>([&] {
    users = {managers->users(), descriptors->users()};
    descriptors->fapDescriptorDel("F2");
  });
  for (const loamshow::DebugFap& fap : state.debugFaps) {
    descriptors->fapDescriptorIs(fap.name, fap.descriptor);
    managers->shmemMgrIs(fap.name, removing);
  }
  const MemoryFile file;
  printer->printDebugCountersPerAFap(managers, descriptors, file.fdNumber(), 1, "", false, {});
  EXPECT_EQ(file.content(), title("F1") + upToB2 + block3 + title("F3") + upToB2 + block3);
  EXPECT_THAT(users, testing::ElementsAre(3, 3)) << "with the handle that was made of the argument";

  const DebugCountersPrinter::Descriptor counter = Mote::make<CounterDescriptor>();
  DebugCountersPrinter::Manager manager;
  manager = Mote::make<Meddler>([&] { users = {counter->users(), manager->users()}; });
  printer->printDebugCounter(file.fdNumber(), 1, counter, "", manager, false, false, "", 0, "");
  EXPECT_THAT(users, testing::ElementsAre(2, 2));
}

TEST(DebugReport, CarriesOnOrEndsCleanlyAtEveryFault) {
  const loamshow::CommandLine line = parsed({"debug"});
  const loamshow::SwitchState state = loamshow::parseState("state", debugSwitch().dump());
  // A flush per block; the rest is the heading of a FAP without blocks.
  expectEveryFaultHandled({"debug", 3, [&](U32 fd) { loamshow::runShowCommand(line, state, fd); }});
}

TEST(DebugReport, AnInterruptEndsAWalkThatShowsNothing) {
  Json json = debugSwitch();
  json["debug"]["faps"]["fap2"]["directory"]["blocks"] = {{"b", {{"c", {{"numInstances", 4294967295}}}}}};
  // After 50 ms of this process's CPU time, which does not depend on the load of the machine.
  std::signal(SIGVTALRM, [](int) { tabula::interrupt(); });
  const itimerval once{{}, {0, 50'000}};
  ::setitimer(ITIMER_VIRTUAL, &once, nullptr);
  const std::clock_t began = std::clock();
  testing::internal::CaptureStdout();
  answer(json, {"debug", "--drops"});
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "exiting interrupted by user\n");
  EXPECT_LT(std::clock() - began, 3 * CLOCKS_PER_SEC) << "walked to the end";
}

TEST(DebugReport, PiecesComposeABlock) {
  const auto printer = debugCountersPrinterFactory();
  const auto counter = Mote::make<CounterDescriptor>();
  counter->displayName = "C";
  counter->numInstances = 2;
  const auto manager = Mote::make<MemoryShmemManager>();
  manager->values.set("now", {Counter{.value = 3, .lastDiscontinuity = Vane::Seconds(std::nan(""))}});
  const MemoryFile file;
  const U32 fd = file.fdNumber();
  const auto print = [&](bool drops, bool section, U32 instance, U32 fmt = tabula::formatText) {
    return printer->printDebugCounter(fd, fmt, counter, "now", manager, drops, section, "Block", instance,
                                      " (x)");
  };
  printer->printFapName(fd, tabula::formatText, "F");
  printer->printDebugCountersHeader(fd, tabula::formatText);
  EXPECT_FALSE(print(false, true, 0, tabula::formatJson)) << "shown, but nothing is written";
  counter->fieldDescriptors.set("null", nullptr);
  EXPECT_TRUE(print(false, true, 0)) << "a field that is not there is passed over";
  counter->fieldDescriptors.clear();
  EXPECT_TRUE(print(true, true, 0)) << "nothing printed: the section line stays due";
  EXPECT_TRUE(printer->printDebugCounter(fd, 1, nullptr, "now", manager, false, true, "Block", 0, ""));
  EXPECT_TRUE(printer->printDebugCounter(fd, 1, counter, "now", nullptr, false, true, "Block", 0, ""));
  EXPECT_FALSE(print(false, true, 0));
  EXPECT_FALSE(print(false, false, 4294967293));
  counter->numInstances = 1;
  EXPECT_FALSE(print(false, false, 1)) << "the only instance has no number";
  tabula::interrupt();
  EXPECT_THROW(print(false, false, 0), tabula::SigIntException);
  EXPECT_EQ(file.content(), title("F") + "[Block]\n" + counterLine(' ', "C[0] (x)", "3", "never", "never") +
                                counterLine(' ', "C[-3] (x)", "0", "never", "never") +
                                counterLine(' ', "C (x)", "0", "never", "never"));
}

TEST(DebugReport, TracesWhatReadsCounters) {
  const MemoryFile file;
  ::setenv("LOAM_TRACE", file.path().c_str(), 1);
  answer(debugSwitch(), {"debug"});
  debugCountersPrinterFactory()->printDebugCounter(0, 1, nullptr, "", nullptr, false, false, "", 0, "");
  EXPECT_THAT(file.content(), testing::MatchesRegex("20..-..-..T..:..:..[.]......Z printDebugCountersFap\n"
                                                    "20.*Z printDebugCountersFap took .* us\n"
                                                    "20.*Z printDebugCounter\n"
                                                    "20.*Z printDebugCounter took .* us\n"));
}

}  // namespace

}  // namespace loamtest

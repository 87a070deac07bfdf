#include <gmock/gmock.h>
#include <sys/time.h>
#include <unistd.h>

#include <cmath>
#include <csignal>
#include <ctime>

#include "LoamCounters/DebugCountersPrinter/DebugCountersPrinter.h"
#include "LoamCounters/DebugCountersPrinter/FapReport.h"
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

const std::string columnTitles = line("%-53s   %-15s   %-19s   %-19s   %-19s\n", "Counter name", "Value",
                                      "First update", "Last update", "Last discontinuity");

std::string title(const std::string& fap) {
  return "\n" + fap + " Counters (* indicates overflow)\n" + std::string(fap.size() + 32, '-') + "\n" +
         columnTitles;
}

std::string counterLine(char sign, const char* name, const char* value, const char* first, const char* last,
                        const char* discontinuity = nullptr) {
  return line("  %c%-50s : %15s : %-19s : %-19s", sign, name, value, first, last) +
         (discontinuity == nullptr ? "" : line(" : %s", discontinuity)) + "\n";
}

const std::string lineC10 = counterLine('*', "c10[0]", "18446744073709551615", "", "1970-01-01 00:01:40") +
                            counterLine(' ', "c10[1]", "5", "", "invalid") +
                            counterLine(' ', "c10[2]", "n/a", "", "never");
const std::string fieldA1 = counterLine(' ', "a[1]", "n/a", "", "never");
const std::string fieldA2 = counterLine(' ', "a[2]", "n/a", "", "never");
const std::string blockB9 =
    "[B9]\n" +
    // The offset wraps: instance 4 is record 0.
    counterLine(' ', "Named[4]", "7", "1970-01-01 00:01:41", "1970-01-01 00:02:41", "1970-01-01 00:01:41") +
    counterLine('*', "Named[5]", "18446744073709551615", "never", "1970-01-01 00:01:40",
                "1970-01-01 00:01:45") +
    lineC10 + counterLine(' ', "First[1]", "5", "", "invalid") + fieldA1 +
    counterLine(' ', "c[1]", "n/a", "", "never") + counterLine(' ', "First[2]", "n/a", "", "never") +
    fieldA2 + counterLine(' ', "c[2]", "n/a", "", "never");
const std::string blockB10 = "[B10]\n" + counterLine(' ', "Plain", "7", "1970-01-01 00:01:41",
                                                     "1970-01-01 00:02:41", "1970-01-01 00:01:41");
const std::string lastFap = title("Fap10") + "FapDescriptors are not valid for: Fap10";

TEST(DebugReport, ShowsFapsBlocksAndCountersInNaturalOrder) {
  EXPECT_EQ(answer(debugSwitch(), {"debug"}), title("fap2") + blockB9 + blockB10 + lastFap);
  EXPECT_EQ(answer(debugSwitch(), {"debug", "--drops"}),
            title("fap2") + "[B9]\n" + lineC10 + fieldA1 + fieldA2 + lastFap);
  EXPECT_EQ(answer(debugSwitch(), {"debug", "--block", "b10"}), title("fap2") + blockB10 + lastFap);
  EXPECT_EQ(answer(debugSwitch(), {"debug", "--block", "B10", "--snapshot", "old"}),
            title("fap2") + "[B10]\n" + counterLine(' ', "Plain", "1", "never", "never") + lastFap);
  // The key of block Upper is not in lower case, so it cannot be found.
  EXPECT_EQ(answer(debugSwitch(), {"debug", "--block", "Upper"}), title("fap2") + lastFap);
  loamshow::CommandLine inJson = parsed({"debug"});
  inJson.format = tabula::formatJson;
  const MemoryFile file;
  loamshow::runShowCommand(inJson, loamshow::parseState("state", debugSwitch().dump()), file.fdNumber());
  EXPECT_EQ(file.content(), "");
  EXPECT_EQ(answer(Json::object(), {"debug"}), "");
}

TEST(DebugReport, StopsAtWhatItCannotShow) {
  Json state = debugSwitch();
  Json& faps = state["debug"]["faps"];
  const MemoryFile file;
  const auto show = [&] {
    loamshow::runShowCommand(parsed({"debug"}), loamshow::parseState("state", state.dump()), file.fdNumber());
  };
  using testing::ThrowsMessage;
  const Json snapshots = faps["fap2"]["snapshots"];
  faps["fap2"].erase("snapshots");
  EXPECT_THAT(show,
              ThrowsMessage<Vane::InternalException>("no shared-memory manager of debug counters for fap2"));
  EXPECT_EQ(file.content(), "") << "raised before anything of it";
  faps["fap2"]["snapshots"] = snapshots;
  faps["fap2"]["directory"]["blocks"]["b10"]["Only"]["fetchType"] = 4;
  EXPECT_THAT(show, ThrowsMessage<Vane::InternalException>("unsupported fetch type"));
  faps["fap2"]["directory"]["blocks"]["b10"]["Only"] = {{"numInstances", 1}, {"displayType", 1}};
  EXPECT_THAT(show, ThrowsMessage<Vane::InternalException>("unsupported display type"));
}

/// A manager that calls a function at its nth read.
class Meddler : public MemoryShmemManager {
 public:
  Meddler(int at, std::function<void()> meddle) : at_(at), meddle_(std::move(meddle)) {}
  Counter counter(const Mote::String&, U32) const override {
    if (++reads_ == at_) meddle_();
    return {};
  }

 private:
  int at_;
  std::function<void()> meddle_;
  mutable int reads_ = 0;
};

TEST(DebugReport, FollowsADirectoryThatChanges) {
  const auto line1 = counterLine(' ', "c1", "0", "never", "never");
  const auto line2 = counterLine(' ', "c2", "0", "never", "never");
  const auto block = [&](int i) { return "[B" + std::to_string(i) + "]\n" + line1 + line2; };
  // The report of a FAP with that many blocks of two counters, if its directory changes at a read, and the
  // report after that.
  const auto shown = [&](int blocks, int atRead,
                         const std::function<void(CounterDescriptorDir&, FapDescriptor&)>& change) {
    Json directory{{"valid", true}, {"readiness", 1}};
    for (int i = 1; i <= blocks; ++i) {
      for (const char* name : {"c1", "c2"}) {
        directory["blocks"]["b" + std::to_string(i)][name] = {{"displayName", name}, {"numInstances", 1}};
      }
    }
    const Json state{{"debug", {{"faps", {{"F", {{"directory", directory}}}}}}}};
    loamshow::SwitchState switchState = loamshow::parseState("state", state.dump());
    loamshow::DebugFap& fap = switchState.debugFaps[0];
    auto& changing = const_cast<CounterDescriptorDir&>(*fap.descriptor->counterDescriptorDir);
    fap.manager =
        Mote::make<Meddler>(atRead, [&] { change(changing, const_cast<FapDescriptor&>(*fap.descriptor)); });
    const MemoryFile file;
    for (int i = 0; i < 2; ++i) loamshow::runShowCommand(parsed({"debug"}), switchState, file.fdNumber());
    return file.content();
  };
  // Read 4 is the last of the second block.
  const std::string invalid = "FapDescriptors are not valid for: F";
  const std::string cut = title("F") + block(1) + block(2) + invalid + title("F") + invalid;
  EXPECT_EQ(shown(5, 4, [](auto& directory, auto&) { directory.readinessIs(0); }), cut);
  EXPECT_EQ(shown(5, 4, [](auto& directory, auto&) { directory.validIs(false); }), cut);
  // A report continues with its first directory.
  const std::string kept = title("F") + block(1) + block(2);
  EXPECT_EQ(shown(2, 1, [](auto&, auto& fap) { fap.counterDescriptorDir = nullptr; }),
            kept + title("F") + invalid);
  EXPECT_EQ(shown(2, 1,
                  [](auto&, auto& fap) {
                    const auto empty = Mote::make<CounterDescriptorDir>();
                    empty->validIs(true);
                    empty->readinessIs(1);
                    fap.counterDescriptorDir = empty;
                  }),
            kept + title("F"));
  const auto removeC2 = [](auto& directory, auto&) {
    const auto second = directory.blockToDescriptor.get("b2");
    if (second) const_cast<CounterBlockDescriptorPtrDir&>(*second).counterDescriptors.remove("c2");
  };
  const std::string shortened = title("F") + block(1) + "[B2]\n" + line1;
  EXPECT_EQ(shown(2, 3, removeC2), shortened + shortened);
}

// A caller may release everything while an operation runs, and remove a FAP.
TEST(DebugReport, HoldsWhatItReads) {
  const auto printer = debugCountersPrinterFactory();
  auto fapDescriptors = fapDescriptorMappingFactory();
  auto shmemMgrs = shmemMgrMappingFactory();
  const auto block = Mote::make<CounterBlockDescriptorPtrDir>();
  const auto directory = Mote::make<CounterDescriptorDir>();
  directory->validIs(true);
  directory->readinessIs(1);
  directory->blockToDescriptor.set("b", block);
  auto counter = Mote::make<CounterDescriptor>();
  counter->displayName = "C";
  counter->numInstances = 1;
  block->counterDescriptors.set("c", counter);
  block->counterDescriptors.set("null", nullptr);
  const auto descriptor = Mote::make<FapDescriptor>();
  descriptor->counterDescriptorDir = directory;
  for (const char* fap : {"F1", "F2", "F3"}) fapDescriptors->fapDescriptorIs(fap, descriptor);
  ShmemMgrMapping::PtrConst mgrsGiven = shmemMgrs;
  FapDescriptorMapping::PtrConst descriptorsGiven = fapDescriptors;
  std::vector<U32> users;
  ShmemManager::PtrConst manager = Mote::make<Meddler>(1, [&] {
    users = {mgrsGiven->users(), descriptorsGiven->users()};
    fapDescriptors->fapDescriptorDel("F2");
    shmemMgrs = nullptr;
    fapDescriptors = nullptr;
    mgrsGiven = nullptr;
    descriptorsGiven = nullptr;
  });
  for (const char* fap : {"F1", "F2", "F3"}) shmemMgrs->shmemMgrIs(fap, manager);
  const MemoryFile file;
  printer->printDebugCountersPerAFap(mgrsGiven, descriptorsGiven, file.fdNumber(), 1, "", false, {});
  const std::string lineC = counterLine(' ', "C", "0", "never", "never");
  EXPECT_EQ(file.content(), title("F1") + "[B]\n" + lineC + title("F3") + "[B]\n" + lineC);
  EXPECT_THAT(users, testing::ElementsAre(3, 3));

  DebugCountersPrinter::Descriptor given = counter;
  const MemoryFile piece;
  manager = Mote::make<Meddler>(1, [&] {
    users = {given->users(), manager->users()};
    block->counterDescriptors.clear();
    counter = nullptr;
    given = nullptr;
    manager = nullptr;
  });
  printer->printDebugCounter(piece.fdNumber(), 1, given, "", manager, false, false, "", 0, "");
  EXPECT_EQ(piece.content(), lineC);
  EXPECT_THAT(users, testing::ElementsAre(4, 2));
}

TEST(DebugReport, CarriesOnOrEndsCleanlyAtEveryFault) {
  const loamshow::CommandLine line = parsed({"debug"});
  const loamshow::SwitchState state = loamshow::parseState("state", debugSwitch().dump());
  // A flush per block; the rest is the heading of a FAP without blocks.
  expectEveryFaultHandled({"debug", 3, [&](U32 fd) { loamshow::runShowCommand(line, state, fd); }});
}

TEST(DebugReport, AnInterruptEndsAWalkThatShowsNothing) {
  Json json = debugSwitch();
  json["debug"]["faps"]["fap2"]["directory"]["blocks"] = {
      {"endless", {{"c", {{"numInstances", 4294967295}, {"isDropCounter", false}}}}}};
  const loamshow::SwitchState state = loamshow::parseState("state", json.dump());
  const MemoryFile file;
  // After 50 ms of this process's CPU time, which does not depend on the load of the machine.
  std::signal(SIGVTALRM, [](int) { tabula::interrupt(); });
  const itimerval once{{}, {0, 50'000}};
  ::setitimer(ITIMER_VIRTUAL, &once, nullptr);
  const std::clock_t began = std::clock();
  testing::internal::CaptureStdout();
  loamshow::runShowCommand(parsed({"debug", "--drops"}), state, file.fdNumber());
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "exiting interrupted by user\n");
  EXPECT_LT(std::clock() - began, 3 * CLOCKS_PER_SEC) << "walked to the end";
}

TEST(DebugReport, PiecesComposeABlock) {
  const auto printer = debugCountersPrinterFactory();
  const auto counter = Mote::make<CounterDescriptor>();
  counter->displayName = "C";
  counter->numInstances = 2;
  counter->fetchType = 0;
  const Vane::Seconds nan(std::nan(""));
  const auto manager = Mote::make<MemoryShmemManager>();
  manager->values.set("now", {Counter{.value = 3, .lastDiscontinuity = nan}});
  const MemoryFile file;
  const U32 fd = file.fdNumber();
  printer->printFapName(fd, tabula::formatText, "F");
  printer->printDebugCountersHeader(fd, tabula::formatText);
  const auto print = [&](bool drops, bool section, U32 instance) {
    return printer->printDebugCounter(fd, tabula::formatText, counter, "now", manager, drops, section,
                                      "Block", instance, " (x)");
  };
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
  counter->numInstances = 2;
  tabula::interrupt();
  EXPECT_THROW(print(false, false, 0), tabula::SigIntException);
  tabula::interrupt();
  EXPECT_THROW(printer->printFapName(fd, tabula::formatText, "F"), tabula::SigIntException);
  tabula::interrupt();
  EXPECT_THROW(printer->printDebugCountersHeader(fd, tabula::formatText), tabula::SigIntException);
  EXPECT_EQ(file.content(), title("F") + "[Block]\n" + counterLine(' ', "C[0] (x)", "3", "never", "never") +
                                counterLine(' ', "C[-3] (x)", "0", "never", "never") +
                                counterLine(' ', "C (x)", "0", "never", "never"));
}

TEST(DebugReport, TracesWhatReadsCounters) {
  const MemoryFile file;
  ::setenv("LOAM_TRACE", file.path().c_str(), 1);
  answer(debugSwitch(), {"debug"});
  debugCountersPrinterFactory()->printDebugCounter(0, tabula::formatText, nullptr, "", nullptr, false, false,
                                                   "", 0, "");
  std::string lines;
  for (const std::string operation : {"Z printDebugCountersFap", "Z printDebugCounter"}) {
    const std::string line = "20..-..-..T..:..:..[.]......" + operation;
    lines += line + "\n" + line + " took .* us\n";
  }
  EXPECT_THAT(file.content(), testing::MatchesRegex(lines));
}

}  // namespace

}  // namespace loamtest

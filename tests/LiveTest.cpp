// loamshow on a counter region, with the real programs.

#include <gmock/gmock.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <optional>
#include <regex>
#include <set>
#include <thread>

#include "platform/counteragent/RegionLayout.h"
#include "tests/Program.h"
#include "tests/Support.h"

namespace loamtest {

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

/// A simulated switch, and the file of its region.
struct Live {
  explicit Live(const std::string& state, std::vector<std::string> options = {"--speed", "0"}) {
    options.insert(options.end(), {state, region});
    sim.emplace(options, err.fd(), err.fd(), LOAMSIM);
    while (!std::filesystem::exists(region) && !sim->ends(std::chrono::milliseconds(5))) {
    }
  }
  ~Live() { stop(); }
  int stop(int signal = SIGINT) {
    if (!sim) return 0;
    sim->signal(signal);
    const int status = sim->status();
    sim.reset();
    return status;
  }
  void put(U64 offset, U64 word) const {
    std::fstream file(region, std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(static_cast<std::streamoff>(offset)).write(static_cast<char*>(static_cast<void*>(&word)), 8);
  }

  TemporaryDirectory directory;
  std::string region = directory.path() + "/region";
  MemoryFile err;
  std::optional<Program> sim;
};

/// An output without the times at which counters were read.
std::string withoutTime(const std::string& out) {
  return std::regex_replace(out, std::regex("20[0-9-]+T[0-9:.]+Z"), "TIME");
}

TEST(Live, EveryAnswerOfASwitchThatStandsStillIsThatOfItsState) {
  const Live live(SAMPLE);
  const std::vector<std::string> commands[] = {{"queues"},
                                               {"queues", "--internal"},
                                               {"ingress", "--internal"},
                                               {"cpu"},
                                               {"cpu", "--summary"},
                                               {"drops"},
                                               {"acl"},
                                               {"mtu"},
                                               {"debug"},
                                               {"check"},
                                               {"top", "-n", "0"},
                                               {"capture"}};
  for (std::vector<std::string> words : commands) {
    for (const char* format : {"text", "json"}) {
      std::vector<std::string> arguments = {"-s", live.region};
      words.insert(words.end(), {"--format", format});
      arguments.insert(arguments.end(), words.begin(), words.end());
      Ran fromRegion = run(arguments);
      arguments[1] = SAMPLE;
      Ran fromState = run(arguments);
      EXPECT_EQ(fromRegion.status, fromState.status) << words.front();
      EXPECT_EQ(fromRegion.err, fromState.err);
      // takenAt is the time of reading.
      EXPECT_EQ(withoutTime(fromRegion.out), withoutTime(fromState.out)) << words.front() << ' ' << format;
    }
  }
}

TEST(Live, TellsWhatBecameOfTheWriter) {
  Live live(SAMPLE);
  const auto shown = [&] { return run({"-s", live.region, "acl"}); };
  const std::string whole = shown().out;
  EXPECT_EQ(shown().err, "");
  live.sim->signal(SIGKILL);
  live.sim->status();
  live.sim.reset();
  EXPECT_EQ(shown().out, whole) << "the last counts of a writer that was killed";
  EXPECT_EQ(shown().err, "");
  live.put(offsetof(LoamCounters::RegionHeader, heartbeat), 1'000'000'000);
  EXPECT_EQ(shown().out, whole);
  EXPECT_EQ(shown().status, 0);
  EXPECT_THAT(shown().err, MatchesRegex("loamshow: .*/region: last written [0-9]+ s ago\n"));
  EXPECT_EQ(run({"complete", "-s", live.region, "acl", "Et1/1."}).err, "");
  const Ran since = run({"--sample", "--since", live.region, "acl"});
  EXPECT_EQ(since.status, 2);
  EXPECT_THAT(since.err, EndsWith("/region: expected a state file, not a counter region\n"));

  std::filesystem::resize_file(live.region, 5000);
  EXPECT_EQ(shown().status, 2);
  EXPECT_THAT(shown().err, EndsWith("/region: truncated counter region\n"));
  EXPECT_EQ(shown().out, "");
}

TEST(Live, ARecordThatStaysHalfWrittenIsNamed) {
  Live live(SAMPLE);
  live.put(offsetof(LoamCounters::RegionHeader, heartbeat), ~U64{0});
  LoamCounters::RegionHeader header{};
  LoamCounters::RegionInterface intf{};
  std::ifstream file(live.region, std::ios::binary);
  file.read(static_cast<char*>(static_cast<void*>(&header)), sizeof header);
  do {
    file.seekg(static_cast<std::streamoff>(header.interfaces.offset));
    file.read(static_cast<char*>(static_cast<void*>(&intf)), sizeof intf);
    header.interfaces.offset += sizeof intf;
  } while (intf.egressAcl == 0);
  live.put(intf.egressAcl, 1);
  const Ran ran = run({"-s", live.region, "acl"});
  EXPECT_EQ(ran.status, 1);
  EXPECT_THAT(
      ran.err,
      MatchesRegex("loamshow: .*/region: egress ACL counter of [^ ]+ cannot be read: the writer stopped "
                   "in the middle of the record\n"));
  EXPECT_EQ(run({"-s", live.region, "mtu"}).status, 0);
}

TEST(Live, CountsInProportionAndTotalsFollow) {
  Json state = smallSwitch();
  for (Json& entry : state["counters"]["ingress"]) {
    for (Json& queue : entry["queues"]) queue = {100'000'000, 6'400'000'000, 1'000'000, 64'000'000};
  }
  const MemoryFile file(state.dump());
  Live live(file.path(), {"--speed", "36000", "--period", "20"});
  std::this_thread::sleep_for(std::chrono::seconds(1));
  const Json counters = Json::parse(run({"-s", live.region, "capture"}).out)["counters"];
  EXPECT_THAT(counters.dump(), testing::Not(HasSubstr("total"))) << "each is the sum of its queues";
  std::set<U64> packets;
  for (const Json& entry : counters["ingress"]) {
    for (const Json& queue : entry["queues"]) {
      EXPECT_EQ(queue[1].get<U64>(), queue[0].get<U64>() * 64);
      EXPECT_EQ(queue[3].get<U64>(), queue[2].get<U64>() * 64);
      // At this speed, the counts double in 0.1 s.
      EXPECT_GT(queue[0].get<U64>(), 200'000'000U);
      packets.insert(queue[0].get<U64>());
    }
  }
  EXPECT_GT(packets.size(), 10U) << "unevenly";
  EXPECT_EQ(live.stop(SIGTERM), 0);
  EXPECT_EQ(live.directory.names(), std::vector<std::string>());
}

TEST(Live, RepeatedAnswersTakeUpANewRegion) {
  Live live(SAMPLE);
  const MemoryFile out;
  const MemoryFile err;
  const Program show({"-s", live.region, "acl", "Et1/1", "--every", "0.3", "--count", "4"}, out.fd(),
                     err.fd());
  std::this_thread::sleep_for(std::chrono::milliseconds(450));
  const MemoryFile none;
  const Program next({"--speed", "36000", SAMPLE, live.region}, none.fd(), none.fd(), LOAMSIM);
  EXPECT_EQ(show.status(), 0);
  next.signal(SIGINT);
  EXPECT_EQ(next.status(), 0);
  EXPECT_EQ(err.content(), "");
  EXPECT_EQ(live.stop(), 0);
  EXPECT_THAT(out.content(), StartsWith("--- "));
  EXPECT_THAT(out.content(), testing::ContainsRegex("Et1/1 +n/a +[1-9]"));
}

TEST(Live, TheSimulatorExplainsWrongUsage) {
  const MemoryFile none;
  const TemporaryDirectory directory;
  const std::string region = directory.path() + "/region";
  const std::pair<std::vector<std::string>, int> cases[] = {{{}, 2},
                                                            {{SAMPLE}, 2},
                                                            {{"--speed", "-1", SAMPLE, region}, 2},
                                                            {{"--bogus", SAMPLE, region}, 2},
                                                            {{"--for", "x", SAMPLE, region}, 2},
                                                            {{SAMPLE, region, "more"}, 2},
                                                            {{"/nowhere", region}, 2},
                                                            {{SAMPLE, "/nowhere/region"}, 1},
                                                            {{"--for", "0.1", SAMPLE, region}, 0},
                                                            {{"--help"}, 0}};
  for (const auto& [arguments, status] : cases) {
    const MemoryFile err;
    EXPECT_EQ(Program(arguments, none.fd(), err.fd(), LOAMSIM).status(), status);
    EXPECT_THAT(err.content(), MatchesRegex(status == 0 ? "" : "loamsim: [^\n]+\n"));
  }
  EXPECT_EQ(directory.names(), std::vector<std::string>());
}

}  // namespace

}  // namespace loamtest

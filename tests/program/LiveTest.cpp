// loamshow on a counter region, with the real programs.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <optional>
#include <regex>
#include <set>
#include <thread>

#include "platform/counteragent/Region.h"
#include "tests/Program.h"
#include "tests/Support.h"

namespace loamtest {

namespace {

using testing::MatchesRegex;

constexpr U64 heartbeatAt = offsetof(LoamCounters::RegionHeader, heartbeat);

/// A simulated switch, and the file of its region.
struct Live {
  explicit Live(const std::string& state, const std::string& options = "--speed 0") {
    std::vector<std::string> arguments = words(options);
    arguments.insert(arguments.end(), {state, region});
    sim.emplace(arguments, STDERR_FILENO, LOAMSIM);
    while (!std::filesystem::exists(region) && !sim->ends(std::chrono::milliseconds(5))) continue;
  }
  ~Live() { stop(SIGKILL); }
  int stop(int signal) {
    if (!sim) return 0;
    sim->signal(signal);
    const int status = sim->status();
    sim.reset();
    return status;
  }
  /// The output of a command on the region.
  Ran shown(const std::string& command) const {
    std::vector<std::string> arguments = words(command);
    arguments.insert(arguments.begin(), {"-s", region});
    return run(arguments);
  }

  TemporaryDirectory directory;
  std::string region = directory.path() + "/region";
  std::optional<Program> sim;
};

/// The offset of the ACL record of Ethernet1/1.
U64 aclRecord(const std::string& path) {
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  const LoamCounters::Region region(fd, "R");
  ::close(fd);
  return region.interface(Nexo::IntfId("Ethernet1/1")).egressAcl;
}

TEST(Live, EveryAnswerOfASwitchThatStandsStillIsThatOfItsState) {
  const Live live(SAMPLE);
  const auto withoutTime = [](const std::string& out) {  // takenAt is the time of reading
    return std::regex_replace(out, std::regex("20[0-9-]+T[0-9:.]+Z"), "TIME");
  };
  for (const char* const command :
       {"queues", "queues --internal", "ingress --internal", "cpu", "cpu --summary", "drops", "acl", "mtu",
        "debug", "check", "top -n 0", "capture"}) {
    for (const char* const format : {" --format text", " --format json"}) {
      const Ran fromRegion = live.shown(std::string(command) + format);
      const Ran fromState = run(words(std::string("-s " SAMPLE " ") + command + format));
      EXPECT_EQ(fromRegion.status, fromState.status) << command;
      EXPECT_EQ(fromRegion.err, fromState.err);
      EXPECT_EQ(withoutTime(fromRegion.out), withoutTime(fromState.out)) << command << format;
    }
  }
}

TEST(Live, TellsWhatBecameOfTheWriter) {
  Live live(SAMPLE);
  const std::string whole = live.shown("acl").out;
  live.stop(SIGKILL);
  EXPECT_EQ(live.shown("acl").err, "");
  putWord(live.region, heartbeatAt, 1'000'000'000);
  const Ran late = live.shown("acl");
  EXPECT_EQ(late.out, whole) << "the last counts of a writer that was killed";
  EXPECT_EQ(late.status, 0);
  EXPECT_THAT(late.err, MatchesRegex("loamshow: .*/region: last written [0-9]+ s ago\n"));
  EXPECT_EQ(run(words("complete -s " + live.region + " acl Et1/1.")).err, "");
  const Ran since = run({"--sample", "--since", live.region, "acl"});
  EXPECT_EQ(since.status, 2);
  EXPECT_THAT(since.err, testing::EndsWith("/region: expected a state file, not a counter region\n"));

  putWord(live.region, heartbeatAt, ~U64{0});
  putWord(live.region, aclRecord(live.region), 1);
  const Ran half = live.shown("acl");
  EXPECT_EQ(half.status, 1);
  EXPECT_THAT(half.err, MatchesRegex("loamshow: .*/region: egress ACL counter of Ethernet1/1 cannot be read: "
                                     "the writer stopped in the middle of the record\n"));
  EXPECT_EQ(live.shown("mtu").status, 0);
}

TEST(Live, SurvivesWhatBecomesOfTheFileWhileItIsRead) {
  namespace fs = std::filesystem;
  const std::string truncated = "loamshow: .*/region: the counter region was truncated while it was read\n";
  const std::tuple<std::function<void(const std::string& path)>, int, std::string> cases[] = {
      {[](const std::string& path) { fs::resize_file(path, 0); }, 2, truncated},
      {[](const std::string& path) {
         std::fstream(path, std::ios::in | std::ios::out) << std::string(fs::file_size(path), '\xff');
       },
       2, "loamshow: .*/region: damaged counter region: [^\n]*\n"},
      {[](const std::string& path) {
         std::ofstream(path + ".new") << "none";
         fs::rename(path + ".new", path);
       },
       0, ""}};
  for (const auto& [change, status, problem] : cases) {
    Live live(SAMPLE);
    live.stop(SIGKILL);
    Pipe pipe;
    const Program show({"-s", live.region, "queues", "--internal", "--json"}, pipe.ends[1]);
    awaitFull(pipe.ends[1]);  // the program waits in the middle of its output
    change(live.region);
    pipe.drain();
    EXPECT_EQ(show.status(), status);
    EXPECT_THAT(show.err.content(), MatchesRegex(problem));
  }
}

TEST(Live, CountsInProportionAndUnevenly) {
  Json state = smallSwitch();
  for (Json& entry : state["counters"]["ingress"]) {
    for (Json& queue : entry["queues"]) queue = {100'000'000, 6'400'000'000, 1'000'000, 64'000'000};
  }
  const MemoryFile file(state.dump());
  Live live(file.path(), "--speed 36000 --period 20");
  std::this_thread::sleep_for(std::chrono::seconds(1));
  std::set<U64> packets;
  const Json captured = Json::parse(live.shown("capture").out);
  for (const Json& entry : captured["counters"]["ingress"]) {
    for (const Json& queue : entry["queues"]) {
      EXPECT_EQ(queue[3].get<U64>(), queue[2].get<U64>() * 64);
      EXPECT_GT(queue[0].get<U64>(), 200'000'000U);  // at this speed, the counts double in 0.1 s
      packets.insert(queue[0].get<U64>());
    }
  }
  EXPECT_GT(packets.size(), 10U);
  EXPECT_EQ(live.stop(SIGTERM), 0);
  EXPECT_THAT(live.directory.names(), testing::IsEmpty());
}

TEST(Live, RepeatedAnswersFollowWhatBecomesOfTheRegion) {
  Live live(SAMPLE);
  const MemoryFile out;
  const Program show({"-s", live.region, "acl", "Et1/1", "-j", "--every", "0.1"}, out.fd());
  const std::string first = R"({"interfaces":{"Ethernet1/1":{"mlagPackets":1762489}}})";
  ASSERT_TRUE(awaitText(out, first));
  const U64 record = aclRecord(live.region);
  putWord(live.region, record, 1);
  EXPECT_TRUE(awaitText(show.err, "the writer stopped in the middle of the record\n"));
  putWord(live.region, record, 2);
  // Until then, nothing is counted.
  EXPECT_THAT(out.content().substr(first.size()), testing::Not(testing::ContainsRegex(":[1-9]")));
  const Program next({"--speed", "36000", SAMPLE, live.region}, STDERR_FILENO, LOAMSIM);
  EXPECT_TRUE(becomesTrue([&] {
    return std::regex_search(out.content().substr(first.size()), std::regex("mlagPackets\":[1-9]"));
  }));
  show.signal(SIGINT);
  EXPECT_EQ(show.status(), 130);
  next.signal(SIGINT);
  EXPECT_EQ(next.status(), 0);
  EXPECT_EQ(live.stop(SIGINT), 0);
}

TEST(Live, TheSimulatorExplainsWrongUsage) {
  const MemoryFile none;
  const TemporaryDirectory directory;
  const std::string both = SAMPLE " " + directory.path() + "/region";
  const std::tuple<std::string, int, std::string> cases[] = {
      {SAMPLE, 2, "expected a state file and a region (see --help)"},
      {"--speed --seed 1 " + both, 2, "--speed: expected a number from 0 to 1e9, not \"\""},
      {"--for x " + both, 2, "--for: expected seconds from 0 to 1e9, not \"x\""},
      {"--bogus=3 " + both, 2, "unexpected argument: --bogus (see --help)"},
      {"-x " + both, 2, "unexpected argument: -x (see --help)"},
      {both + " more", 2, "unexpected argument: more (see --help)"},
      {"/nowhere region", 2, "/nowhere: cannot read: No such file or directory"},
      {SAMPLE " /nowhere/region", 1, "/nowhere/region: No such file or directory"},
      {"--for 0.1 " + both, 0, ""},
      {"--help", 0, ""}};
  for (const auto& [arguments, status, message] : cases) {
    const Program sim(words(arguments), none.fd(), LOAMSIM);
    EXPECT_EQ(sim.status(), status) << arguments;
    EXPECT_EQ(sim.err.content(), message.empty() ? "" : "loamsim: " + message + "\n");
  }
  EXPECT_THAT(directory.names(), testing::IsEmpty());
}

}  // namespace

}  // namespace loamtest

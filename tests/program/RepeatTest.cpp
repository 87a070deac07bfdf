// Repeated commands: the real program on a pipe and on a pseudo-terminal.

#include <gmock/gmock.h>
#include <sys/ioctl.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <thread>

#include "tests/Program.h"
#include "tests/Support.h"

namespace loamtest {

namespace {

using testing::EndsWith;

const std::string enterScreen = "\x1b[?1049h\x1b[?25l\x1b[?7l";
const std::string leaveScreen = "\x1b[?7h\x1b[?25h\x1b[?1049l";

/// A state file that is replaced while a program reads it.
struct Replaced {
  /// Writes a switch with only this loss.
  void lossIs(U64 packets, const std::string& takenAt, const char* name = "leaf7") const {
    Json state = {{"switch", {{"name", name}}}};
    if (!takenAt.empty()) state["switch"]["takenAt"] = takenAt;
    state["status"] = {{"fapIdToName", {{"3", "A"}}}};
    state["counters"]["egressMtu"]["3"]["droppedPackets"] = packets;
    textIs(state.dump());
  }
  void textIs(const std::string& text) const {
    std::ofstream(path + ".new") << text;
    std::filesystem::rename(path + ".new", path);
  }

  TemporaryDirectory directory;
  const std::string path = directory.path() + "/state.json";
};

/// The next output of a turn in which the file had changed.
Json nextLoss(const Ends& ends) {
  for (;;) {
    const std::string text = ends.readTo("\n");
    Json answer = Json::parse(text, nullptr, false);
    if (answer.is_discarded() || answer["droppedPackets"] != 0) return answer;
  }
}

/// Waits until a program sleeps, as it does between two turns.
void awaitSleep(const Program& program) {
  const std::string state = "/proc/" + std::to_string(program.pid()) + "/stat";
  becomesTrue([&] { return contentOf(state).find(") S ") != std::string::npos; });
}

TEST(Repeat, EachAnswerCountsFromTheOneBeforeWhateverHappensToTheSource) {
  const auto takenAt = [](const char* time) { return "2026-11-23T10:53:" + std::string(time) + "Z"; };
  const std::pair<std::function<void(const Replaced&)>, std::string> ends[] = {
      {[&](const Replaced& state) { state.lossIs(99, takenAt("59"), "leaf8"); },
       ": /switch/name: expected leaf7, not leaf8\n"},
      {[&](const Replaced& state) { state.lossIs(99, takenAt("53.4")); },
       ": /switch/takenAt: expected a time from 2026-11-23T10:53:53.5Z on, not 2026-11-23T10:53:53.4Z\n"},
      {[](const Replaced& state) { state.textIs("[]"); }, ": expected an object\n"}};
  for (const auto& [happens, error] : ends) {
    const Replaced state;
    state.lossIs(5, takenAt("31"));
    Pipe pipe;
    const Program program({"-s", state.path, "top", "-j", "--every", "0.1"}, pipe.ends[1]);
    const auto expectLoss = [&](U64 packets, const Json& seconds) {
      const Json answer = nextLoss(pipe);
      EXPECT_EQ(answer["droppedPackets"], packets);
      EXPECT_EQ(answer.value("seconds", Json()), seconds);
    };
    expectLoss(5, nullptr);
    state.lossIs(12, takenAt("41"));
    expectLoss(7, 10);
    std::filesystem::remove(state.path);
    ASSERT_TRUE(
        awaitText(program.err, "loamshow: " + state.path + ": cannot read: No such file or directory\n"));
    state.lossIs(20, takenAt("53.5"));
    expectLoss(8, 12.5);
    happens(state);
    EXPECT_EQ(program.status(), 2);
    EXPECT_THAT(program.err.content(), EndsWith("loamshow: " + state.path + error));
  }
}

TEST(Repeat, TextFollowsItselfWithTimesAndEndsAfterTheCount) {
  const Replaced state;
  state.lossIs(5, "2026-11-23T10:53:31Z");
  const std::string table = run({"-s", state.path, "mtu"}).out;
  const MemoryFile then(R"({"switch": {"takenAt": "2026-11-23T10:53:21.5Z"}})");
  Ran ran = run(words("-s " + state.path + " mtu --every 0.1 --count 2 --since " + then.path()));
  EXPECT_EQ(ran.status, 0) << ran.err;
  std::string unchanged = table;
  unchanged.replace(unchanged.find(" 5 "), 3, " 0 ");
  EXPECT_EQ(ran.out,
            "--- 2026-11-23T10:53:31Z, 9.5 s\n" + table + "--- 2026-11-23T10:53:31Z, 0.0 s\n" + unchanged);
  state.lossIs(5, "");
  ran = run({"-s", state.path, "top", "--every", "0.1", "--count", "2"});
  const std::string time = "....-..-..T..:..:..Z";
  EXPECT_THAT(ran.out,
              testing::MatchesRegex("--- " + time + "\nDropped packets: leaf7\n(.|\n)*--- " + time +
                                    ", [0-9]+\\.[0-9] s\nNo dropped packets: leaf7, in [0-9]+\\.[0-9] s\n"));
  ran = run({"-s", state.path, "drops", "Et1", "--every", "0.1"});
  EXPECT_EQ(ran.status, 2);
  EXPECT_EQ(ran.out, "") << "no heading without an answer";
}

TEST(Repeat, TurnsThatWereMissedAreLeftOut) {
  const Replaced state;
  state.lossIs(5, "");
  Pipe pipe;
  const Program program({"-s", state.path, "top", "-j", "--every", "0.2"}, pipe.ends[1]);
  const auto nextSeconds = [&] { return Json::parse(pipe.readTo("\n")).value("seconds", 0.0); };
  nextSeconds();
  program.signal(SIGSTOP);
  std::this_thread::sleep_for(std::chrono::milliseconds(1500));
  program.signal(SIGCONT);
  while (nextSeconds() < 1) continue;
  double sum = 0;
  for (int i = 0; i < 3; ++i) sum += nextSeconds();
  EXPECT_GT(sum, 0.15) << "the turns of the time before came all at once";
  program.signal(SIGKILL);
  program.status();
}

TEST(Repeat, AnInterruptBetweenTwoAnswersWritesNothing) {
  const Replaced state;
  state.lossIs(5, "");
  for (const char* command : {"top", "mtu"}) {
    Pipe pipe;
    const Program program({"-s", state.path, command, "-j", "--every", "3600"}, pipe.ends[1]);
    pipe.readTo("\n");
    awaitSleep(program);
    program.signal(SIGINT);
    EXPECT_EQ(program.status(), 130);
    EXPECT_EQ(pipe.drain() + program.err.content(), "");
  }
}

TEST(Repeat, AnInterruptOfALongCommandEndsItOnATerminal) {
  ::setenv("TERM", "xterm", 1);
  const MemoryFile file(R"({"debug": {"faps": {"F": {"directory": {"valid": true, "readiness": 1,
    "blocks": {"b": {"c": {"numInstances": 4294967295}}}}, "snapshots": {}}}}})");
  const Terminal terminal;
  const Program program({"-s", file.path(), "debug", "--drops", "--every", "9"}, terminal.ends[1]);
  std::this_thread::sleep_for(std::chrono::milliseconds(500));
  program.signal(SIGINT);
  EXPECT_THAT(program.status(), testing::AnyOf(130, 1000 + SIGINT)) << "the latter if it has not begun";
}

TEST(Repeat, RedrawsATerminalAndRestoresIt) {
  const Replaced state;
  state.lossIs(5, "2026-11-23T10:53:31Z");
  ::setenv("TERM", "xterm", 1);
  const Terminal terminal;
  const auto resize = [&](unsigned short rows, unsigned short columns) {
    const winsize size{rows, columns, 0, 0};
    ::ioctl(terminal.ends[0], TIOCSWINSZ, &size);
  };
  const std::string clear = "\x1b[K";
  const std::string end = "\r\n\x1b[J";
  for (const auto& [signal, status] : {std::pair(SIGINT, 130), {SIGTERM, 1000 + SIGTERM}}) {
    resize(24, 80);
    const Program program({"-s", state.path, "top", "--every", "3600"}, terminal.ends[1]);
    EXPECT_THAT(
        terminal.readTo(end),
        testing::StartsWith(enterScreen + "\x1b[H--- 2026-11-23T10:53:31Z" + clear +
                            "\r\nDropped packets: leaf7, 2026-11-23T10:53:31Z" + clear + "\r\nInterface"));
    awaitSleep(program);
    resize(3, 12);
    program.signal(SIGWINCH);
    EXPECT_EQ(terminal.readTo("... 3 more l"), "\x1b[H--- 2026-11-\r\nDropped pack\r\n... 3 more l");
    program.signal(signal);
    EXPECT_EQ(program.status(), status);
    EXPECT_EQ(terminal.readTo(leaveScreen), leaveScreen);
  }
  resize(24, 80);
  const Program program({"-s", state.path, "top", "--every", "0.1", "--count", "2"}, terminal.ends[1]);
  EXPECT_EQ(program.status(), 0);
  const std::string last =
      "--- 2026-11-23T10:53:31Z, 0.0 s\nNo dropped packets: leaf7, 2026-11-23T10:53:31Z\n";
  EXPECT_THAT(terminal.readTo(last), EndsWith(end + leaveScreen + last)) << "the last answer stays";
  EXPECT_EQ(program.err.content(), "");
}

}  // namespace

}  // namespace loamtest

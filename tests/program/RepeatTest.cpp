// Repeated commands: the real program on a pipe and on a pseudo-terminal.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <thread>

#include "tests/Program.h"
#include "tests/Support.h"

namespace loamtest {

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

const std::string enterScreen = "\x1b[?1049h\x1b[?25l\x1b[?7l";
const std::string leaveScreen = "\x1b[?7h\x1b[?25h\x1b[?1049l";

/// A state file that is replaced while a program reads it.
class Replaced {
 public:
  Replaced() { std::filesystem::create_directory(directory_); }
  Replaced(const Replaced&) = delete;
  Replaced& operator=(const Replaced&) = delete;
  ~Replaced() { std::filesystem::remove_all(directory_); }

  std::string path() const { return directory_ / "state.json"; }
  /// Writes a switch with only this loss.
  void lossIs(U64 packets, const std::string& takenAt, const char* name = "leaf7") const {
    Json state = {{"switch", {{"name", name}}}};
    if (!takenAt.empty()) state["switch"]["takenAt"] = takenAt;
    state["status"] = {{"fapIdToName", {{"3", "A"}}}};
    state["counters"]["egressMtu"]["3"]["droppedPackets"] = packets;
    textIs(state.dump());
  }
  void textIs(const std::string& text) const {
    std::ofstream(directory_ / "new") << text;
    std::filesystem::rename(directory_ / "new", path());
  }
  void remove() const { std::filesystem::remove(path()); }

 private:
  std::filesystem::path directory_ =
      std::filesystem::temp_directory_path() / ("loam-repeat-" + std::to_string(::getpid()));
};

/// Reads from a descriptor up to and including a text.
std::string readTo(int fd, const std::string& end) {
  std::string text;
  pollfd readable{fd, POLLIN, 0};
  while (!text.ends_with(end) && ::poll(&readable, 1, 20'000) > 0) {
    char byte = 0;
    if (::read(fd, &byte, 1) != 1) break;
    text += byte;
  }
  return text;
}

/// The next output of a turn in which the file had changed.
Json nextLoss(int fd) {
  for (;;) {
    const std::string text = readTo(fd, "\n");
    Json answer = Json::parse(text, nullptr, false);
    if (answer.is_discarded() || answer["droppedPackets"] != 0) return answer;
  }
}

/// Waits until a program sleeps, as it does between two turns.
void awaitSleep(const Program& program) {
  becomesTrue([&] {
    std::ifstream file("/proc/" + std::to_string(program.pid()) + "/stat");
    const std::string stat{std::istreambuf_iterator<char>(file), {}};
    return stat.find(") S ") != std::string::npos;
  });
}

TEST(Repeat, EachAnswerCountsFromTheOneBeforeWhateverHappensToTheSource) {
  const struct {
    const char* what;
    std::function<void(const Replaced&)> happens;
    std::string error;
  } ends[] = {
      {"another switch", [](const Replaced& state) { state.lossIs(99, "2026-11-23T11:00:00Z", "leaf8"); },
       ": /switch/name: expected leaf7, not leaf8\n"},
      {"an earlier one", [](const Replaced& state) { state.lossIs(99, "2026-11-23T10:53:53.4Z"); },
       ": /switch/takenAt: expected a time from 2026-11-23T10:53:53.5Z on, not 2026-11-23T10:53:53.4Z\n"},
      {"no state", [](const Replaced& state) { state.textIs("[]"); }, ": expected an object\n"}};
  for (const auto& [what, happens, error] : ends) {
    const Replaced state;
    state.lossIs(5, "2026-11-23T10:53:31Z");
    Pipe pipe;
    const MemoryFile err;
    const Program program({"-s", state.path(), "top", "-j", "--every", "0.1"}, pipe.ends[1], err.fd());
    const Json first = nextLoss(pipe.ends[0]);
    EXPECT_EQ(first["droppedPackets"], 5);
    EXPECT_FALSE(first.contains("seconds"));
    state.lossIs(12, "2026-11-23T10:53:41Z");
    const Json second = nextLoss(pipe.ends[0]);
    EXPECT_EQ(second["droppedPackets"], 7);
    EXPECT_EQ(second["seconds"], 10);
    state.remove();
    ASSERT_TRUE(awaitText(err, "loamshow: " + state.path() + ": cannot read: No such file or directory\n"));
    state.lossIs(20, "2026-11-23T10:53:53.5Z");
    const Json third = nextLoss(pipe.ends[0]);
    EXPECT_EQ(third["droppedPackets"], 8);
    EXPECT_EQ(third["seconds"], 12.5);
    happens(state);
    EXPECT_EQ(program.status(), 2) << what;
    EXPECT_THAT(err.content(), EndsWith("loamshow: " + state.path() + error)) << what;
  }
}

TEST(Repeat, TextFollowsItselfWithTimesAndEndsAfterTheCount) {
  const Replaced state;
  state.lossIs(5, "2026-11-23T10:53:31Z");
  const std::string table = run({"-s", state.path(), "mtu"}).out;
  const MemoryFile then(R"({"switch": {"takenAt": "2026-11-23T10:53:21.5Z"}})");
  Ran ran = run({"-s", state.path(), "mtu", "--every", "0.1", "--count", "2", "--since", then.path()});
  EXPECT_EQ(ran.status, 0) << ran.err;
  std::string unchanged = table;
  unchanged.replace(unchanged.find(" 5 "), 3, " 0 ");
  EXPECT_EQ(ran.out,
            "--- 2026-11-23T10:53:31Z, 9.5 s\n" + table + "--- 2026-11-23T10:53:31Z, 0.0 s\n" + unchanged);
  state.lossIs(5, "");
  ran = run({"-s", state.path(), "top", "--every", "0.1", "--count", "2"});
  const std::string time = "....-..-..T..:..:..Z";
  EXPECT_THAT(ran.out, MatchesRegex("--- " + time + "\nDropped packets: leaf7\n(.|\n)*--- " + time +
                                    ", [0-9]+\\.[0-9] s\nNo dropped packets: leaf7, in [0-9]+\\.[0-9] s\n"));
  ran = run({"-s", state.path(), "drops", "Et1", "--every", "0.1"});
  EXPECT_EQ(ran.status, 2);
  EXPECT_EQ(ran.out, "") << "no heading without an answer";
  ran = run({"-s", "/nowhere.json", "mtu", "--every", "0.1"});
  EXPECT_EQ(ran.status, 2);
  EXPECT_EQ(ran.err, "loamshow: /nowhere.json: cannot read: No such file or directory\n");
}

TEST(Repeat, TurnsThatWereMissedAreLeftOut) {
  const Replaced state;
  state.lossIs(5, "");
  Pipe pipe;
  const MemoryFile err;
  const Program program({"-s", state.path(), "top", "-j", "--every", "0.2"}, pipe.ends[1], err.fd());
  const auto nextSeconds = [&] { return Json::parse(readTo(pipe.ends[0], "\n")).value("seconds", 0.0); };
  nextSeconds();
  program.signal(SIGSTOP);
  std::this_thread::sleep_for(std::chrono::milliseconds(1500));
  program.signal(SIGCONT);
  while (nextSeconds() < 1) {
  }
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
    const MemoryFile err;
    const Program program({"-s", state.path(), command, "-j", "--every", "3600"}, pipe.ends[1], err.fd());
    readTo(pipe.ends[0], "\n");
    awaitSleep(program);
    program.signal(SIGINT);
    EXPECT_EQ(program.status(), 130);
    EXPECT_EQ(pipe.drain() + err.content(), "");
  }
}

TEST(Repeat, AnInterruptWithinAnAnswerEndsIt) {
  Pipe pipe;
  const MemoryFile err;
  const Program program({"--sample", "queues", "--internal", "--every", "0.1"}, pipe.ends[1], err.fd());
  awaitFull(pipe.ends[1]);
  program.signal(SIGINT);
  EXPECT_EQ(program.status(), 130);
  EXPECT_THAT(pipe.drain(), testing::AllOf(StartsWith("--- "), EndsWith("exiting interrupted by user\n")));
  EXPECT_EQ(err.content(), "");
}

/// A pseudo-terminal with a window of that size.
struct Terminal {
  Terminal(unsigned short rows, unsigned short columns) {
    ::setenv("TERM", "xterm", 1);
    termios raw{};
    ::cfmakeraw(&raw);
    if (::openpty(&controller, &terminal, nullptr, &raw, nullptr) != 0) std::abort();
    resize(rows, columns);
  }
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;
  ~Terminal() {
    ::close(terminal);
    ::close(controller);
  }
  void resize(unsigned short rows, unsigned short columns) const {
    const winsize size{rows, columns, 0, 0};
    ::ioctl(controller, TIOCSWINSZ, &size);
  }
  int controller = -1;
  int terminal = -1;
};

TEST(Repeat, RedrawsATerminalAndRestoresIt) {
  const Replaced state;
  state.lossIs(5, "2026-11-23T10:53:31Z");
  const Terminal terminal(24, 80);
  const MemoryFile err;
  const std::vector<std::string> arguments = {"-s", state.path(), "top", "--every", "3600"};
  const std::string clear = "\x1b[K";
  const std::string end = "\r\n\x1b[J";
  for (const auto& [signal, status] : {std::pair(SIGINT, 130), {SIGTERM, 1000 + SIGTERM}}) {
    const Program program(arguments, terminal.terminal, err.fd());
    const std::string frame = readTo(terminal.controller, end);
    EXPECT_EQ(frame.substr(0, enterScreen.size()), enterScreen);
    EXPECT_THAT(frame,
                HasSubstr("\x1b[H--- 2026-11-23T10:53:31Z" + clear +
                          "\r\nDropped packets: leaf7, 2026-11-23T10:53:31Z" + clear + "\r\nInterface"));
    awaitSleep(program);
    terminal.resize(3, 12);
    program.signal(SIGWINCH);
    EXPECT_EQ(readTo(terminal.controller, "... 3 more l"),
              "\x1b[H--- 2026-11-\r\nDropped pack\r\n... 3 more l");
    program.signal(signal);
    EXPECT_EQ(program.status(), status);
    EXPECT_EQ(readTo(terminal.controller, leaveScreen), leaveScreen);
    terminal.resize(24, 80);
  }
  const std::vector<std::string> twice = {"-s", state.path(), "top", "--every", "0.1", "--count", "2"};
  const Program program(twice, terminal.terminal, err.fd());
  EXPECT_EQ(program.status(), 0);
  const std::string last =
      "--- 2026-11-23T10:53:31Z, 0.0 s\nNo dropped packets: leaf7, 2026-11-23T10:53:31Z\n";
  EXPECT_THAT(readTo(terminal.controller, last), EndsWith(end + leaveScreen + last))
      << "the last answer stays";
  EXPECT_EQ(err.content(), "");
}

}  // namespace

}  // namespace loamtest

// The real program, on pipes, a pseudo-terminal and a full device.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <poll.h>
#include <pty.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <functional>
#include <thread>

#include "tests/Program.h"
#include "tests/Support.h"

namespace loamtest {

namespace {

using testing::HasSubstr;

TEST(Program, ReportsFindingsInBothFormats) {
  const MemoryFile clean("{}");
  const MemoryFile wrong(R"({"interfaces": ["a\nb"], "counters": {"egressAcl": {"a/b": 1}}})");
  const std::tuple<const MemoryFile&, const char*, int, const char*> cases[] = {
      {clean, "json", 0, "{\"findings\":[]}\n"},
      {wrong, "text", 1,
       "/interfaces/0: only acl can show a?b: it has no port\n"
       "/counters/egressAcl/a~1b: the switch has no interface a/b; did you mean a?b?\n"},
      {wrong, "json", 1,
       R"({"findings":[{"member":"/interfaces/0","problem":"only acl can show a\nb: it has no port"},)"
       R"({"member":"/counters/egressAcl/a~1b","problem":"the switch has no interface a/b; did you mean a\nb?"}]})"
       "\n"}};
  for (const auto& [file, format, status, out] : cases) {
    const Ran ran = run({"check", "-s", file.path(), "--format", format, "--plugin", "/nowhere.so"});
    EXPECT_EQ(ran.status, status);
    EXPECT_EQ(ran.out, out);
    EXPECT_EQ(ran.err, "");
  }
}

TEST(Program, ARangeErrorFollowsTheRowsBeforeIt) {
  Json state = smallSwitch();
  const auto ranOn = [&](int cores, const char* command) {
    state["status"]["fapNumCores"] = {{"7", cores}};
    const MemoryFile file(state.dump());
    return run({"-s", file.path(), command});
  };
  for (const auto& [command, most] : {std::pair{"ingress", 7}, std::pair{"cpu", 7}, std::pair{"drops", 6}}) {
    EXPECT_EQ(ranOn(most, command).status, 0);
    const Ran ran = ranOn(most + 1, command);
    EXPECT_EQ(ran.status, 1);
    EXPECT_EQ(ran.err,
              "loamshow: Hardware::Loam::LocalCoreId::value < Hardware::Loam::LocalCoreId::min or > "
              "Hardware::Loam::LocalCoreId::null not allowed\n");
    EXPECT_THAT(ran.out, HasSubstr("B.6"));
    EXPECT_EQ(ran.out.back(), '\n');
  }
  state["status"]["coppClassNumVoqs"] = 81;
  state["status"]["sppidToIntfId"]["30"] = "Class";
  EXPECT_THAT(ranOn(8, "cpu").out, HasSubstr("Class                      TC79 "));
  EXPECT_THAT(ranOn(8, "cpu").err, HasSubstr("LoamCounters::IngressCounterIndex::max not allowed"));
}

TEST(Program, TracingNeverGetsInTheWay) {
  const MemoryFile trace;
  const MemoryFile err;
  ::setenv("LOAM_TRACE", trace.path().c_str(), 1);
  EXPECT_EQ(Program({"debug", "--sample"}, -1, err.fd()).status(), 1)
      << "not into what took the place of its output";
  EXPECT_EQ(err.content(), "loamshow: cannot write the answer: Bad file descriptor\n");
  ::setenv("LOAM_TRACE", "/nowhere/trace", 1);
  const Ran traced = run({"debug", "--sample"});
  ::unsetenv("LOAM_TRACE");
  EXPECT_EQ(traced.err, "trace file /nowhere/trace: No such file or directory\n");
  EXPECT_EQ(traced.out, run({"debug", "--sample"}).out);
}

TEST(Program, AReaderThatLeavesEndsItQuietly) {
  Pipe pipe;
  const MemoryFile err;
  const Program program({"queues", "--internal", "--sample"}, pipe.ends[1], err.fd());
  awaitFull(pipe.ends[1]);
  pipe.closeEnd(1);
  pipe.closeEnd(0);
  EXPECT_EQ(program.status(), 1);
  EXPECT_EQ(err.content(), "");
}

/// A descriptor to write to, whose other end nobody reads.
struct Unread {
  const char* name;
  std::function<void(int* ends)> open;
  bool takesTheLine;  // the "exiting" line fits even without a reader
};

const Unread unread[] = {
    {"pipe",
     [](int* ends) {
       ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
       ::fcntl(ends[1], F_SETPIPE_SZ, 4096);
     },
     true},
    {"socket",
     [](int* ends) {
       ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
       const int size = 4096;
       ::setsockopt(ends[1], SOL_SOCKET, SO_SNDBUF, &size, sizeof size);
     },
     false},
    {"terminal", [](int* ends) { ASSERT_EQ(::openpty(&ends[0], &ends[1], nullptr, nullptr, nullptr), 0); },
     false},
};

TEST(Program, AnInterruptEndsAnAnswerThatNobodyReads) {
  // Pauses between interrupts. The second one usually arrives before the "exiting" line, or while the program
  // waits to write it.
  const std::vector<std::chrono::microseconds> pauses[] = {
      {}, {std::chrono::microseconds(100)}, {std::chrono::milliseconds(30), std::chrono::milliseconds(30)}};
  for (const Unread& sink : unread) {
    for (const char* format : {"text", "json"}) {
      for (const auto& between : pauses) {
        SCOPED_TRACE(std::string(sink.name) + ", " + format + ", " + std::to_string(between.size()));
        int ends[2] = {-1, -1};
        sink.open(ends);
        const MemoryFile err;
        const Program program({"queues", "--internal", "--sample", "-f", format}, ends[1], err.fd());
        awaitFull(ends[1]);
        program.signal(SIGINT);
        for (const auto pause : between) {
          std::this_thread::sleep_for(pause);
          program.signal(SIGINT);
        }
        EXPECT_EQ(program.status(), 130);
        ::close(ends[1]);
        if (sink.takesTheLine) {
          EXPECT_THAT(drained(ends[0]), testing::EndsWith("exiting interrupted by user\n"));
        }
        ::close(ends[0]);
        EXPECT_EQ(err.content(), "");
      }
    }
  }
}

TEST(Program, AnInterruptAfterTheAnswerKillsNobody) {
  std::string counters = R"("c": {})";
  for (int i = 0; i < 30'000; ++i) counters += ", \"c" + std::to_string(i) + "\": {}";
  // A state that takes some time to release.
  const MemoryFile file(R"({"debug": {"faps": {"F": {"directory": {"blocks": {"b": {)" + counters +
                        "}}}}}}}");
  for (const std::vector<std::string>& command :
       {std::vector<std::string>{"-s", file.path(), "mtu"}, {"--help"}}) {
    const std::size_t size = run(command).out.size();
    for (int i = 0; i < 5; ++i) {
      const MemoryFile out;
      const MemoryFile err;
      const Program program(command, out.fd(), err.fd());
      while (out.size() < size && !program.ends({})) continue;
      while (!program.ends({})) program.signal(SIGINT);
      EXPECT_THAT(program.status(), testing::AnyOf(0, 130)) << command.back();
      EXPECT_GE(out.size(), size);
      EXPECT_EQ(err.content(), "");
    }
  }
}

TEST(Program, WritesTheSameToATerminalAndASlowReader) {
  Pipe pipe;
  ::fcntl(pipe.ends[1], F_SETFL, O_NONBLOCK);
  int controller = -1;
  int terminal = -1;
  termios raw{};
  ::cfmakeraw(&raw);
  ASSERT_EQ(::openpty(&controller, &terminal, nullptr, &raw, nullptr), 0);
  const MemoryFile err;
  const Program slow({"queues", "--sample"}, pipe.ends[1], err.fd());
  awaitFull(pipe.ends[1]);
  EXPECT_EQ(pipe.drain(), run({"queues", "--sample"}).out);
  const Program onTerminal({"queues", "--sample"}, terminal, err.fd());
  ::close(terminal);
  EXPECT_EQ(drained(controller), run({"queues", "--sample"}).out);
  ::close(controller);
  EXPECT_EQ(slow.status(), 0);
  EXPECT_EQ(onTerminal.status(), 0);
}

}  // namespace

}  // namespace loamtest

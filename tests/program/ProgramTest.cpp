// The real program, on pipes, a pseudo-terminal and a full device.

#include <fcntl.h>
#include <gmock/gmock.h>

#include <chrono>
#include <csignal>
#include <thread>

#include "tests/Program.h"
#include "tests/Support.h"

namespace loamtest {

namespace {

using testing::HasSubstr;

TEST(Program, ReportsFindingsInBothFormats) {
  const MemoryFile clean("{}");
  const MemoryFile wrong(R"({"interfaces": ["a\nb"], "counters": {"egressAcl": {"a/b": 1}}})");
  const auto checked = [](const MemoryFile& file, const std::string& format, int status) {
    const Ran ran = run(words("check --plugin /nowhere.so -f " + format + " -s " + file.path()));
    EXPECT_EQ(ran.status, status) << ran.err;
    return ran.out;
  };
  EXPECT_EQ(checked(clean, "json", 0), "{\"findings\":[]}\n");
  EXPECT_EQ(checked(wrong, "text", 1),
            "/interfaces/0: only acl can show a?b: it has no port\n"
            "/counters/egressAcl/a~1b: the switch has no interface a/b; did you mean a?b?\n");
  EXPECT_EQ(checked(wrong, "json", 1),
            R"({"findings":[{"member":"/interfaces/0","problem":"only acl can show a\nb: it has no port"},)"
            R"({"member":"/counters/egressAcl/a~1b",)"
            R"("problem":"the switch has no interface a/b; did you mean a\nb?"}]})"
            "\n");
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

TEST(Program, ATraceDoesNotGoWhereTheOutputShould) {
  const MemoryFile trace;
  ::setenv("LOAM_TRACE", trace.path().c_str(), 1);
  const Program program({"debug", "--sample"}, -1);
  EXPECT_EQ(program.status(), 1);
  ::unsetenv("LOAM_TRACE");
  EXPECT_EQ(program.err.content(), "loamshow: cannot write the answer: Bad file descriptor\n");
}

TEST(Program, AReaderThatLeavesEndsItQuietly) {
  Pipe pipe;
  const Program program({"queues", "--internal", "--sample"}, pipe.ends[1]);
  awaitFull(pipe.ends[1]);
  pipe.closeEnd(1);
  pipe.closeEnd(0);
  EXPECT_EQ(program.status(), 1);
  EXPECT_EQ(program.err.content(), "");
}

TEST(Program, AnInterruptEndsAnAnswerThatNobodyReads) {
  // Interrupts, and microseconds between them. The second one usually arrives before the "exiting" line, or
  // while the program waits to write it. Only a pipe always has room for that line.
  for (const auto& [interrupts, pause] : {std::pair{1, 0}, {2, 100}, {3, 30'000}}) {
    Pipe pipe;
    Pipe repeated;
    Terminal terminal;
    const std::pair<Ends*, const char*> sinks[] = {
        {&pipe, ""}, {&repeated, " --every 0.1"}, {&terminal, " --json"}};
    for (const auto& [sink, options] : sinks) {
      const Program program(words("queues --internal --sample" + std::string(options)), sink->ends[1]);
      awaitFull(sink->ends[1]);
      for (int i = 0; i < interrupts; ++i) {
        program.signal(SIGINT);
        std::this_thread::sleep_for(std::chrono::microseconds(pause));
      }
      EXPECT_EQ(program.status(), 130);
      EXPECT_EQ(program.err.content(), "");
      if (sink == &terminal) continue;
      EXPECT_THAT(sink->drain(), testing::EndsWith("exiting interrupted by user\n"));
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
      const Program program(command, out.fd());
      while (out.size() < size && !program.ends({})) continue;
      while (!program.ends({})) program.signal(SIGINT);
      EXPECT_THAT(program.status(), testing::AnyOf(0, 130)) << command.back();
      EXPECT_GE(out.size(), size);
      EXPECT_EQ(program.err.content(), "");
    }
  }
}

TEST(Program, WritesTheSameToATerminalAndASlowReader) {
  const std::string expected = run({"queues", "--sample"}).out;
  Pipe pipe;
  ::fcntl(pipe.ends[1], F_SETFL, O_NONBLOCK);
  Terminal terminal;
  const Program slow({"queues", "--sample"}, pipe.ends[1]);
  awaitFull(pipe.ends[1]);
  EXPECT_EQ(pipe.drain(), expected);
  const Program onTerminal({"queues", "--sample"}, terminal.ends[1]);
  EXPECT_EQ(terminal.drain(), expected);
  EXPECT_EQ(slow.status() + onTerminal.status(), 0);
}

}  // namespace

}  // namespace loamtest

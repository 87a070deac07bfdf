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

#include "tests/Support.h"

namespace loamtest {

namespace {

using testing::HasSubstr;
using testing::MatchesRegex;

/// What no program here takes, however busy the machine is; several of them fit into a test's time limit.
constexpr std::chrono::seconds patience(20);

/// A running program, its standard output and error on descriptors of the test's choice.
class Program {
 public:
  Program(const std::vector<std::string>& arguments, int out, int err) {
    std::vector<std::string> words = {LOAMSHOW};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    for (std::string& word : words) argv.push_back(word.data());
    argv.push_back(nullptr);
    pid_ = ::fork();
    if (pid_ != 0) return;
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);  // a test that takes too long is ended
    ::dup2(::open("/dev/null", O_RDONLY), STDIN_FILENO);
    if (::dup2(out, STDOUT_FILENO) < 0) ::close(STDOUT_FILENO);
    ::dup2(err, STDERR_FILENO);
    ::unsetenv("LOAM_STATE");
    ::execv(LOAMSHOW, argv.data());
    ::_exit(127);
  }

  void signal(int number) const { ::kill(pid_, number); }
  bool ends(std::chrono::milliseconds within) const {
    pollfd end{static_cast<int>(::syscall(SYS_pidfd_open, pid_, 0)), POLLIN, 0};
    const bool ended = ::poll(&end, 1, static_cast<int>(within.count())) > 0;
    ::close(end.fd);
    return ended;
  }
  /// The exit status, or 1000 + the signal that killed it: one that does not end is killed.
  int status() const {
    if (!ends(patience)) signal(SIGKILL);
    int status = 0;
    ::waitpid(pid_, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
  }

 private:
  pid_t pid_;
};

struct Ran {
  int status;
  std::string out;
  std::string err;
};

Ran run(const std::vector<std::string>& arguments) {
  const MemoryFile out;
  const MemoryFile err;
  const int status = Program(arguments, out.fd(), err.fd()).status();
  return {status, out.content(), err.content()};
}

/// What can be read until the last writer has closed the other end, or nothing more comes.
std::string drained(int fd) {
  std::string content;
  std::array<char, 1000> part{};
  pollfd end{fd, POLLIN, 0};
  while (::poll(&end, 1, std::chrono::milliseconds(patience).count()) > 0) {
    const ssize_t size = ::read(fd, part.data(), part.size());
    if (size <= 0) break;
    content.append(part.data(), static_cast<std::size_t>(size));
  }
  return content;
}

/// Waits until an end that nobody reads from takes no more of what its writer has.
void awaitFull(int fd) {
  pollfd end{fd, POLLOUT, 0};
  const auto deadline = std::chrono::steady_clock::now() + patience;
  for (int full = 0; full<5; full = ::poll(&end, 1, 0)> 0 ? 0 : full + 1) {
    ASSERT_LT(std::chrono::steady_clock::now(), deadline) << "nothing fills it";
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
}

struct Pipe {
  Pipe() {
    if (::pipe2(ends, O_CLOEXEC) != 0) std::abort();
    ::fcntl(ends[1], F_SETPIPE_SZ, 4096);
  }
  ~Pipe() {
    closeEnd(0);
    closeEnd(1);
  }
  void closeEnd(int end) {
    if (ends[end] >= 0) ::close(std::exchange(ends[end], -1));
  }
  std::string drain() {
    closeEnd(1);
    return drained(ends[0]);
  }
  int ends[2] = {-1, -1};
};

TEST(Program, ExplainsWrongUsage) {
  const MemoryFile bad(R"({"status": 1})");
  const std::pair<std::vector<std::string>, testing::Matcher<std::string>> cases[] = {
      {{},
       "expected a command: queues, ingress, cpu, drops, acl, mtu, debug, capture, registry, check, help (see "
       "--help)"},
      {{""}, "unknown command \"\" (see --help)"},
      {{"queus"}, "unknown command \"queus\"; did you mean queues? (see --help)"},
      {{"help", "mtuu"}, "unknown command \"mtuu\"; did you mean mtu? (see --help)"},
      {{"help", "mtu", "acl"}, "help takes one command (see --help)"},
      {{"--jsno"}, "unknown option \"--jsno\"; did you mean --json? (see --help)"},
      {{"--bogus=3", "mtu"}, "unknown option \"--bogus\" (see --help)"},
      {{"mtu", "-jx"}, "unknown option \"-x\" (see --help)"},
      {{"debug", "--blok"}, "unknown option \"--blok\"; did you mean --block? (see --help)"},
      {{"--detail", "queues"}, "--detail belongs after the command: loamshow queues --detail (see --help)"},
      {{"mtu", "--detail"}, "mtu does not take --detail, an option of queues and ingress (see --help)"},
      {{"mtu", "Et1"}, "mtu takes no arguments, but \"Et1\" is one (see --help)"},
      {{"mtu", "-f", "xml"}, "--format: expected text or json, not \"xml\" (see --help)"},
      {{"mtu", "-f", "--sample"}, "--format: expected text or json (see --help)"},
      {{"mtu", "--json=false"}, "--json takes no value (see --help)"},
      {{"debug", "--sample", "-j"}, "debug: the report has no JSON form (see --help)"},
      {{"acl", "--state=", "mtu"}, "--state: expected a SOURCE, not \"\" (see --help)"},
      {{"mtu", "--plugin", ""}, "--plugin: expected a FILE, not \"\" (see --help)"},
      {{"mtu", "-s", "x", "--sample"},
       "--state and --sample name two switches: expected one of them (see --help)"},
      {{"mtu"}, "no switch given: name its state file with -s or LOAM_STATE, or use --sample"},
      {{"queues", "--sample", "Ethernet99"}, "no such interface \"Ethernet99\""},
      {{"-s", "/nowhere.json", "mtu"}, "/nowhere.json: cannot read: No such file or directory"},
      {{"-s", "-", "mtu"}, "standard input: the file is empty"},
      {{"acl", "++", "--sample"}, "no such interface \"++\""},
      {{"acl", "--sample", "[a,b]"}, "no such interface \"[a\""},
      {{"acl", "--sample", "--", "-j"}, "no such interface \"-j\""},
      {{"-s", bad.path(), "mtu"}, MatchesRegex("/proc/.*: /status: expected an object")},
      {{"--sample", "--plugin", "/nowhere.so", "mtu"},
       MatchesRegex("cannot load the plug-in: /nowhere.so: .*")},
      {{"--sample", "--plugin", "libm.so.6", "mtu"},
       MatchesRegex("cannot load the plug-in: ./libm.so.6: .*")}};
  for (const auto& [arguments, error] : cases) {
    const Ran ran = run(arguments);
    EXPECT_EQ(ran.status, 2);
    EXPECT_EQ(ran.out, "");
    EXPECT_EQ(std::count(ran.err.begin(), ran.err.end(), '\n'), 1) << ran.err;
    EXPECT_THAT(ran.err, testing::StartsWith("loamshow: "));
    EXPECT_THAT(ran.err.substr(10, ran.err.size() - 11), error);
  }
  EXPECT_THAT(run({"--version"}).out, MatchesRegex("loamshow [0-9.]+\n"));
}

TEST(Program, ReportsFindingsInBothFormats) {
  const MemoryFile clean("{}");
  const MemoryFile wrong(R"({"interfaces": ["a\nb"], "counters": {"egressAcl": {"a/b": 1}}})");
  const std::tuple<const MemoryFile&, const char*, int, const char*> cases[] = {
      {clean, "text", 0, ""},
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

TEST(Program, CompletesWhatIsBeingTyped) {
  const MemoryFile file(R"({"interfaces": ["Ethernet1/1", "Ethernet2/1.7", "Port-Channel1", "Et2/9"]})");
  const std::string state = "--state=" + file.path();
  for (const auto& [words, lines] : std::map<std::vector<std::string>, const char*>{
           {{"complete", "m"}, "mtu\tEgress MTU counters per FAP\n"},
           {{"complete", state, "acl", "ET2"}, "Et2/9\n"},  // as long names go before short ones
           {{"complete", state, "acl", "et1"}, "Et1/1\n"},
           {{"complete", "acl", "--bogus", "-s", file.path(), "Po1,Ethernet2/"}, "Po1,Ethernet2/1.7\n"},
           {{"complete", state, "mtu", ""}, ""},
           {{"complete", "-s", "/nowhere.json", "acl", ""}, ""}}) {
    const Ran ran = run(words);
    EXPECT_EQ(ran.status, 0);
    EXPECT_EQ(ran.out + ran.err, lines);
  }
  EXPECT_EQ(run({"complete", "-s", ""}).status, 1) << "a file name";
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

/// An end to write to, and the one to read from it, which nobody does.
struct Unread {
  const char* name;
  std::function<void(int* ends)> open;
  bool takesTheLine;  // without a reader
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
  // Pauses between interrupts. A second one comes as a rule before the line that tells of the first, or while
  // the program waits for room to write it.
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
  // Takes some time to release.
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

// The command line: messages, help and completion of the real program.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/resource.h>

#include <filesystem>
#include <sstream>

#include "tests/Program.h"
#include "tests/Support.h"

namespace loamtest {

namespace {

using testing::MatchesRegex;

TEST(CommandLine, ExplainsWrongUsage) {
  const MemoryFile bad(R"({"status": 1})");
  const std::pair<std::vector<std::string>, testing::Matcher<std::string>> cases[] = {
      {{}, MatchesRegex("expected a command: queues, ingress, .*, help \\(see --help\\)")},
      {{""}, "unknown command \"\" (see --help)"},
      {{"queus"}, "unknown command \"queus\"; did you mean queues? (see --help)"},
      {{"help", "mtuu"}, "unknown command \"mtuu\"; did you mean mtu? (see --help)"},
      {{"help", "mtu", "acl"}, "help takes one command (see --help)"},
      {{"--jsno"}, "unknown option \"--jsno\"; did you mean --json? (see --help)"},
      {{"--bogus=3", "mtu"}, "unknown option \"--bogus\" (see --help)"},
      {{"mtu", "-jx"}, "unknown option \"-x\" (see --help)"},
      {{"mtu", "--every", "0.09"}, "--every: expected seconds from 0.1 to 86400, not \"0.09\" (see --help)"},
      {{"mtu", "--every", "1e3"}, "--every: expected seconds from 0.1 to 86400, not \"1e3\" (see --help)"},
      {{"mtu", "--every", "86401"},
       "--every: expected seconds from 0.1 to 86400, not \"86401\" (see --help)"},
      {{"mtu", "--every=nan"}, "--every: expected seconds from 0.1 to 86400, not \"nan\" (see --help)"},
      {{"mtu", "--every", "1", "--count", "0"},
       "--count: expected an integer from 1 to 18446744073709551615, not \"0\" (see --help)"},
      {{"mtu", "--count", "3"}, "--count needs --every (see --help)"},
      {{"check", "--every", "3"},
       "check does not take --every, an option of queues, ingress, cpu, drops, acl, mtu, debug and top (see "
       "--help)"},
      {{"top", "-n", "ten"},
       "-n: expected an integer from 0 to 18446744073709551615, not \"ten\" (see --help)"},
      {{"top", "--by", "bytes"}, "--by: expected packets or octets, not \"bytes\" (see --help)"},
      {{"top", "Et1", "--internal"},
       "--internal adds interfaces to all others: expected no interface names (see --help)"},
      {{"-s", "-", "top", "--every", "1"},
       "--every: expected a file, as standard input can be read only once"},
      {{"-s", "-", "top", "--since", "-"}, "--since: expected a file, as standard input is the switch"},
      {{"-s", "-", "top", "--since", "/nowhere.json"},
       "/nowhere.json: cannot read: No such file or directory"},
      {{"debug", "--blok"}, "unknown option \"--blok\"; did you mean --block? (see --help)"},
      {{"--detail", "queues"}, "--detail belongs after the command: loamshow queues --detail (see --help)"},
      {{"mtu", "--detail"}, "mtu does not take --detail, an option of queues and ingress (see --help)"},
      {{"mtu", "Et1"}, "mtu takes no arguments, but \"Et1\" is one (see --help)"},
      {{"mtu", "-f", "xml"}, "--format: expected text or json, not \"xml\" (see --help)"},
      {{"-f", "xml"}, "--format: expected text or json, not \"xml\" (see --help)"},
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

TEST(CommandLine, CompletesWhatIsBeingTyped) {
  const MemoryFile file(R"({"interfaces": ["Ethernet1/1", "Ethernet2/1.7", "Port-Channel1", "Et2/9"]})");
  const std::string state = "--state=" + file.path();
  for (const auto& [words, lines] : std::map<std::vector<std::string>, const char*>{
           {{"complete", "m"}, "mtu\tEgress MTU counters per FAP\n"},
           {{"complete", state, "acl", "ET2"}, "Et2/9\n"},  // long names precede short ones
           {{"complete", state, "acl", "et1"}, "Et1/1\n"},
           {{"complete", "acl", "--bogus", "-s", file.path(), "Po1,Ethernet2/"}, "Po1,Ethernet2/1.7\n"},
           {{"complete", state, "mtu", ""}, ""},
           {{"complete", "help", "re"}, "registry\tTypes and operations the plug-in registers\n"},
           {{"complete", "mtu", "--js"}, "--json\tShort for --format json\n"},
           {{"complete", "queues", "--sa"}, "--sample\tUse the fictitious sample switch\n"},
           {{"complete", "queues", "--su"}, ""},  // an option of cpu
           {{"complete", "--format=j"}, "--format=json\t\n"},
           {{"complete", "-f", "t"}, "text\t\n"},
           {{"complete", "debug", "--sample", "--block", "IRE"}, "ire10\nire9\n"},
           {{"complete", "debug", "--sample", "--snapshot=l"}, "--snapshot=lastClear\n"},
           {{"complete", "acl", ""}, ""},
           {{"complete", "-s", "/nowhere.json", "acl", ""}, ""}}) {
    const Ran ran = run(words);
    EXPECT_EQ(ran.status, 0);
    EXPECT_EQ(ran.out + ran.err, lines);
  }
  for (const char* option : {"-s", "--state", "--plugin"}) {
    EXPECT_EQ(run({"complete", option, ""}).status, 1) << "a file name";
  }
}

TEST(CommandLine, HelpFitsOnAScreen) {
  std::istringstream commands(run({"complete", ""}).out);
  int count = 0;
  for (std::string command; std::getline(commands, command); ++count) {
    command.erase(command.find('\t'));
    const std::string help = run({"help", command}).out;
    EXPECT_EQ(help, run({"-h", command}).out);
    EXPECT_EQ(help, run({command, "--bogus", "--help"}).out);
    EXPECT_THAT(help, testing::StartsWith("Usage: loamshow " + command));
    EXPECT_LE(std::count(help.begin(), help.end(), '\n'), 23) << help;
    EXPECT_THAT(run({"help"}).out, testing::HasSubstr("\n  " + command + " "));
  }
  EXPECT_GT(count, 8);
  EXPECT_EQ(run({"help"}).out, run({"--help"}).out);
  std::istringstream lines(run({"help"}).out);
  for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 80U) << line;
}

TEST(CommandLine, EchoesWordsMaskedAndShortened) {
  const std::string odd = "a\x7f\x1b[2J\xc2\x9b\xff\xc3\xe2\x82\xed\xa0\x80 \xc2\xa0\xc3\xa9\xf0\x9f\x98\x80";
  const std::string masked = "a??[2J??????? \xc2\xa0\xc3\xa9\xf0\x9f\x98\x80";
  const std::string longWord = std::string(239, 'x') + "\xc3\xa9" + std::string(100'000, 'y');
  const std::vector<std::string> places[] = {{""},
                                             {"--sample", "acl"},
                                             {"help"},
                                             {"mtu"},
                                             {"mtu", "-f"},
                                             {"mtu", "-s"},
                                             {"--sample", "mtu", "--plugin"},
                                             {"--sample", "debug", "--block"}};
  for (std::vector<std::string> arguments : places) {
    if (arguments.front().empty()) arguments.clear();
    const auto echo = [&](const std::string& word) {
      arguments.push_back(word);
      std::string err = run(arguments).err;
      arguments.pop_back();
      return err;
    };
    EXPECT_THAT(echo(odd), testing::HasSubstr(masked));
    EXPECT_THAT(echo(longWord), testing::HasSubstr("xxx..."));
    EXPECT_LT(echo(longWord).size(), 400U);
  }
  const auto traced = [](const std::string& path) {
    ::setenv("LOAM_TRACE", path.c_str(), 1);
    std::string err = run({"--sample", "debug"}).err;
    ::unsetenv("LOAM_TRACE");
    return err;
  };
  EXPECT_EQ(traced("/nowhere/" + odd), "trace file /nowhere/" + masked + ": No such file or directory\n");
  EXPECT_LT(traced("/nowhere/" + longWord).size(), 400U);
}

TEST(CommandLine, WarnsBeforeTheAnswer) {
  const Ran warned = run({"--sample", "drops", "Po1,Et5/1"});
  EXPECT_EQ(warned.status, 0);
  EXPECT_EQ(warned.err,
            "loamshow: Port-Channel1: drops has no rows for it (counted in the LAG table; see queues)\n");
  EXPECT_EQ(warned.out, run({"--sample", "drops", "Et5/1"}).out);
  const Ran unknown = run({"--sample", "debug", "--block", "CGN"});
  EXPECT_EQ(unknown.status, 0);
  EXPECT_EQ(unknown.err, "loamshow: no counter block \"CGN\" on any FAP; did you mean cgm?\n");
  EXPECT_EQ(run({"--sample", "drops", "Po1,Et99"}).err, "loamshow: no such interface \"Et99\"\n");
}

TEST(CommandLine, FindsTheSwitch) {
  const MemoryFile file(R"({"interfaces": ["Loopback1"]})");
  const auto shownBy = [](const char* environment, const std::vector<std::string>& options) {
    std::vector<std::string> arguments = options;
    arguments.emplace_back("acl");
    ::setenv("LOAM_TEST_STATE", environment, 1);
    Ran ran = run(arguments);
    ::unsetenv("LOAM_TEST_STATE");
    return ran;
  };
  EXPECT_THAT(shownBy(file.path().c_str(), {}).out, testing::HasSubstr("Loopback1"));
  EXPECT_THAT(shownBy(file.path().c_str(), {"--sample"}).out, testing::HasSubstr("Et5/1"));
  EXPECT_THAT(shownBy("/nowhere.json", {"-s", file.path()}).out, testing::HasSubstr("Loopback1"));
  EXPECT_THAT(shownBy("/nowhere.json", {}).err, testing::HasSubstr("/nowhere.json: cannot read"));
  EXPECT_THAT(shownBy("", {}).err, testing::HasSubstr("no switch given"));
}

TEST(CommandLine, NeedsNoFileToAnswerIntoAPipe) {
  rlimit limit{};  // limits the size of files, also for child processes
  ::getrlimit(RLIMIT_FSIZE, &limit);
  const rlim_t before = limit.rlim_cur;
  std::istringstream commands(run({"complete", ""}).out);
  for (std::string command; std::getline(commands, command);) {
    command.erase(command.find('\t'));
    const std::vector<std::string> arguments = {"--sample", command};
    const Ran unlimited = run(arguments);
    Pipe pipe;
    ::fcntl(pipe.ends[1], F_SETPIPE_SZ, 1 << 20);
    limit.rlim_cur = 0;
    ::setrlimit(RLIMIT_FSIZE, &limit);
    const int status = Program(arguments, pipe.ends[1], pipe.ends[1]).status();
    limit.rlim_cur = before;
    ::setrlimit(RLIMIT_FSIZE, &limit);
    EXPECT_EQ(status, unlimited.status) << command;
    EXPECT_EQ(pipe.drain(), unlimited.out + unlimited.err) << command;
  }
}

TEST(CommandLine, AMissingDirectoryIsWrongUsageToo) {
  namespace fs = std::filesystem;
  const fs::path before = fs::current_path();
  {
    const TemporaryDirectory gone;
    fs::current_path(gone.path());
  }
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"--sample", "mtu", "--plugin", "x/p.so"},
        {"--sample", "mtu", "--plugin", "p.so"},
        {"-s", "state.json", "mtu"}}) {
    const Ran ran = run(arguments);
    EXPECT_EQ(ran.status, 2);
    EXPECT_THAT(ran.err, MatchesRegex("loamshow: [^\n]*No such file or directory\n"));
  }
  fs::current_path(before);
}

}  // namespace

}  // namespace loamtest

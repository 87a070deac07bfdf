// The command line: messages, help and completion of the real program.

#include <gmock/gmock.h>

#include <filesystem>
#include <sstream>

#include "tests/Program.h"
#include "tests/Support.h"

namespace loamtest {

namespace {

using testing::HasSubstr;
using testing::MatchesRegex;

TEST(CommandLine, ExplainsWrongUsage) {
  const MemoryFile bad(R"({"status": 1})");
  const std::string integer = "expected an integer from ";
  const std::string seconds = "--every: expected seconds from 0.1 to 86400, not ";
  const std::pair<std::string, std::string> usage[] = {
      {"queus", "unknown command \"queus\"; did you mean queues?"},
      {"help mtuu", "unknown command \"mtuu\"; did you mean mtu?"},
      {"help mtu acl", "help takes one command"},
      {"--jsno", "unknown option \"--jsno\"; did you mean --json?"},
      {"--bogus=3 mtu", "unknown option \"--bogus\""},
      {"mtu -jx", "unknown option \"-x\""},
      {"mtu --every 0.09", seconds + "\"0.09\""},
      {"mtu --every 86401", seconds + "\"86401\""},
      {"mtu --every=nan", seconds + "\"nan\""},
      {"mtu --every 1 --count 0", "--count: " + integer + "1 to 18446744073709551615, not \"0\""},
      {"mtu --count 3", "--count needs --every"},
      {"check --every 3",
       "check does not take --every, an option of queues, ingress, cpu, drops, acl, mtu, debug and top"},
      {"top -n ten", "-n: " + integer + "0 to 18446744073709551615, not \"ten\""},
      {"top --by bytes", "--by: expected packets or octets, not \"bytes\""},
      {"top Et1 --internal", "--internal adds interfaces to all others: expected no interface names"},
      {"--detail queues", "--detail belongs after the command: loamshow queues --detail"},
      {"mtu --detail", "mtu does not take --detail, an option of queues and ingress"},
      {"mtu Et1", "mtu takes no arguments, but \"Et1\" is one"},
      {"-f xml", "--format: expected text or json, not \"xml\""},
      {"mtu -f --sample", "--format: expected text or json"},
      {"mtu --json=false", "--json takes no value"},
      {"debug --sample -j", "debug: the report has no JSON form"},
      {"acl --state= mtu", "--state: expected a SOURCE, not \"\""},
      {"mtu --plugin=", "--plugin: expected a FILE, not \"\""},
      {"mtu -s x --sample", "--state and --sample name two switches: expected one of them"}};
  std::vector<std::pair<std::string, testing::Matcher<std::string>>> cases = {
      {"", MatchesRegex("expected a command: queues, ingress, .*, help \\(see --help\\)")},
      {"acl --sample -- -j", "no such interface \"-j\""},
      {"-s /nowhere.json mtu --every 1", "/nowhere.json: cannot read: No such file or directory"},
      {"-s - mtu", "standard input: the file is empty"},
      {"-s - top --every 1", "--every: expected a file, as standard input can be read only once"},
      {"-s - top --since -", "--since: expected a file, as standard input is the switch"},
      {"mtu -s " + bad.path(), MatchesRegex("/proc/.*: /status: expected an object")},
      {"--sample --plugin /nowhere.so mtu", MatchesRegex("cannot load the plug-in: /nowhere.so: .*")},
      {"--sample --plugin libm.so.6 mtu", MatchesRegex("cannot load the plug-in: ./libm.so.6: .*")}};
  for (const auto& [arguments, error] : usage) cases.emplace_back(arguments, error + " (see --help)");
  for (const auto& [arguments, error] : cases) {
    const Ran ran = run(words(arguments));
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
  ::setenv("LOAM_STATE", file.path().c_str(), 1);
  // The words before the one that is being typed, which may be empty; that word, and the answer.
  const std::tuple<std::string, const char*, const char*> cases[] = {
      {"", "m", "mtu\tEgress MTU counters per FAP\n"},
      {"acl", "ET2", "Et2/9\n"},  // long names precede short ones
      {"acl", "et1", "Et1/1\n"},
      {"acl --bogus -s " + file.path(), "Po1,Ethernet2/", "Po1,Ethernet2/1.7\n"},
      {"mtu", "", ""},
      {"help", "re", "registry\tTypes and operations the plug-in registers\n"},
      {"mtu", "--js", "--json\tShort for --format json\n"},
      {"queues", "--su", ""},  // an option of cpu
      {"", "--format=j", "--format=json\t\n"},
      {"-f", "t", "text\t\n"},
      {"debug --sample --block", "IRE", "ire10\nire9\n"},
      {"debug --sample", "--snapshot=l", "--snapshot=lastClear\n"},
      {"acl -s /nowhere.json", "", ""}};
  for (const auto& [before, typed, completions] : cases) {
    std::vector<std::string> arguments = words("complete " + before);
    arguments.emplace_back(typed);
    const Ran ran = run(arguments);
    EXPECT_EQ(ran.status, 0);
    EXPECT_EQ(ran.out + ran.err, completions);
  }
  for (const char* option : {"-s", "--state", "--plugin"}) {
    EXPECT_EQ(run({"complete", option, ""}).status, 1) << "a file name";
  }
  ::unsetenv("LOAM_STATE");
}

TEST(CommandLine, HelpFitsOnAScreen) {
  const std::string overview = run({"help"}).out;
  std::istringstream commands(run({"complete", ""}).out);
  int count = 0;
  for (std::string command; std::getline(commands, command); ++count) {
    command.erase(command.find('\t'));
    const std::string help = run({"help", command}).out;
    EXPECT_EQ(help, run({"-h", command}).out);
    EXPECT_EQ(help, run({command, "--bogus", "--help"}).out);
    EXPECT_THAT(help, testing::StartsWith("Usage: loamshow " + command));
    EXPECT_LE(std::count(help.begin(), help.end(), '\n'), 23) << help;
    EXPECT_THAT(overview, HasSubstr("\n  " + command + " "));
  }
  EXPECT_GT(count, 8);
  EXPECT_EQ(overview, run({"--help"}).out);
  EXPECT_THAT(overview, testing::Not(testing::ContainsRegex("[^\n]{81}")));
}

TEST(CommandLine, EchoesWordsMaskedAndShortened) {
  const std::string odd = "a\x7f\x1b[2J\xc2\x9b\xff\xc3\xe2\x82\xed\xa0\x80 \xc2\xa0\xc3\xa9\xf0\x9f\x98\x80";
  const std::string masked = "a??[2J??????? \xc2\xa0\xc3\xa9\xf0\x9f\x98\x80";
  const std::string longWord = std::string(239, 'x') + "\xc3\xa9" + std::string(100'000, 'y');
  for (const char* place : {"", "--sample acl", "help", "mtu", "mtu -f", "mtu -s", "--sample mtu --plugin",
                            "--sample debug --block"}) {
    const auto echo = [&](const std::string& word) {
      std::vector<std::string> arguments = words(place);
      arguments.push_back(word);
      return run(arguments).err;
    };
    EXPECT_THAT(echo(odd), HasSubstr(masked));
    const std::string shortened = echo(longWord);
    EXPECT_THAT(shortened, HasSubstr("xxx..."));
    EXPECT_LT(shortened.size(), 400U);
  }
  ::setenv("LOAM_TRACE", ("/nowhere/" + odd).c_str(), 1);
  const Ran traced = run({"--sample", "debug"});
  ::unsetenv("LOAM_TRACE");
  EXPECT_EQ(traced.err, "trace file /nowhere/" + masked + ": No such file or directory\n");
  EXPECT_EQ(traced.out, run({"--sample", "debug"}).out);
}

TEST(CommandLine, WarnsBeforeTheAnswer) {
  const Ran warned = run({"--sample", "drops", "Po1,Et5/1"});
  EXPECT_EQ(warned.status, 0);
  EXPECT_EQ(warned.err,
            "loamshow: Port-Channel1: drops has no rows for it (counted in the LAG table; see queues)\n");
  EXPECT_EQ(warned.out, run({"--sample", "drops", "Et5/1"}).out);
  EXPECT_EQ(run({"--sample", "drops", "Po1,Et99"}).err, "loamshow: no such interface \"Et99\"\n");
}

TEST(CommandLine, FindsTheSwitch) {
  const MemoryFile file(R"({"interfaces": ["Loopback1"]})");
  const std::tuple<std::string, std::string, const char*> cases[] = {
      {file.path(), "acl", "Loopback1"},
      {file.path(), "acl --sample", "Et5/1"},
      {"/nowhere.json", "acl -s " + file.path(), "Loopback1"},
      {"/nowhere.json", "acl", "/nowhere.json: cannot read"},
      {"", "acl", "no switch given: name its state file with -s or LOAM_STATE, or use --sample\n"}};
  for (const auto& [environment, arguments, shown] : cases) {
    ::setenv("LOAM_STATE", environment.c_str(), 1);
    const Ran ran = run(words(arguments));
    EXPECT_THAT(ran.out + ran.err, HasSubstr(shown));
  }
  ::unsetenv("LOAM_STATE");
}

TEST(CommandLine, AMissingDirectoryIsWrongUsageToo) {
  std::filesystem::current_path(TemporaryDirectory().path());  // which is removed at once
  for (const char* arguments :
       {"--sample mtu --plugin x/p.so", "--sample mtu --plugin p.so", "-s state.json mtu"}) {
    const Ran ran = run(words(arguments));
    EXPECT_EQ(ran.status, 2);
    EXPECT_THAT(ran.err, MatchesRegex("loamshow: [^\n]*No such file or directory\n"));
  }
}

}  // namespace

}  // namespace loamtest

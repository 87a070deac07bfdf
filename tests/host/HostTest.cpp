#include <gmock/gmock.h>
#include <unistd.h>

#include <thread>

#include "loamshow/cli/IntfArguments.h"
#include "loamshow/state/Source.h"
#include "loamshow/state/StateFile.h"
#include "loamshow/text/InputError.h"
#include "tests/Program.h"
#include "tests/Support.h"

namespace loamtest {

namespace {

using loamshow::InputError;

/// The error message for a state file; empty if it is valid.
std::string stateError(const std::string& text) {
  try {
    loamshow::parseState("s.json", text);
  } catch (const InputError& error) {
    return error.what();
  }
  return "";
}

/// A state with one member.
Json stateWith(const std::string& path, Json value) {
  for (Json::json_pointer at(path); !at.empty(); at.pop_back()) {
    value = at.back() == "0" ? Json::array({value}) : Json{{at.back(), value}};
  }
  return value;
}

TEST(StateFile, NamesFileAndMemberOfEveryError) {
  // Invalid values: each message once. The schema test checks the range of every member, and the members of
  // every object.
  const std::tuple<const char*, std::string, const char*> misplaced[] = {
      {"/status/fapNumCores/1", R"("two")", "expected a number"},
      {"/status/fapNumCores/1", "1.5", "expected an integer from 0 to 65535"},
      {"/status/fapNumCores/2047", "1", "expected a key from 0 to 2046"},
      {"/status/fapIdToName/1", "1", "expected a string"},
      {"/status/fapIdToName/1", R"("a\u0000")", "a name cannot hold U+0000"},
      {"/status/intfIdToSppid/Et1~11", "32768", "expected an integer from 2 to 32767"},
      {"/status/portMap/2/intfId", R"("a")", "unknown member"},
      {"/status/recircPort/0", R"({"recircType": 1})", "expected a systemPhyPortId"},
      {"/status/cpuRecircEnabled", "1", "expected true or false"},
      {"/status", "[]", "expected an object"},
      {"/interfaces", "{}", "expected an array"},
      {"/fabricMcastVoq", R"({"min": 3})", "expected both min and max"},
      {"/fabricMcastVoq", R"({"min": 3, "max": 11})", "expected a max from min to min + 7"},
      {"/counters/egress/a/queues/0", "[1, 2, 3]", "expected four counts"},
      {"/debug/faps/F/directory/blocks/b/c/fields/f/offset", "null", "expected a number"},
      {"/switch/name", R"("")", "expected a name that is not empty"},
      {"/switch/takenAt", R"("2026-02-29T10:53:00Z")", "expected a time in UTC such as 2026-11-23T10:53:31Z"},
      {"/counters/ingress/0/queue", "[]", "unknown member; did you mean queues?"},
      {"/counters/ingress/0/queues", Json(81, zeros()).dump(), "expected at most 80 queues"},
  };
  for (const auto& [path, value, error] : misplaced) {
    EXPECT_EQ(stateError(stateWith(path, Json::parse(value)).dump()), line("s.json: %s: %s", path, error));
  }
  const std::pair<const char*, const char*> texts[] = {
      {R"({"status": {"fapNumCores": {"1": 1, "1": 1}}})", "/status/fapNumCores/1: repeated key"},
      {R"({"status": {"portMapToIntfId": [{"fapId": 1}, {"fapId": 1, "intfId": "x"}]}})",
       "/status/portMapToIntfId/1: repeated entry of this FAP, core and port"},
      {R"({"status": {"recircPort": [{"systemPhyPortId": 3}, {"systemPhyPortId": 4}]}})",
       "/status/recircPort/1: repeated entry of this recircType and id"},
      {R"({"interfaces": ["a", "b", "a"]})", "/interfaces/2: repeated entry"},
      {R"({"interfaces": ["a", ""]})", "/interfaces/1: expected an interface name"},
      {R"({"counters": {"ingress": [{"intfId": "a"}, {"intfId": "b"}, {"intfId": "a"}]}})",
       "/counters/ingress/2: repeated entry of this FAP, core and interface"},
      {R"({"counters": {"egress": {"a": {"total": [1, 2, 3, 18446744073709551616]}}}})",
       "/counters/egress/a/total/3: expected an integer from 0 to 18446744073709551615"},
      {R"({"debug": {"faps": {"F": {}, "F": {}}}})", "/debug/faps/F: repeated key"},
      {R"({"status": {"a\nb": 1}})", "/status/a?b: unknown member"}};
  for (const auto& [text, error] : texts) EXPECT_EQ(stateError(text), std::string("s.json: ") + error);
  for (const char* text : {"{}", R"({"fabricMcastVoq": {}})",
                           R"({"switch": {"name": "a", "takenAt": "0000-02-29T00:00:00.5Z"}})",
                           R"({"status": {"portMap": {"2": {"fapId": 2047}}}})",
                           R"({"counters": {"egressAcl": {"a": null}}})"}) {
    EXPECT_EQ(stateError(text), "");
  }
}

TEST(Source, ReadsFilesAndPipesOfManyReads) {
  Json state = smallSwitch();
  for (int i = 0; i < 20'000; ++i) state["interfaces"].push_back("Loopback1" + std::to_string(i));
  const std::string text = state.dump();
  const std::size_t interfaces = state["interfaces"].size();
  const MemoryFile file(text);
  const loamshow::Source source(file.path());
  EXPECT_EQ(source.read().interfaces.size(), interfaces);
  EXPECT_EQ(source.read().interfaces.size(), interfaces);

  Pipe pipe;
  std::thread writer([&] {
    for (std::size_t at = 0; at < text.size(); at += 10'007) {
      const std::string piece = text.substr(at, 10'007);
      EXPECT_EQ(::write(pipe.ends[1], piece.data(), piece.size()), static_cast<ssize_t>(piece.size()));
    }
    pipe.closeEnd(1);
  });
  EXPECT_EQ(loamshow::Source("/proc/self/fd/" + std::to_string(pipe.ends[0])).read().interfaces.size(),
            interfaces);
  writer.join();
}

TEST(Source, EndsWhatHasNoEnd) {
  const auto problemOf = [](const std::string& path, std::size_t most) {
    try {
      loamshow::Source(path, most).read();
    } catch (const loamshow::Unreadable& error) {
      return std::string("unreadable: ") + error.what();
    } catch (const InputError& error) {
      return std::string(error.what());
    }
    return std::string();
  };
  const MemoryFile file("{}");
  EXPECT_EQ(problemOf(file.path(), 2), "");
  EXPECT_EQ(problemOf(file.path(), 1), file.path() + ": more than 1 bytes, too much for a state file");
  EXPECT_EQ(problemOf("/dev/zero", 1'000'000),
            "/dev/zero: more than 1000000 bytes, too much for a state file");
  EXPECT_EQ(problemOf("/", 10), "unreadable: /: cannot read: Is a directory");
  EXPECT_EQ(problemOf("/nowhere", 10), "unreadable: /nowhere: cannot read: No such file or directory");
}

TEST(StateFile, SurvivesNonsense) {
  const auto isSyntaxError = testing::AllOf(
      testing::StartsWith("s.json: parse error at line 1"), testing::Not(testing::HasSubstr("\n")),
      testing::ResultOf([](const std::string& s) { return s.size(); }, testing::Lt(300U)));
  EXPECT_THAT(stateError("{\"interfaces\": [\"\xff\"]}"), isSyntaxError);
  EXPECT_THAT(stateError("{\"interfaces\": [\"" + std::string(1'000'000, 'x')), isSyntaxError);
  const std::string deep = "{\"interfaces\": " + std::string(100'000, '[') + std::string(100'000, ']') + "}";
  EXPECT_EQ(stateError(deep), "s.json: /interfaces/0: expected a string");
  // The first error is reported, even if the rest is not JSON.
  EXPECT_EQ(stateError("{\"a\": " + std::string(100'000, '[')), "s.json: /a: unknown member");
}

TEST(IntfArguments, NameInterfacesInManyWays) {
  std::vector<Nexo::IntfId> interfaces;
  for (const char* name :
       {"Ethernet1/1", "Ethernet1/2", "Ethernet1/3", "Ethernet2", "ETHERNET2", "Port-Channel1", "a,b", "c-4",
        "Et9", "Ethernet9", "x8", "x9", "x10", "y18446744073709551615", "y18446744073709551616"}) {
    interfaces.emplace_back(name);
  }
  const auto selected = [&](const std::vector<std::string>& arguments) {
    std::string names;
    try {
      for (const Nexo::IntfId intf : loamshow::selectInterfaces(interfaces, arguments)) {
        names += (names.empty() ? "" : " ") + std::string(intf.stringValue().c_str());
      }
    } catch (const InputError& error) {
      return std::string(error.what());
    }
    return names;
  };
  const std::pair<std::vector<std::string>, std::string> cases[] = {
      {{"Et1/2", "ethernet1/1,PO1"}, "Ethernet1/2 Ethernet1/1 Port-Channel1"},
      {{"et1/1-3", "et1/2"}, "Ethernet1/1 Ethernet1/2 Ethernet1/3 Ethernet1/2"},
      {{"Port-Channel1-1"}, "Port-Channel1"},
      {{"c-4,c-4"}, "c-4 c-4"},
      {{"x8-10"}, "x8 x9 x10"},
      {{"Ethernet2"}, "Ethernet2"},  // exact long names win
      {{"ethernet2"}, "ambiguous interface \"ethernet2\": Ethernet2 or ETHERNET2"},
      {{"Et9"}, "Et9"},
      {{"et9"}, "ambiguous interface \"et9\": Et9 or Ethernet9"},
      {{"Et7"}, "no such interface \"Et7\"; did you mean Et2?"},
      {{"EHTERNET99"}, "no such interface \"EHTERNET99\"; did you mean Ethernet9?"},
      {{"Ethernet1/999"}, "no such interface \"Ethernet1/999\""},
      {{""}, "no such interface \"\""},
      {{"Et1/1,"}, "empty name in list \"Et1/1,\": expected names with commas between, as in Et1/1,Po1"},
      {{",Et1/1"}, "empty name in list \",Et1/1\": expected names with commas between, as in Et1/1,Po1"},
      {{"Et1/1,2"},
       "incomplete name \"2\" in list \"Et1/1,2\": expected complete names or a range, as in Et1/1,Et1/2 or "
       "Et1/1-2"},
      {{"2"}, "no such interface \"2\""},
      {{"Et1/1, Et1/2"}, "no such interface \" Et1/2\"; did you mean Et1/2?"},
      {{"Et1/1-4"}, "no such interface \"Et1/4\" (in range \"Et1/1-4\")"},
      {{"Et1/3-1"}, "descending range \"Et1/3-1\""},
      {{"Et1/1-99999999999999999999"},
       "no such interface \"Et1/4\" (in range \"Et1/1-99999999999999999999\")"},
      {{"y18446744073709551615-18446744073709551616"}, "y18446744073709551615 y18446744073709551616"},
      {{"-1"}, "no such interface \"-1\""},
  };
  for (const auto& [arguments, names] : cases) EXPECT_EQ(selected(arguments), names);
  for (const std::string range : {"Et1/01-3", "Et1/1-", "Et1/1-3/4", "Et9/1-9/4", "Et1/1-Et1/2"}) {
    EXPECT_EQ(selected({range}),
              "malformed range \"" + range +
                  "\": expected a name, \"-\" and the last number, without leading zeros, as in Et1/1-4");
  }
  EXPECT_EQ(loamshow::selectInterfaces(interfaces, {}), interfaces);
}

}  // namespace

}  // namespace loamtest

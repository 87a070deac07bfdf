// State files: reading them, explaining what is wrong with them, and writing them.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <functional>

#include "loamshow/state/Capture.h"
#include "loamshow/state/Source.h"
#include "loamshow/state/StateFile.h"
#include "loamshow/text/InputError.h"
#include "tests/Program.h"
#include "tests/Support.h"

namespace loamtest {

namespace {

/// The message of the error that an operation throws; empty if it throws none.
std::string errorOf(const std::function<void()>& operation) {
  try {
    operation();
  } catch (const loamshow::Unreadable& error) {
    return std::string("unreadable: ") + error.what();
  } catch (const loamshow::InputError& error) {
    return error.what();
  }
  return "";
}

std::string stateError(const std::string& text) {
  return errorOf([&] { loamshow::parseState("s.json", text); });
}

/// The text of a state with one member.
std::string stateWith(const std::string& path, std::string value) {
  for (Json::json_pointer at(path); !at.empty(); at.pop_back()) {
    value = at.back() == "0" ? "[" + value + "]" : "{\"" + at.back() + "\": " + value + "}";
  }
  return value;
}

// The schema test checks the range of every member, and the members of every object.
TEST(StateFile, NamesFileAndMemberOfEveryError) {
  constexpr const char* accepted = "";
  const struct {
    const char* path;
    std::string value;
    std::string error;  // follows the path
  } cases[] = {
      {"/status/fapNumCores/1", "-0", accepted},
      {"/status/fapNumCores/1", R"("two")", ": expected a number"},
      {"/status/fapNumCores/1", "-1", ": expected an integer from 0 to 65535"},
      {"/status/fapNumCores/2047", "1", ": expected a key from 0 to 2046"},
      {"/status/fapNumCores", R"({"1": 1, "1": 1})", "/1: repeated key"},
      {"/status/fapIdToName/1", "1", ": expected a string"},
      {"/status/fapIdToName/1", R"("a\u0000")", ": a name cannot hold U+0000"},
      {"/status/intfIdToSppid/Et1", "32768", ": expected an integer from 2 to 32767"},
      {"/status/portMap/2", R"({"fapId": 1, "fapId": 2})", "/fapId: repeated member"},
      {"/status/portMapToIntfId", R"([{"fapId": 1}, {"fapId": 1, "intfId": "x"}])",
       "/1: repeated entry of this FAP, core and port"},
      {"/status/recircPort/0", R"({"recircType": 1})", ": expected a systemPhyPortId"},
      {"/status/recircPort", R"([{"systemPhyPortId": 3}, {"systemPhyPortId": 4}])",
       "/1: repeated entry of this recircType and id"},
      {"/status/cpuRecircEnabled", "1", ": expected true or false"},
      {"/status", "[]", ": expected an object"},
      {"/status", R"({"a\nb": 1})", "/a?b: unknown member"},
      {"/interfaces", "{}", ": expected an array"},
      {"/interfaces", R"(["a", "b", "a"])", "/2: repeated entry"},
      {"/interfaces", R"(["a", ""])", "/1: expected an interface name"},
      {"/fabricMcastVoq", "{}", accepted},
      {"/fabricMcastVoq", R"({"min": 3})", ": expected both min and max"},
      {"/fabricMcastVoq", R"({"min": 3, "max": 11})", ": expected a max from min to min + 7"},
      {"/counters/ingress", R"([{"intfId": "a"}, {"intfId": "b"}, {"intfId": "a"}])",
       "/2: repeated entry of this FAP, core and interface"},
      {"/counters/ingress/0/queue", "[]", ": unknown member; did you mean queues?"},
      {"/counters/ingress/0/queues", Json(81, zeros).dump(), ": expected at most 80 queues"},
      {"/counters/egress/a/total", "[1, 2, 3]", ": expected four counts"},
      {"/counters/egress/a/total", R"([1, "2", 3, 4])", "/1: expected a number"},
      {"/counters/egress/a/total", "[1, 2, 3, 18446744073709551616]",
       "/3: expected an integer from 0 to 18446744073709551615"},
      {"/debug/switchTimeOffset", R"("1")", ": expected a number"},
      {"/debug/switchTimeOffset", "1e400", ": number overflow parsing '1e400'"},
      {"/switch/name", R"("")", ": expected a name that is not empty"},
      {"/switch/takenAt", R"("2026-02-29T10:53:00Z")",
       ": expected a time in UTC such as 2026-11-23T10:53:31Z"},
      {"", R"({"st\u0061tus": {}})", accepted},
      {"", R"({"a~/b": 1})", "/a~0~1b: unknown member"},
      {"", " 17 ", "expected an object"},
      {"", "", "the file is empty"},
      {"", "\xef\xbb\xbf{}", "a byte-order mark where JSON was expected"},
      {"", std::string("{}\0", 3), "a NUL byte where JSON was expected"},
      {"", std::string("{\"switch\": \"\0\"}", 14), "a NUL byte where JSON was expected"},
      // The first error is reported, even if the rest is not JSON.
      {"", "{\"a\": " + std::string(100'000, '['), "/a: unknown member"},
      {"/interfaces", std::string(100'000, '[') + std::string(100'000, ']'), "/0: expected a string"}};
  for (const auto& [path, value, error] : cases) {
    EXPECT_EQ(stateError(stateWith(path, value)), error == accepted ? "" : "s.json: " + (path + error));
  }
}

TEST(StateFile, SaysWhereATextIsNotJson) {
  const std::pair<std::string, const char*> cases[] = {
      {"{\n \"status\": 1x}", "line 2, column 13: syntax error while parsing object - invalid literal"},
      {"{\"status\": {}} {}", "line 1, column 16: syntax error while parsing value - unexpected '{'"},
      {"{\"status\": {}", "line 1, column 14: syntax error while parsing object - unexpected end of input"},
      {"{\"status\" 1}", "line 1, column 11: syntax error while parsing object separator"},
      {"{\"interfaces\": [\"\xff\"]}", "line 1, column 18: syntax error while parsing value - invalid"},
      {"{\"interfaces\": [\"" + std::string(1'000'000, 'x'), "line 1, column 1000018: syntax error"}};
  for (const auto& [text, problem] : cases) {
    const std::string error = stateError(text);
    EXPECT_THAT(error, testing::StartsWith(std::string("s.json: parse error at ") + problem));
    EXPECT_THAT(error, testing::Not(testing::HasSubstr("\n")));
    EXPECT_LT(error.size(), 300U);
  }
}

TEST(Source, ReadsFilesAndPipesOfManyReads) {
  Json state;
  for (int i = 0; i < 20'000; ++i) state["interfaces"].push_back("Loopback1" + std::to_string(i));
  const std::string text = state.dump();
  const MemoryFile file(text);
  const loamshow::Source source(file.path());
  Pipe pipe;
  ASSERT_GT(::fcntl(pipe.ends[1], F_SETPIPE_SZ, text.size()), 0);
  ASSERT_EQ(::write(pipe.ends[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
  pipe.closeEnd(1);
  const loamshow::Source piped("/proc/self/fd/" + std::to_string(pipe.ends[0]));
  for (const loamshow::Source* from : {&source, &source, &piped}) {
    EXPECT_EQ(from->read().interfaces.size(), 20'000U);
  }
}

TEST(Source, EndsWhatHasNoEnd) {
  const auto problem = [](const std::string& path, std::size_t most) {
    return errorOf([&] { loamshow::Source(path, most).read(); });
  };
  const MemoryFile file("{}");
  EXPECT_EQ(problem(file.path(), 2), "");
  EXPECT_EQ(problem(file.path(), 1), file.path() + ": more than 1 bytes, too much for a state file");
  EXPECT_EQ(problem("/dev/zero", 1'000'000), "/dev/zero: more than 1000000 bytes, too much for a state file");
  EXPECT_EQ(problem("/", 10), "unreadable: /: cannot read: Is a directory");
  EXPECT_EQ(problem("/nowhere", 10), "unreadable: /nowhere: cannot read: No such file or directory");
}

std::string captured(const std::string& state, decltype(loamshow::capture)* capture = loamshow::capture) {
  std::string written;
  loamshow::JsonWriter out(written, loamshow::JsonWriter::Layout::indented);
  capture(loamshow::parseState("s.json", state), out);
  return written;
}

// The schema test checks that every member is written.
TEST(Capture, WritesWhatIsNotAtItsDefaultInOneOrder) {
  const struct {
    const char* path;
    const char* state;
    const char* written;  // empty: nothing of the state
  } cases[] = {
      {"",
       R"({"debug": {"switchTimeOffset": -0.0, "faps": {}}, "interfaces": ["b", "a"], "switch": {"name": "s"}})",
       R"({"switch": {"name": "s"}, "interfaces": ["b", "a"]})"},
      {"/status/subIntfNumVoqs", "0", ""},
      {"/debug/faps/F/directory/blocks/b/c/firstInstance", "0", "0"},
      {"/status/fapIdToName", R"({"10": "", "9": "\u00e9\""})", R"({"9": "\u00e9\"", "10": ""})"},
      {"/status/fapRevision", R"({"1": {"major": 0}})", R"({"1": {}})"},
      {"/status/portMapToIntfId",
       R"([{"fapId": 1, "intfId": ""}, {"coreId": 1, "intfId": "x"}, {"fapPortId": 2}])",
       R"([{"fapPortId": 2}, {"coreId": 1, "intfId": "x"}, {"fapId": 1}])"},
      {"/status/recircPort", R"([{"recircType": 1, "systemPhyPortId": 7}, {"id": 2, "systemPhyPortId": 8}])",
       R"([{"id": 2, "systemPhyPortId": 8}, {"recircType": 1, "systemPhyPortId": 7}])"},
      {"/tmMapping/portTmMap", "[100, 34]", "[34, 100]"},
      {"/internalLagStatus/lagIngressVoqCounterTable", R"(["b", "a", "b"])", R"(["a", "b"])"},
      {"/fabricMcastVoq", R"({"min": 0, "max": 7})", ""},
      {"/counters/ingress",
       R"([{"fapId": 1, "intfId": "a"}, {"coreId": 1, "intfId": "a"}, {"intfId": "b"}, {"intfId": "B"}])",
       R"([{"intfId": "B"}, {"intfId": "b"}, {"coreId": 1, "intfId": "a"}, {"fapId": 1, "intfId": "a"}])"},
      {"/counters/ingress/0",
       R"({"queues": [[0, 0, 0, 0], [1, 2, 3, 4], [0, 0, 0, 0]], "total": [1, 2, 3, 4]})",
       R"({"queues": [[0, 0, 0, 0], [1, 2, 3, 4]]})"},
      {"/counters/ingress/0", R"({"queues": [], "total": [1, 2, 3, 4]})", R"({"total": [1, 2, 3, 4]})"},
      {"/counters/egress",
       R"({"b": {"queues": [[18446744073709551615, 0, 0, 0], [2, 0, 0, 0]], "total": [1, 0, 0, 0]}, "a": {}})",
       R"({"a": {}, "b": {"queues": [[18446744073709551615, 0, 0, 0], [2, 0, 0, 0]]}})"},
      {"/counters/egressTm/E",
       R"({"queues": [{}, {"mcast": [1, 0, 0, 0]}, {}], "ambiguousTcs": [3, 1], "total": [0, 0, 0, 0]})",
       R"({"queues": [{}, {"mcast": [1, 0, 0, 0]}], "ambiguousTcs": [1, 3], "total": [0, 0, 0, 0]})"},
      {"/counters/egressAcl", R"({"b": null, "a": 0})", R"({"a": 0, "b": null})"},
      {"/counters/egressMtu", R"({"10": {"enqueuedPackets": null}, "9": {"totalPackets": 0}})",
       R"({"9": {"totalPackets": 0}, "10": {}})"},
      {"/debug/faps", R"({"B": {"directory": null}, "A": {}})", R"({"A": {}, "B": {}})"},
      {"/debug/faps/F/directory/blocks",
       R"({"b": {}, "A": {"z": {"displayName": "z", "firstInstance": null}, "Y": {"displayName": ""}}})",
       R"({"A": {"Y": {"displayName": ""}, "z": {}}, "b": {}})"},
      {"/debug/faps/F/snapshots", R"({"b": [{"value": 0, "lastUpdate": 3e-7}, {}], "a": []})",
       R"({"a": [], "b": [{"lastUpdate": 3e-7}, {}]})"}};
  for (const auto& [path, state, written] : cases) {
    const std::string expected = *written == '\0' ? "{}" : stateWith(path, written);
    EXPECT_EQ(captured(stateWith(path, state)), Json::parse(expected).dump(2) + "\n");
  }
  EXPECT_EQ(
      captured(R"({"counters": {"egressAcl": {"a": 1}}, "debug": {"faps": {"F": {"snapshots": {"a": []}}}}})",
               loamshow::captureDescription),
      R"({"debug": {"faps": {"F": {}}}})"_json.dump(2) + "\n");
}

}  // namespace

}  // namespace loamtest

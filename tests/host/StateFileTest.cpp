// State files: reading them, explaining what is wrong with them, and writing them.

#include <gmock/gmock.h>
#include <unistd.h>

#include <algorithm>
#include <set>
#include <thread>

#include "loamshow/state/Capture.h"
#include "loamshow/state/Source.h"
#include "loamshow/state/StateFile.h"
#include "loamshow/text/InputError.h"
#include "tests/Program.h"
#include "tests/Support.h"

namespace loamtest {

namespace {

using loamshow::InputError;
using loamshow::JsonWriter;

/// The error message for a state file; empty if it is valid.
std::string stateError(const std::string& text) {
  try {
    loamshow::parseState("s.json", text);
  } catch (const InputError& error) {
    return error.what();
  }
  return "";
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
      {"/status/fapNumCores/1", "1.5", ": expected an integer from 0 to 65535"},
      {"/status/fapNumCores/1", "-1", ": expected an integer from 0 to 65535"},
      {"/status/fapNumCores/2047", "1", ": expected a key from 0 to 2046"},
      {"/status/fapNumCores", R"({"1": 1, "1": 1})", "/1: repeated key"},
      {"/status/fapIdToName/1", "1", ": expected a string"},
      {"/status/fapIdToName/1", R"("a\u0000")", ": a name cannot hold U+0000"},
      {"/status/intfIdToSppid/Et1", "32768", ": expected an integer from 2 to 32767"},
      {"/status/portMap/2/intfId", R"("a")", ": unknown member"},
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
      {"/counters/ingress/0/queues", Json(81, zeros()).dump(), ": expected at most 80 queues"},
      {"/counters/egress/a/total", "[1, 2, 3]", ": expected four counts"},
      {"/counters/egress/a/total", R"([1, "2", 3, 4])", "/1: expected a number"},
      {"/counters/egress/a/total", "[1, 2, 3, 18446744073709551616]",
       "/3: expected an integer from 0 to 18446744073709551615"},
      {"/debug/faps", R"({"F": {}, "F": {}})", "/F: repeated key"},
      {"/debug/faps/F/directory/blocks/b/c/fields/f/offset", "null", ": expected a number"},
      {"/debug/switchTimeOffset", R"("1")", ": expected a number"},
      {"/debug/switchTimeOffset", "1e400", ": number overflow parsing '1e400'"},
      {"/switch/name", R"("")", ": expected a name that is not empty"},
      {"/switch/takenAt", R"("2026-02-29T10:53:00Z")",
       ": expected a time in UTC such as 2026-11-23T10:53:31Z"},
      {"", R"({"st\u0061tus": {}})", accepted},
      {"", R"({"a~/b": 1})", "/a~0~1b: unknown member"},
      {"", " 17 ", "expected an object"},
      {"", "[1]", "expected an object"},
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
  EXPECT_EQ(source.read().interfaces.size(), 20'000U);
  EXPECT_EQ(source.read().interfaces.size(), 20'000U);

  Pipe pipe;
  std::thread writer([&] {
    for (std::size_t at = 0; at < text.size(); at += 10'007) {
      const std::string piece = text.substr(at, 10'007);
      EXPECT_EQ(::write(pipe.ends[1], piece.data(), piece.size()), static_cast<ssize_t>(piece.size()));
    }
    pipe.closeEnd(1);
  });
  EXPECT_EQ(loamshow::Source("/proc/self/fd/" + std::to_string(pipe.ends[0])).read().interfaces.size(),
            20'000U);
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

std::string captured(const Json& state,
                     void (*write)(const loamshow::SwitchState&, JsonWriter&) = loamshow::capture) {
  std::string written;
  JsonWriter out(written, JsonWriter::Layout::oneLine);
  write(loamshow::parseState("s.json", state.dump(-1, ' ', true)), out);
  return written;
}

// Every member, most of them twice.
constexpr const char* orderly = R"({
  "switch": {"name": "leaf7", "takenAt": "2024-02-29T23:59:59.000001Z"},
  "interfaces": ["b", "a"],
  "status": {
    "fapIdToName": {"9": "é\"", "10": ""}, "fapNumCores": {"0": 2, "1": 0},
    "fapRevision": {"0": {"major": 4294967295}, "1": {}},
    "sppidToIntfId": {"34": "b", "100": ""}, "intfIdToSppid": {"a": 100, "b": 34},
    "portMap": {"34": {"fapPortId": 256, "fapId": 2047, "coreId": 6}, "100": {}},
    "portMapToIntfId": [{"fapPortId": 3, "intfId": "y"}, {"fapPortId": 2, "coreId": 1, "intfId": "x"},
                        {"fapId": 1}],
    "olpPort": {"9": 11, "10": 10}, "erpPort": {"2": 9},
    "recircPort": [{"id": 2, "systemPhyPortId": 8}, {"recircType": 1, "systemPhyPortId": 7}],
    "fabricMeshDropPort": {"1": 6}, "fapToSflowAccelSppid": {"a": 5, "b": 4}, "ipsecPort": {"65535": 3},
    "eventorPort": {"0": 2}, "cpuRecircEnabled": true, "subIntfNumVoqs": 8, "coppClassNumVoqs": 2
  },
  "tmMapping": {"portTmMap": [34, 100]},
  "internalLagStatus": {"lagIngressVoqCounterTable": ["a", "b"]},
  "fabricMcastVoq": {"min": 1, "max": 7},
  "skeinMountMode": true,
  "perInputPortCoppVoqs": true,
  "counters": {
    "ingress": [{"intfId": "B", "queues": [[18446744073709551615, 0, 0, 0], [2, 0, 0, 0]]},
                {"intfId": "b", "total": [18446744073709551615, 0, 0, 0]}, {"coreId": 1, "intfId": "a"},
                {"fapId": 1, "intfId": "a", "queues": [[0, 0, 0, 0], [1, 2, 3, 4]]}],
    "egress": {"a": {}, "b": {"queues": [[1, 1, 1, 1]]}},
    "egressTm": {"E": {"queues": [{}, {"ucast": [1, 0, 0, 0]}], "ambiguousTcs": [1, 3], "total": [0, 0, 0, 1]}},
    "egressLag": {"P": {"queues": [{"mcast": [1, 2, 3, 4]}]}},
    "egressAcl": {"a": 0, "b": null},
    "egressMtu": {"9": {"droppedPackets": 9223372036854775807, "totalPackets": 0}, "10": {}}
  },
  "debug": {"switchTimeOffset": 0.1, "faps": {
    "Fap0": {
      "directory": {"valid": true, "readiness": 2, "blocks": {"Cgm": {
        "Y": {"displayName": "", "offset": 1, "firstInstance": 0, "numInstances": 1, "fetchType": 3,
              "displayType": 1, "isDropCounter": true},
        "z": {"numInstances": 2, "fields": {
          "x": {"displayName": "X"}, "y": {"offset": 7, "order": 1, "fetchType": 2, "isDropCounter": true}}}
      }, "b": {}}},
      "snapshots": {"a": [], "current": [{"value": 18446744073709551615, "firstUpdate": 1.5,
        "lastUpdate": 1700000000.25, "lastDiscontinuity": 3e-7, "overflow": true}, {}], "saved": [{}]}
    },
    "Fap1": {}}}
})";

/// Members of that state that can be left out.
const std::pair<const char*, Json> defaults[] = {
    {"/status/fapRevision/1/major", 0},
    {"/status/portMap/100/fapId", 0},
    {"/status/portMapToIntfId/2/intfId", ""},
    {"/internalLagStatus/lagIngressVoqCounterTable/2", "b"},  // for the second time
    {"/counters/ingress/2/total", zeros()},
    {"/counters/ingress/3/total", {1, 2, 3, 4}},  // the sum of the queues
    {"/counters/egress/a/queues", Json::array()},
    {"/counters/egress/b/queues/1", zeros()},
    {"/counters/egressLag/P/queues/1", Json::object()},
    {"/counters/egressMtu/10/enqueuedPackets", nullptr},
    {"/debug/faps/Fap0/directory/blocks/Cgm/z/displayName", "z"},
    {"/debug/faps/Fap0/directory/blocks/Cgm/z/firstInstance", nullptr},
    {"/debug/faps/Fap0/snapshots/saved/0/lastUpdate", 0},
    {"/debug/faps/Fap1/directory", nullptr}};

/// The value with its members, and the lists whose order means nothing, in reverse order.
Json reversed(const Json& value, const std::string& name = "") {
  static const std::set<std::string> sets = {"portMapToIntfId",           "recircPort", "portTmMap",
                                             "lagIngressVoqCounterTable", "ingress",    "ambiguousTcs"};
  Json back = value;
  if (value.is_object()) {
    back.clear();
    for (auto at = value.rbegin(); at != value.rend(); ++at) back[at.key()] = reversed(*at, at.key());
  } else if (value.is_array()) {
    for (Json& item : back) item = reversed(item);
    if (sets.contains(name)) std::reverse(back.begin(), back.end());
  }
  return back;
}

TEST(Capture, WritesWhatIsNotAtItsDefaultInOneOrder) {
  Json expected = Json::parse(orderly);
  Json disorderly = expected;
  for (const auto& [path, value] : defaults) disorderly[Json::json_pointer(path)] = value;
  disorderly = reversed(disorderly);
  EXPECT_EQ(captured(disorderly), expected.dump() + "\n");
  EXPECT_EQ(captured(expected), expected.dump() + "\n");
  expected.erase("counters");
  expected["debug"]["faps"]["Fap0"].erase("snapshots");
  EXPECT_EQ(captured(disorderly, loamshow::captureDescription), expected.dump() + "\n");
  EXPECT_EQ(captured(R"({"status": {}, "tmMapping": {"portTmMap": []}, "fabricMcastVoq": {"min": 0, "max": 7},
                         "debug": {"switchTimeOffset": -0.0, "faps": {}}, "counters": {"egress": {}}})"_json),
            "{}\n");
}

}  // namespace

}  // namespace loamtest

#include "tests/Support.h"

#include <cstdarg>
#include <cstdio>
#include <iterator>
#include <sstream>

#include "loamshow/now/Answer.h"
#include "loamshow/state/StateFile.h"

namespace loamtest {

std::string line(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  char* text = nullptr;
  const int size = ::vasprintf(&text, format, arguments);
  va_end(arguments);
  std::string out(text, static_cast<std::size_t>(size));
  ::free(text);  // NOLINT(cppcoreguidelines-no-malloc)
  return out;
}

std::vector<std::string> words(const std::string& text) {
  std::istringstream stream(text);
  return {std::istream_iterator<std::string>(stream), {}};
}

std::string lines(const std::string& json) {
  std::string out;
  for (const char c : json) {
    out += c;
    if (c == '{' || c == ',') out += '\n';
  }
  return out;
}

Json quad(U64 base) {
  return {base + 1, base + 2, base + 3, base + 4};
}

Json plus(const Json& left, const Json& right) {
  Json sum = Json::array();
  for (std::size_t i = 0; i < left.size(); ++i) sum.push_back(left[i].get<U64>() + right[i].get<U64>());
  return sum;
}

Json members(const Json& quad) {
  return {{"enqueuedPackets", quad[0]},
          {"enqueuedBytes", quad[1]},
          {"droppedPackets", quad[2]},
          {"droppedBytes", quad[3]}};
}

std::vector<std::string> tcs() {
  return words("TC0 TC1 TC2 TC3 TC4 TC5 TC6 TC7");
}

Json smallSwitch() {
  Json state = Json::parse(R"({
    "interfaces": ["Ethernet1", "Ethernet1.5", "Ethernet3", "Port-Channel1", "Loopback0"],
    "status": {
      "fapIdToName": {"7": "B", "3": "A"},
      "fapNumCores": {"3": 2, "7": 1},
      "fapRevision": {"3": {"major": 1}, "7": {"major": 2}},
      "sppidToIntfId": {"64": "Ethernet1", "65": "Ethernet1.5", "66": "Ethernet3"},
      "intfIdToSppid": {"Ethernet1": 64, "Ethernet1.5": 65, "Ethernet3": 66},
      "portMap": {"64": {"fapPortId": 1, "fapId": 3}, "65": {"fapPortId": 2, "fapId": 3}, "66": {"fapPortId": 1, "fapId": 7}},
      "subIntfNumVoqs": 4
    },
    "tmMapping": {"portTmMap": [64, 65, 66]},
    "internalLagStatus": {"lagIngressVoqCounterTable": ["Port-Channel1"]}
  })");
  Json& counters = state["counters"];
  constexpr std::pair<int, int> sources[] = {{3, 0}, {3, 1}, {7, 0}};
  const char* interfaces[] = {"Ethernet1", "Ethernet1.5", "Ethernet3", "Port-Channel1"};
  for (U64 intf = 1; intf <= 4; ++intf) {
    for (U64 source = 0; source < 3; ++source) {
      Json entry{{"fapId", sources[source].first},
                 {"coreId", sources[source].second},
                 {"intfId", interfaces[intf - 1]}};
      for (U64 t = 0; t < 8; ++t) entry["queues"].push_back(quad(ingressBase(intf, source, t)));
      counters["ingress"].push_back(entry);
    }
  }
  for (U64 t = 0; t < 12; ++t) {
    const auto pair = [&](EgressRecord record, U64 intf) {
      return Json{{"ucast", quad(egressBase(record, intf, t, DestType::unicast))},
                  {"mcast", quad(egressBase(record, intf, t, DestType::multicast))}};
    };
    counters["egressLag"]["Port-Channel1"]["queues"].push_back(pair(EgressRecord::lag, portChannel1));
    if (t >= 8) continue;
    counters["egress"]["Ethernet1"]["queues"].push_back(
        quad(egressBase(EgressRecord::portMode, ethernet1, t, DestType::unicast)));
    counters["egressTm"]["Ethernet3"]["queues"].push_back(pair(EgressRecord::queueMode, ethernet3));
  }
  counters["egressTm"]["Ethernet3"]["ambiguousTcs"] = {1};
  return state;
}

Json ingressSum(U64 intf, U64 t) {
  return plus(plus(quad(ingressBase(intf, 0, t)), quad(ingressBase(intf, 1, t))),
              quad(ingressBase(intf, 2, t)));
}

loamshow::CommandLine parsed(const std::vector<std::string>& arguments) {
  std::vector<std::string> words = {"loamshow"};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  return loamshow::parseCommandLine(static_cast<int>(argv.size()), argv.data());
}

std::string answer(const Json& state, const std::vector<std::string>& arguments, const Json* then) {
  const loamshow::CommandLine line = parsed(arguments);
  loamshow::History history("state");
  if (then != nullptr) history.beginAt("then", loamshow::parseState("then", then->dump()));
  const loamshow::Shown shown = history.advance(loamshow::parseState("state", state.dump()));
  const MemoryFile file;
  loamshow::answer(line, shown, "", file.fdNumber());
  return file.content();
}

std::string contentOf(const std::string& path) {
  std::ostringstream content;
  content << std::ifstream(path, std::ios::binary).rdbuf();
  return content.str();
}

void putWord(const std::string& path, U64 offset, U64 word) {
  std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
  file.seekp(static_cast<std::streamoff>(offset)).write(static_cast<char*>(static_cast<void*>(&word)), 8);
}

std::set<std::string> TemporaryDirectory::names() const {
  std::set<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(path_)) names.insert(entry.path().filename());
  return names;
}

}  // namespace loamtest

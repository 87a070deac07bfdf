#include "tests/AnswerParts.h"

#include <sstream>

#include "platform/Nexo.h"

namespace loamtest {

std::string columns(int width, const Json& quad) {
  std::string text;
  for (const Json& count : quad) text += line(" %*llu", width, count.get<unsigned long long>());
  return text.substr(1) + "\n";
}

std::string ingressHead(const std::string& title) {
  return title + "\n" +
         line("%-26s %-7s %18s %18s %18s %18s\n", "Egress", "Traffic", "Pkts", "Octets", "DropPkts",
              "DropOctets") +
         line("%-26s %-7s\n", "Port", "Class") + std::string(110, '-') + "\n";
}

std::string ingressRows(const std::string& name, const Labels& labels, const Quads& quads, int queueWidth) {
  std::string text;
  for (std::size_t i = 0; i < labels.size(); ++i) {
    text += line("%-26s %-*s ", name.c_str(), queueWidth, labels[i].c_str()) + columns(18, quads[i]);
  }
  return text;
}

Json ingressJson(const Labels& labels, const Quads& quads, const char* collection) {
  Json rows = Json::object();
  for (std::size_t i = 0; i < labels.size(); ++i) rows[labels[i]] = members(quads[i]);
  return {{collection, rows}};
}

std::string classHead(const std::string& title, const std::string& subtitle, bool withQueues) {
  const int width = withQueues ? 10 : 0;
  return title + "\n" + subtitle +
         line("%-26s %-*s %18s %18s %18s %18s\n", "CoPP Class", width, withQueues ? "Queue" : "", "Pkts",
              "Octets", "DropPkts", "DropOctets") +
         line("%-26s %-*s\n", "Aggregate", width, "") + std::string(withQueues ? 113 : 103, '-') + "\n";
}

Quads ingressQuads(U64 intf, std::optional<U64> source, U64 count) {
  Quads quads;
  for (U64 t = 0; t < count; ++t) {
    quads.push_back(source ? quad(ingressBase(intf, *source, t)) : ingressSum(intf, t));
  }
  return quads;
}

void addIngress(std::string& text, Json& interfaces, const std::string& name, const Labels& labels,
                const Quads& quads) {
  text += ingressRows(Nexo::IntfId(name).shortName().c_str(), labels, quads);
  interfaces[name] = ingressJson(labels, quads);
}

void addEgress(std::string& text, Json& interfaces, const std::string& name, const Labels& labels,
               EgressRecord record, U64 intf) {
  Json& json = interfaces[name] = Json::object();
  for (std::size_t i = 0; i < labels.size(); ++i) {
    // Only the LAG record has separate counts for pairs of classes, after the others.
    const U64 t = record == EgressRecord::lag ? i : static_cast<U64>(labels[i][2] - '0');
    for (const DestType destType : {DestType::unicast, DestType::multicast}) {
      const bool unicast = destType == DestType::unicast;
      const bool counted = unicast || record != EgressRecord::portMode;
      const Json counts = counted ? quad(egressBase(record, intf, t, destType)) : zeros;
      text += line("%-20s %-7s %-10s %-10s ", Nexo::IntfId(name).shortName().c_str(), labels[i].c_str(),
                   "DP0-3", unicast ? "UC" : "MC") +
              columns(17, counts);
      json[unicast ? "ucastQueues" : "mcastQueues"]["trafficClasses"][labels[i]]["dropPrecedences"]["DP0-3"] =
          members(counts);
    }
  }
}

std::vector<std::string> keysAt(const std::string& json, const std::string& path) {
  const Json members = Json::parse(json)[Json::json_pointer(path)];
  std::vector<std::string> keys;
  for (const auto& member : members.items()) keys.push_back(member.key());
  return keys;
}

std::vector<std::string> rowNames(const std::string& text) {
  std::vector<std::string> names;
  std::istringstream lines(text);
  for (std::string row; std::getline(lines, row);) {
    const std::string name = row.substr(0, row.find(' '));
    const bool isRow = row.size() > 100 && row.find("Pkts") == std::string::npos && row[0] != '-';
    if (isRow && (names.empty() || names.back() != name)) names.push_back(name);
  }
  return names;
}

}  // namespace loamtest

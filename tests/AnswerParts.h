#pragma once

// Parts of expected outputs, formatted as printf would.

#include <string>
#include <vector>

#include "tests/Support.h"

namespace loamtest {

using Labels = std::vector<std::string>;
using Quads = std::vector<Json>;

/// The four counts in columns of that width, and the line end.
std::string columns(int width, const Json& quad);
/// The heading of an ingress table by interface and traffic class.
std::string ingressHead(const std::string& title);
/// One interface's ingress rows, with a queue column of that width, and their collection in JSON.
std::string ingressRows(const std::string& name, const Labels& labels, const Quads& quads,
                        int queueWidth = 7);
Json ingressJson(const Labels& labels, const Quads& quads, const char* collection = "trafficClasses");
/// The headings of the egress queues, the CPU's egress queues, and the other commands.
std::string egressHead();
std::string cpuEgressHead();
std::string dropsHead();
/// The heading of a table of CoPP classes, and its possible second lines.
std::string classHead(const std::string& title, const std::string& subtitle, bool withQueues);
inline constexpr const char* queueTitle =
    "This indicates the sum of port-dependent queue counters across all input ports.\n";
inline constexpr const char* policerTitle =
    "This indicates the sum of packets permitted and denied by the port-dependent policers.\n";
inline constexpr const char* perChipTitle =
    "This indicates the sum of per-chip counts of packets permitted and denied by the port-dependent "
    "policers.\n";
std::string aclHead();
std::string mtuHead();
/// Quads of the small switch: of a source, and of the sum of the sources.
Quads ingressQuads(U64 intf, U64 source, U64 count = 8);
Quads ingressSums(U64 intf, U64 count = 8);

/// Adds an interface's rows to an expected text, and its object to the expected JSON, under its long name.
/// Egress rows are a unicast and a multicast one per label; a label of a pair has the counts of its first
/// class.
void addIngress(std::string& text, Json& interfaces, const std::string& name, const Labels& labels,
                const Quads& quads);
void addEgress(std::string& text, Json& interfaces, const std::string& name, const Labels& labels,
               EgressRecord record, U64 intf);

/// The names of the members at a path of a JSON text.
std::vector<std::string> keysAt(const std::string& json, const std::string& path);

/// The interfaces in the first column of a text's rows, once per run of rows.
std::vector<std::string> rowNames(const std::string& text);

}  // namespace loamtest

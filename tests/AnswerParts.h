#pragma once

// Parts of expected outputs, formatted as printf would.

#include <optional>
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
/// The heading of a table of CoPP classes, and its possible second lines.
std::string classHead(const std::string& title, const std::string& subtitle, bool withQueues);
inline constexpr const char* queueTitle =
    "This indicates the sum of port-dependent queue counters across all input ports.\n";
inline constexpr const char* policerTitle =
    "This indicates the sum of packets permitted and denied by the port-dependent policers.\n";
inline constexpr const char* perChipTitle =
    "This indicates the sum of per-chip counts of packets permitted and denied by the port-dependent "
    "policers.\n";
/// The headings of the egress queues, the CPU's egress queues, and the other commands.
inline const std::string egressHead =
    R"(Egress Queue Counters
Port                 Traffic DropPrec   DestType          OutEnqPkts      OutEnqOctets       OutDropPkts     OutDropOctets
                     Class
)";
inline const std::string cpuEgressHead = R"(Egress Queue Counters
Port                 DestType          OutEnqPkts      OutEnqOctets       OutDropPkts     OutDropOctets
)";
inline const std::string dropsHead =
    R"(Port              Class           EnqPkts         EnqOctets          DropPkts        DropOctets
-----------------------------------------------------------------------------------------------
)";
inline const std::string aclHead = R"(Aggregate Egress Acl Counters
Port            Source Pruning                Mlag
)";
inline const std::string mtuHead = R"(Aggregate Egress Mtu Counters
Switch                    EnqueuePkts            Discards           TotalPkts
)";
/// Quads of the small switch: of a source, or of the sum of the sources.
Quads ingressQuads(U64 intf, std::optional<U64> source, U64 count = 8);

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

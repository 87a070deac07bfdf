#pragma once

// The parts of expected answers, laid out as printf would.

#include <string>
#include <vector>

#include "tests/Support.h"

namespace loamtest {

using Labels = std::vector<std::string>;
using Quads = std::vector<Json>;

/// The head of an ingress block by interface and traffic class.
std::string ingressHead(const std::string& title);
/// One interface's ingress rows, with a queue column of that width, and their collection in JSON.
std::string ingressRows(const std::string& name, const Labels& labels, const Quads& quads,
                        int queueWidth = 7);
Json ingressJson(const Labels& labels, const Quads& quads, const char* collection = "trafficClasses");
/// The two heading lines of the egress queues.
std::string egressHead();
/// One interface's egress rows, a unicast and a multicast one per label, and their object in JSON.
std::string egressRows(const std::string& name, const Labels& labels, const Quads& ucast, const Quads& mcast);
Json egressJson(const Labels& labels, const Quads& ucast, const Quads& mcast);

/// Quads of the small switch.
Quads ingressQuads(U64 intf, U64 source, int count = 8);
Quads ingressSums(U64 intf, int count = 8);
Quads egressQuads(U64 kind, U64 intf, U64 destType, const std::vector<U64>& tcs);

/// The interfaces of a text answer's rows, from its first column, each once for every run of rows.
std::vector<std::string> rowNames(const std::string& text);

}  // namespace loamtest

#include <memory>

#include "LoamCounters/QueueCountersPrinter/EgressRows.h"
#include "LoamCounters/QueueCountersPrinter/IngressRows.h"
#include "LoamCounters/QueueCountersPrinter/Labels.h"
#include "bench/Benches.h"
#include "bench/Memory.h"
#include "bench/Rounds.h"
#include "bench/Rows.h"
#include "bench/Values.h"

namespace loambench {

using namespace LoamCounters;

Rows::Rows() : labels(queueNamesByQueuesPerPort(trafficClasses, trafficClasses)) {
  constexpr std::size_t interfaces = 250;
  for (std::size_t i = 0; i < interfaces; ++i) {
    intfs.emplace_back("Ethernet" + std::to_string(1 + i / 48) + "/" + std::to_string(1 + i % 48));
    IngressTcCounter record;
    for (U64 t = 0; t < trafficClasses; ++t) {
      record.queueIs(IngressCounterIndex(t), {busyQuad(i * trafficClasses + t)});
    }
    records.push_back(record);
  }
}

namespace {

template <U32 format>
void ingress(const Rows& rows, std::string* kept) {
  MemoryPrinter printer(format, kept);
  QueueCountersAttrs attrs(printer);
  printer.start();
  printer.startDict("interfaces");
  for (std::size_t i = 0; i < rows.intfs.size(); ++i) {
    printIngressCounters(printer, rows.intfs[i], rows.intfs[i].stringValue(), trafficClasses, rows.labels,
                         trafficClassColWidth, false, false, rows.records[i], attrs);
  }
  printer.endDict();
  printer.end();
  printer.close();
}

void egress(const Rows& rows, std::string* kept) {
  MemoryPrinter printer(tabula::formatText, kept);
  QueueCountersAttrs attrs(printer);
  for (std::size_t i = 0; i < rows.intfs.size(); ++i) {
    for (U32 t = 0; t < trafficClasses; ++t) {
      printEgressCounters(printer, tabula::formatText, rows.intfs[i], t, trafficClasses - 1, rows.labels[t],
                          t + 1, allDpLabel, destTypeUnicast, false, rows.quad(i, t), attrs);
    }
  }
  printer.close();
}

struct Peer {
  const char* name;
  Render render;
  double target;
};

void compare(Measurements& all, const std::string& what, Render ours, const std::vector<Peer>& peers) {
  Measurement measurement;
  for (const Peer& peer : peers) {
    measurement.figures.push_back(
        {what + ": " + peer.name + " / plug-in",
         "the time that 2,000 rows in memory take with " + std::string(peer.name) + ", over the plug-in's",
         atLeast(peer.target)});
  }
  measurement.measure = [=] {
    constexpr int rounds = 1001;
    const auto rows = std::make_shared<Rows>();
    std::string expected;
    ours(*rows, &expected);
    std::vector<Way> ways = {here([=] { ours(*rows, nullptr); })};
    for (const Peer& peer : peers) {
      std::string bytes;
      peer.render(*rows, &bytes);
      requireSame(what + " by " + peer.name, expected, bytes);
      ways.push_back(here([=, render = peer.render] { render(*rows, nullptr); }));
    }
    const std::vector<Times> times = inRounds(rounds, ways);
    std::vector<double> ratios;
    for (std::size_t i = 1; i < times.size(); ++i) ratios.push_back(ratio(times[i], times[0]));
    return ratios;
  };
  all.push_back(std::move(measurement));
}

}  // namespace

void addRows(Measurements& all) {
  compare(all, "ingress rows, text", ingress<tabula::formatText>,
          {{"snprintf", snprintfIngress, 6.5}, {"{fmt}", fmtIngress, 4}});
  compare(all, "egress rows, text", egress, {{"snprintf", snprintfEgress, 6.5}, {"{fmt}", fmtEgress, 4}});
  compare(all, "ingress rows, JSON", ingress<tabula::formatJson>, {{"RapidJSON", rapidJsonIngress, 4}});
}

}  // namespace loambench

#pragma once

// The rows of 2,000 interfaces of 8 traffic classes, and what renders them into memory. Each function
// discards its output or, for a comparison, appends it to `kept`.

#include <string>
#include <vector>

#include "platform/CounterAgent.h"
#include "platform/Mote.h"
#include "platform/Nexo.h"

namespace loambench {

struct Rows {
  Rows();

  /// Calls row(shortName, label, quad) for each row.
  template <class Row>
  void each(Row row) const {
    for (std::size_t i = 0; i < intfs.size(); ++i) {
      const char* name = intfs[i].shortName().c_str();
      for (U32 t = 0; t < labels.size(); ++t) row(name, labels[t].c_str(), quad(i, t));
    }
  }
  const LoamCounters::CounterQuad& quad(std::size_t i, U32 t) const {
    return records[i][LoamCounters::IngressCounterIndex(t)];
  }

  std::vector<Mote::String> labels;
  std::vector<Nexo::IntfId> intfs;
  std::vector<LoamCounters::IngressTcCounter> records;
};

using Render = void (*)(const Rows&, std::string* kept);

void snprintfIngress(const Rows& rows, std::string* kept);
void snprintfEgress(const Rows& rows, std::string* kept);
void fmtIngress(const Rows& rows, std::string* kept);
void fmtEgress(const Rows& rows, std::string* kept);
void rapidJsonIngress(const Rows& rows, std::string* kept);

}  // namespace loambench

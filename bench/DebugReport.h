#pragma once

// A large debug report.

#include <vector>

#include "LoamCounters/DebugCountersPrinter/DescriptorMappings.h"
#include "platform/BrimCounters.h"
#include "platform/tabula.h"

namespace loambench {

/// A FAP with 200 blocks of 500 debug counters.
class DebugReport {
 public:
  DebugReport();

  /// Writes the report.
  void answer(int fd) const;
  /// Prints its lines by the plug-in's functions, from values and names that lie in their order.
  void printRows(tabula::Printer& printer) const;

 private:
  std::vector<Brim::Counters::Counter> values_;
  std::vector<Mote::String> names_;  // of each block's counters
  LoamCounters::FapDescriptorMapping::Ptr descriptors_;
  LoamCounters::ShmemMgrMapping::Ptr managers_;
};

}  // namespace loambench

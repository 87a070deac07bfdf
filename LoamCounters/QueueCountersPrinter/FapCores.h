#pragma once

// The walk over FAPs and their cores.

#include <algorithm>
#include <vector>

#include "LoamCounters/QueueCountersPrinter/Labels.h"
#include "platform/HardwareLoam.h"
#include "platform/Mote.h"

namespace LoamCounters {

/// A walk over the cores of the switch's FAPs in ascending order, repeatable within one command. FAPs without
/// cores are skipped. The walk keeps a copy of the names and numbers of cores. It reads the status again only
/// if these have changed, and continues with the next higher FAP.
class FapCores {
 public:
  /// When the walk increments the core number, which checks its range.
  enum class Step : U8 { toAnotherCore, afterEveryCore };

  explicit FapCores(Hardware::Loam::Status::PtrConst status) : status_(std::move(status)) {}

  /// Calls visit(fapId, coreId, label) for each core. Throws the core number's range error on a step beyond
  /// the highest core.
  template <class Visit>
  void walk(Step step, Visit visit) {
    if (!current()) read();
    for (std::size_t at = 0; at < faps_.size();) {
      const Fap& fap = faps_[at];
      const Hardware::Loam::FapId fapId = fap.id;
      Hardware::Loam::LocalCoreId core{0};
      for (U16 left = fap.numCores; left > 0; --left) {
        visit(fapId, core, fap.coreLabels[core.value()]);
        if (left > 1 || step == Step::afterEveryCore) ++core;
      }
      if (current()) {
        ++at;
      } else {
        read();
        at = firstAbove(fapId);
      }
    }
  }

 private:
  struct Fap {
    Hardware::Loam::FapId id;
    U16 numCores;
    std::vector<Mote::String> coreLabels;  // for the cores in the range of core numbers
  };

  bool current() const;
  void read();
  std::size_t firstAbove(Hardware::Loam::FapId fapId) const;

  Hardware::Loam::Status::PtrConst status_;
  std::vector<Fap> faps_;
  // Whether faps_ was read, and the versions of the status collections at that time.
  bool wasRead_ = false;
  U32 namesVersion_ = 0;
  U32 coresVersion_ = 0;
};

}  // namespace LoamCounters

#pragma once

#include <algorithm>
#include <vector>

#include "LoamCounters/QueueCountersPrinter/Labels.h"
#include "platform/HardwareLoam.h"
#include "platform/Mote.h"

namespace LoamCounters {

/// A walk over the cores of the switch's FAPs in ascending order, repeatable within one command. FAPs without
/// cores are passed over. What the walk reads of the status is read again only when the status has changed;
/// then the walk goes on with the next higher FAP.
class FapCores {
 public:
  /// When a step to the next core passes the core number's range check.
  enum class Step : U8 { toAnotherCore, afterEveryCore };

  explicit FapCores(Hardware::Loam::Status::PtrConst status) : status_(std::move(status)) {}

  /// Calls visit(fapId, coreId, label) for each core. Raises the core number's range error on a step past the
  /// highest core.
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
    std::vector<Mote::String> coreLabels;  // of the cores within the core number's range
  };

  bool current() const;
  void read();
  std::size_t firstAbove(Hardware::Loam::FapId fapId) const;

  Hardware::Loam::Status::PtrConst status_;
  std::vector<Fap> faps_;
  // The versions of the status collections that faps_ was read from, once it was.
  bool wasRead_ = false;
  U32 namesVersion_ = 0;
  U32 coresVersion_ = 0;
};

}  // namespace LoamCounters

#include "LoamCounters/QueueCountersPrinter/CoppClasses.h"

namespace LoamCounters {

namespace {

using Hardware::Loam::Status;
using Hardware::Loam::SystemPhyPortId;

/// A set that is filled by the first call that finds something to put into it.
class FilledOnce {
 public:
  template <class Fill>
  IntfIdSet get(Fill fill) {
    if (!filled_.load(std::memory_order_acquire)) {
      const std::lock_guard lock(filling_);
      if (set_.empty()) fill(set_);
      if (set_.empty()) return {};
      filled_.store(true, std::memory_order_release);
    }
    return set_;
  }

 private:
  std::mutex filling_;
  std::atomic<bool> filled_{false};
  IntfIdSet set_;
};

}  // namespace

void countersPerCpuClassHelper(U32 first, U32 last, const Status::PtrConst& status, IntfIdSet& set) {
  for (U32 port = first; port <= last; ++port) {
    const Nexo::IntfId intf = status->sppidToIntfId.get(SystemPhyPortId(port));
    if (intf != Nexo::IntfId()) set.insert(intf);
  }
}

IntfIdSet coppQueueClasses(const Status::PtrConst& status) {
  static FilledOnce classes;
  return classes.get([&](IntfIdSet& set) {
    countersPerCpuClassHelper(24, 56, status, set);
    countersPerCpuClassHelper(2, 2, status, set);
  });
}

IntfIdSet coppPolicerClasses(const Status::PtrConst& status) {
  static FilledOnce classes;
  return classes.get([&](IntfIdSet& set) { countersPerCpuClassHelper(12, 22, status, set); });
}

}  // namespace LoamCounters

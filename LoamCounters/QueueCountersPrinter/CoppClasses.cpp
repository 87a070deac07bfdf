#include "LoamCounters/QueueCountersPrinter/CoppClasses.h"

#include <atomic>
#include <memory>

namespace LoamCounters {

namespace {

using Hardware::Loam::Status;
using Hardware::Loam::SystemPhyPortId;

/// A set that is filled by the first call that finds a member, and kept until the process ends.
class FilledOnce {
 public:
  template <class Fill>
  IntfIdSet get(Fill fill) {
    const IntfIdSet* published = set_.load(std::memory_order_acquire);
    if (published == nullptr) {
      auto filled = std::make_unique<IntfIdSet>();
      fill(*filled);
      if (filled->empty()) return {};
      // If several threads come here, only one stores its set.
      if (set_.compare_exchange_strong(published, filled.get())) published = filled.release();
    }
    return *published;
  }

 private:
  std::atomic<const IntfIdSet*> set_{nullptr};
};

}  // namespace

void countersPerCpuClassHelper(U32 first, U32 last, const Status::PtrConst& status, IntfIdSet& set) {
  for (U32 port = first; port <= last; ++port) {
    const Nexo::IntfId intf = status->sppidToIntfId.get(SystemPhyPortId(port));
    if (intf != Nexo::IntfId()) set.insert(intf);
  }
}

IntfIdSet coppQueueClasses(const Status::PtrConst& status) {
  static constinit FilledOnce classes;
  return classes.get([&](IntfIdSet& set) {
    countersPerCpuClassHelper(24, 56, status, set);
    countersPerCpuClassHelper(2, 2, status, set);
  });
}

IntfIdSet coppPolicerClasses(const Status::PtrConst& status) {
  static constinit FilledOnce classes;
  return classes.get([&](IntfIdSet& set) { countersPerCpuClassHelper(12, 22, status, set); });
}

}  // namespace LoamCounters

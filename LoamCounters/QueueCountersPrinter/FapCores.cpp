#include "LoamCounters/QueueCountersPrinter/FapCores.h"

namespace LoamCounters {

using Hardware::Loam::FapId;
using Hardware::Loam::LocalCoreId;

bool FapCores::current() const {
  return wasRead_ && namesVersion_ == status_->fapIdToName.version() &&
         coresVersion_ == status_->fapNumCores.version();
}

void FapCores::read() {
  faps_.clear();
  for (const auto& [id, name] : status_->fapIdToName) {
    Fap fap{id, status_->fapNumCores.get(id), {}};
    if (fap.numCores == 0) continue;
    const U16 labelled = std::min<U16>(fap.numCores, LocalCoreId::highest + 1);
    for (U16 core = 0; core < labelled; ++core) {
      fap.coreLabels.push_back(fapCoreLabel(name, LocalCoreId(core), fap.numCores));
    }
    faps_.push_back(std::move(fap));
  }
  namesVersion_ = status_->fapIdToName.version();
  coresVersion_ = status_->fapNumCores.version();
  wasRead_ = true;
}

std::size_t FapCores::firstAbove(FapId fapId) const {
  const auto above = std::find_if(faps_.begin(), faps_.end(), [&](const Fap& fap) { return fap.id > fapId; });
  return static_cast<std::size_t>(above - faps_.begin());
}

}  // namespace LoamCounters

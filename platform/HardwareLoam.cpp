#include "platform/HardwareLoam.h"

namespace Hardware::Loam {

namespace {

// NOLINTBEGIN(cppcoreguidelines-avoid-non-const-global-variables): properties of the switch
VoqId fabricMcastMin{0};
VoqId fabricMcastMax{7};
// NOLINTEND(cppcoreguidelines-avoid-non-const-global-variables)

}  // namespace

VoqId VoqId::fabricMcastVoqMinVal() {
  return fabricMcastMin;
}

VoqId VoqId::fabricMcastVoqMaxVal() {
  return fabricMcastMax;
}

void VoqId::fabricMcastVoqRangeIs(VoqId min, VoqId max) {
  VANE_ASSERT(min <= max);
  fabricMcastMin = min;
  fabricMcastMax = max;
}

U32 countersPerEntryForQueueEgress() {
  return 2;
}

PortMap Status::portMap(SystemPhyPortId port) const {
  const PortMap* place = portMaps.find(port);
  return place == nullptr ? PortMap{FapPortId{0}, nullFap, LocalCoreId{0}} : *place;
}

}  // namespace Hardware::Loam

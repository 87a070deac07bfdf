#pragma once

// LoamTm, the traffic-manager mapping.

#include "platform/HardwareLoam.h"
#include "platform/Mote.h"
#include "platform/Vane.h"

namespace LoamTm {

class TmMapping : public Mote::Node {
 public:
  using Ptr = Mote::Ptr<TmMapping>;
  using PtrConst = Mote::Ptr<const TmMapping>;
  static constexpr std::string_view vaneName = "LoamTm::TmMapping";

  /// The system ports that have traffic-manager queues.
  Vane::HashMap<Hardware::Loam::SystemPhyPortId, bool> portTmMap;
};

}  // namespace LoamTm

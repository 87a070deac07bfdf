#pragma once

// The state of the Loam chips: identifiers and the status objects that the CLI mounts.

#include <compare>
#include <string_view>

#include "platform/Mote.h"
#include "platform/Nexo.h"
#include "platform/Vane.h"

namespace Hardware::Loam {

/// A chip; 2047 is the null FAP.
class FapId : public Vane::Identifier<FapId, U16, 0, 0x7ff> {
 public:
  static constexpr std::string_view vaneName = "Hardware::Loam::FapId";
  static constexpr std::string_view upperName = "null";
  using Identifier::Identifier;

  constexpr bool isNull() const noexcept { return value() == highest; }
};

/// A core within its chip.
class LocalCoreId : public Vane::Identifier<LocalCoreId, U16, 0, 6> {
 public:
  static constexpr std::string_view vaneName = "Hardware::Loam::LocalCoreId";
  static constexpr std::string_view upperName = "null";
  using Identifier::Identifier;
};

/// Together with the null FAP, requests the sum over all FAPs and cores from a counter accessor.
inline constexpr FapId nullFap{FapId::highest};
inline constexpr LocalCoreId aggregateCore{5};

/// A port in the switch-wide numbering; 32767 is the null port.
class SystemPhyPortId : public Vane::Identifier<SystemPhyPortId, U16, 2, 0x7fff> {
 public:
  static constexpr std::string_view vaneName = "Hardware::Loam::SystemPhyPortId";
  static constexpr std::string_view upperName = "null";
  using Identifier::Identifier;
};

inline constexpr SystemPhyPortId nullPort{SystemPhyPortId::highest};

/// A port in the numbering of its chip.
class FapPortId : public Vane::Identifier<FapPortId, U16, 0, 256> {
 public:
  static constexpr std::string_view vaneName = "Hardware::Loam::FapPortId";
  static constexpr std::string_view upperName = "null";
  using Identifier::Identifier;
};

/// A virtual output queue. The fabric multicast range is a property of the switch, both ends inclusive.
class VoqId : public Vane::Identifier<VoqId, U32, 0, 0xffffffff> {
 public:
  static constexpr std::string_view vaneName = "Hardware::Loam::VoqId";
  static constexpr std::string_view upperName = "max";
  using Identifier::Identifier;

  static VoqId fabricMcastVoqMinVal();
  static VoqId fabricMcastVoqMaxVal();
  /// Call before commands run. The default is 0 to 7. `max` must not be below `min`.
  static void fabricMcastVoqRangeIs(VoqId min, VoqId max);
};

/// The number of counter quads of one egress queue: one per destination type.
U32 countersPerEntryForQueueEgress();

/// The chip and core of a port, and its number there.
struct PortMap {
  FapPortId fapPortId{0};
  FapId fapId{0};
  LocalCoreId coreId{0};

  friend auto operator<=>(const PortMap&, const PortMap&) = default;
  std::size_t hash() const noexcept {
    return (std::size_t{fapPortId.value()} << 32U) | (std::size_t{fapId.value()} << 16U) | coreId.value();
  }
};

/// A recirculation port, ordered by type, then id.
struct RecircPort {
  U8 recircType = 0;
  U16 id = 0;

  friend auto operator<=>(const RecircPort&, const RecircPort&) = default;
};

using FapRevMajor = U32;

struct FapRevision {
  FapRevMajor major = 0;
};

/// The chips' status. It has one writer; all readers have a PtrConst.
class Status : public Mote::Node {
 public:
  using Ptr = Mote::Ptr<Status>;
  using PtrConst = Mote::Ptr<const Status>;
  static constexpr std::string_view vaneName = "Hardware::Loam::Status";

  Vane::OrderedMap<FapId, Mote::String> fapIdToName;
  Vane::OrderedMap<FapId, U16> fapNumCores;
  Vane::HashMap<FapId, FapRevision> fapRevision;
  Vane::HashMap<SystemPhyPortId, Nexo::IntfId> sppidToIntfId;
  Vane::HashMap<Nexo::IntfId, SystemPhyPortId> intfIdToSppid;
  Vane::HashMap<SystemPhyPortId, PortMap> portMaps;
  Vane::HashMap<PortMap, Nexo::IntfId> portMapToIntfId;
  Vane::OrderedMap<U16, SystemPhyPortId> olpPort;
  Vane::OrderedMap<U16, SystemPhyPortId> erpPort;
  Vane::OrderedMap<RecircPort, SystemPhyPortId> recircPort;
  Vane::OrderedMap<U16, SystemPhyPortId> fabricMeshDropPort;
  Vane::HashMap<Mote::String, SystemPhyPortId> fapToSflowAccelSppid;  // by FAP name
  Vane::OrderedMap<U16, SystemPhyPortId> ipsecPort;
  Vane::OrderedMap<FapId, SystemPhyPortId> eventorPort;
  bool cpuRecircEnabled = false;
  U8 subIntfNumVoqs = 0;     // VOQs of a sub-interface
  U16 coppClassNumVoqs = 0;  // VOQs of one CoPP class on one core

  /// The port's place; a port map with the null FAP for an unknown port.
  PortMap portMap(SystemPhyPortId port) const;
};

class InternalLagClientStatus : public Mote::Node {
 public:
  using Ptr = Mote::Ptr<InternalLagClientStatus>;
  using PtrConst = Mote::Ptr<const InternalLagClientStatus>;
  static constexpr std::string_view vaneName = "Hardware::Loam::InternalLagClientStatus";

  /// The interfaces whose ingress VOQ counters are in the LAG counter table.
  Vane::HashMap<Nexo::IntfId, bool> lagIngressVoqCounterTable;
};

class CounterEngineStatus : public Mote::Node {
 public:
  using PtrConst = Mote::Ptr<const CounterEngineStatus>;
  static constexpr std::string_view vaneName = "Hardware::Loam::CounterEngineStatus";
};

}  // namespace Hardware::Loam

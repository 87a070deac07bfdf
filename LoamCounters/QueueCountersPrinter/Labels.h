#pragma once

// Labels of traffic classes, FAP cores and destination types.

#include <vector>

#include "platform/HardwareLoam.h"
#include "platform/Mote.h"

namespace LoamCounters {

inline constexpr U32 destTypeUnicast = 0;
inline constexpr U32 destTypeMulticast = 1;

/// Traffic classes per port: the number of queues of an ordinary interface.
inline constexpr U32 trafficClasses = 8;

/// The queues of an ordinary interface: "TC0" to "TC7".
extern const std::vector<Mote::String> queueLabels;
/// Index i from 0 to 3: the label of the counter that traffic classes i and i + 4 share.
extern const std::vector<Mote::String> fapAmbiguousTcLabel;
/// The label of all four drop precedences.
extern const Mote::String allDpLabel;

/// The traffic classes that counter `index` covers, of `countersPerPort` (1 to 8) counters: "TC3", "TC2-3".
/// With `ambiguous`, the pair that traffic class `index` (below 4) shares a counter with: "TC1,5".
Mote::String trafficClassLabel(U32 index, U32 countersPerPort, U32 tcPerPort, bool ambiguous);

/// The labels of a port's queues, in order; empty for a port without queues.
std::vector<Mote::String> queueNamesByQueuesPerPort(U32 queuesPerPort, U32 tcPerPort);

/// The FAP's name, with the core number if the FAP has several cores: "X.1".
Mote::String fapCoreLabel(const Mote::String& fapName, Hardware::Loam::LocalCoreId coreId,
                          unsigned short numCores);

/// The name of a destination type: the text of a column, or in JSON the name of a submodel.
Mote::String destTypeLabel(U32 destType, U32 fmt);

}  // namespace LoamCounters

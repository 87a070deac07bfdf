#pragma once

// The output descriptors that the queue commands share.

#include "platform/CounterAgent.h"
#include "platform/tabula.h"

namespace LoamCounters {

/// The output descriptors of one queue command. Those for texts are initially empty and are used as
/// dictionary keys and text columns; those for counters have no value until a row sets one.
struct QueueCountersAttrs {
  explicit QueueCountersAttrs(tabula::Printer& printer);

  void setCounters(const CounterQuad& counters) {
    enqueuedPacketsAttr.setValue(counters.enqueuedPackets);
    enqueuedBytesAttr.setValue(counters.enqueuedBytes);
    droppedPacketsAttr.setValue(counters.droppedPackets);
    droppedBytesAttr.setValue(counters.droppedBytes);
  }

  tabula::StringAttrInfo sourceAttr;    // a FAP core's label, or "all"
  tabula::StringAttrInfo intfAttr;      // the interface's long name
  tabula::StringAttrInfo queueAttr;     // a traffic class, a port or a queue number
  tabula::StringAttrInfo dropPrecAttr;  // drop precedences
  tabula::StringAttrInfo destTypeAttr;
  tabula::Attr64Info enqueuedPacketsAttr;
  tabula::Attr64Info enqueuedBytesAttr;
  tabula::Attr64Info droppedPacketsAttr;
  tabula::Attr64Info droppedBytesAttr;
};

}  // namespace LoamCounters

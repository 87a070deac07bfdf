#include "LoamCounters/QueueCountersPrinter/QueueCountersAttrs.h"

namespace LoamCounters {

QueueCountersAttrs::QueueCountersAttrs(tabula::Printer& printer)
    : sourceAttr("", printer),
      intfAttr("", printer),
      queueAttr("", printer),
      dropPrecAttr("", printer),
      destTypeAttr("", printer),
      enqueuedPacketsAttr("enqueuedPackets", printer),
      enqueuedBytesAttr("enqueuedBytes", printer),
      droppedPacketsAttr("droppedPackets", printer),
      droppedBytesAttr("droppedBytes", printer) {
  for (auto* attr : {&sourceAttr, &intfAttr, &queueAttr, &dropPrecAttr, &destTypeAttr}) attr->setValue("");
}

}  // namespace LoamCounters

#include "platform/counteragent/Records.h"

namespace LoamCounters {

constinit const IngressCounter IngressTcCounter::zero_{};

void IngressTcCounter::queueIs(IngressCounterIndex queue, const IngressCounter& counter) noexcept {
  while (size_ <= queue.value()) queues_[size_++] = IngressCounter();
  queues_[queue.value()] = counter;
}

}  // namespace LoamCounters

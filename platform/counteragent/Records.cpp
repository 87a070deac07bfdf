#include "platform/counteragent/Records.h"

namespace LoamCounters {

constinit const IngressCounter IngressTcCounter::zero_{};

void IngressTcCounter::queueIs(IngressCounterIndex queue, const IngressCounter& counter) noexcept {
  while (size_ <= queue.value()) queues_[size_++] = IngressCounter();
  queues_[queue.value()] = counter;
}

IngressTcCounter& IngressTcCounter::operator+=(const IngressTcCounter& other) noexcept {
  total += other.total;
  while (size_ < other.size_) queues_[size_++] = IngressCounter();
  for (std::size_t i = 0; i < other.size_; ++i) queues_[i] += other.queues_[i];
  return *this;
}

}  // namespace LoamCounters

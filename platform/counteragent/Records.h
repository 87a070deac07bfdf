#pragma once

// Counter records: quads, and the ingress, egress and MTU records of an interface or FAP.

#include <algorithm>
#include <array>
#include <span>
#include <string_view>

#include "platform/HardwareLoam.h"
#include "platform/Keel.h"
#include "platform/Mote.h"
#include "platform/Nexo.h"
#include "platform/Vane.h"

namespace LoamCounters {

using Hardware::Loam::FapId;
using Hardware::Loam::LocalCoreId;

/// Four counts of one queue, or sums over queues, modulo 2^64. A trivial type, so that records need not
/// initialize all their quads: `CounterQuad()` is all zero, a bare declaration is uninitialized.
struct CounterQuad {
  U64 enqueuedPackets;
  U64 enqueuedBytes;
  U64 droppedPackets;
  U64 droppedBytes;

  CounterQuad& operator+=(const CounterQuad& other) noexcept {
    enqueuedPackets += other.enqueuedPackets;
    enqueuedBytes += other.enqueuedBytes;
    droppedPackets += other.droppedPackets;
    droppedBytes += other.droppedBytes;
    return *this;
  }
  friend CounterQuad operator+(CounterQuad left, const CounterQuad& right) noexcept { return left += right; }
  bool operator==(const CounterQuad&) const = default;
};

/// The counts of one ingress queue.
struct IngressCounter : CounterQuad {
  static constexpr std::string_view vaneName = "LoamCounters::IngressCounter";
};

class IngressCounterIndex : public Vane::Identifier<IngressCounterIndex, U8, 0, 79> {
 public:
  static constexpr std::string_view vaneName = "LoamCounters::IngressCounterIndex";
  static constexpr std::string_view upperName = "max";
  using Identifier::Identifier;
};

/// The ingress counters of one interface on one FAP core: the total, and each queue. Only the queues up to
/// the last one that was set are stored and copied; the others read as zero.
class IngressTcCounter {
 public:
  static constexpr std::size_t capacity = std::size_t{IngressCounterIndex::highest} + 1;

  IngressCounter total{};

  IngressTcCounter() noexcept {}  // NOLINT(modernize-use-equals-default): the queues stay uninitialized
  /// `queues` has at most 80.
  IngressTcCounter(const IngressCounter& sum, std::span<const IngressCounter> queues) noexcept
      : total(sum), size_(static_cast<U32>(queues.size())) {
    std::copy_n(queues.begin(), size_, queues_.begin());
  }
  IngressTcCounter(const IngressTcCounter& other) noexcept : total(other.total), size_(other.size_) {
    std::copy_n(other.queues_.begin(), size_, queues_.begin());
  }
  IngressTcCounter& operator=(const IngressTcCounter& other) noexcept {
    total = other.total;
    size_ = other.size_;
    std::copy_n(other.queues_.begin(), size_, queues_.begin());
    return *this;
  }
  ~IngressTcCounter() = default;

  const IngressCounter& operator[](IngressCounterIndex queue) const noexcept {
    return queue.value() < size_ ? queues_[queue.value()] : zero_;
  }
  void queueIs(IngressCounterIndex queue, const IngressCounter& counter) noexcept;
  /// Sets the number of queues, at most 80; the caller sets the queues.
  std::span<IngressCounter> unsetQueues(std::size_t count) noexcept {
    size_ = static_cast<U32>(count);
    return {queues_.data(), count};
  }
  /// Adds the total and each queue.
  IngressTcCounter& operator+=(const IngressTcCounter& other) noexcept;
  std::span<const IngressCounter> queues() const noexcept { return {queues_.data(), size_}; }

 private:
  static const IngressCounter zero_;

  U32 size_ = 0;
  std::array<IngressCounter, capacity> queues_;  // the first size_ are set
};

class EgressCounterIndex : public Vane::Identifier<EgressCounterIndex, U8, 0, 31> {
 public:
  static constexpr std::string_view vaneName = "LoamCounters::EgressCounterIndex";
  static constexpr std::string_view upperName = "max";
  using Identifier::Identifier;
};

class EgressTmCounterIndex : public Vane::Identifier<EgressTmCounterIndex, U8, 0, 63> {
 public:
  static constexpr std::string_view vaneName = "LoamCounters::EgressTmCounterIndex";
  static constexpr std::string_view upperName = "max";
  using Identifier::Identifier;
};

class EgressLagCounterIndex : public Vane::Identifier<EgressLagCounterIndex, U8, 0, 127> {
 public:
  static constexpr std::string_view vaneName = "LoamCounters::EgressLagCounterIndex";
  static constexpr std::string_view upperName = "max";
  using Identifier::Identifier;
};

/// Egress counts of one interface: the total, then four consecutive counts per queue.
template <class CountIndex>
struct EgressCounts {
  using Index = CountIndex;
  static constexpr std::size_t quads = (std::size_t{Index::highest} + 1) / 4;

  CounterQuad total{};
  std::array<U64, 4 * quads> counts{};

  U64 operator[](Index index) const noexcept { return counts[index.value()]; }
  /// The four counts from `first` on; throws the index type's range error if one is beyond the record.
  CounterQuad quad(U64 first) const {
    const std::size_t at = Index(first).value();
    static_cast<void>(Index(first + 3));
    return {counts[at], counts[at + 1], counts[at + 2], counts[at + 3]};
  }
  void quadIs(Index first, const CounterQuad& quad) noexcept {
    const std::size_t at = first.value();
    counts[at] = quad.enqueuedPackets;
    counts[at + 1] = quad.enqueuedBytes;
    counts[at + 2] = quad.droppedPackets;
    counts[at + 3] = quad.droppedBytes;
  }
};

/// EGQ port mode: a quad per traffic class, unicast only.
struct EgressCounter : EgressCounts<EgressCounterIndex> {};

/// EGQ queue mode: per traffic class a unicast and a multicast quad.
struct EgressTmCounter : EgressCounts<EgressTmCounterIndex> {
  /// Index: the low two bits of a traffic class t. Whether t and t + 4 share one counter.
  std::array<bool, 4> tcLsbOfAmbiguousTcs{};
};

/// A port channel: per traffic class, then per shared pair of classes, a unicast and a multicast quad.
struct EgressLagCounter : EgressCounts<EgressLagCounterIndex> {};

/// The egress MTU counts of one FAP.
class EgressMtuCounter {
 public:
  EgressMtuCounter() = default;
  EgressMtuCounter(Keel::MaybeU63 enqueued, Keel::MaybeU63 dropped, Keel::MaybeU63 total)
      : enqueued_(enqueued), dropped_(dropped), total_(total) {}

  Keel::MaybeU63 enqueuedPackets() const noexcept { return enqueued_; }
  Keel::MaybeU63 droppedPackets() const noexcept { return dropped_; }
  Keel::MaybeU63 totalCounter() const noexcept { return total_; }

 private:
  Keel::MaybeU63 enqueued_;
  Keel::MaybeU63 dropped_;
  Keel::MaybeU63 total_;
};

struct IngressCounterKey {
  Nexo::IntfId intfId;
  FapId fapId;
  LocalCoreId coreId;
  U8 trafficClass;
};

struct EgressCounterKey {
  Nexo::IntfId intfId;
  U8 entry;  // defined by the counter agent; every command uses 56
};

}  // namespace LoamCounters

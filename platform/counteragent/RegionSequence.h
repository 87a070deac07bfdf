#pragma once

// Writes and reads one record of a region consistently. Every word is atomic, so that concurrent reads and
// writes are defined. Loads acquire and stores release; fences would do, but ThreadSanitizer does not support
// them. On x86 both are plain moves.

#include <atomic>

#include "platform/counteragent/Records.h"

namespace LoamCounters::region {

inline U64 loadWord(U64& word) noexcept {
  return std::atomic_ref(word).load(std::memory_order_acquire);
}

inline void storeWord(U64& word, U64 value) noexcept {
  std::atomic_ref(word).store(value, std::memory_order_release);
}

inline CounterQuad loadQuad(U64* words) noexcept {
  return {loadWord(words[0]), loadWord(words[1]), loadWord(words[2]), loadWord(words[3])};
}

inline void storeQuad(U64* words, const CounterQuad& quad) noexcept {
  storeWord(words[0], quad.enqueuedPackets);
  storeWord(words[1], quad.enqueuedBytes);
  storeWord(words[2], quad.droppedPackets);
  storeWord(words[3], quad.droppedBytes);
}

/// Calls `copy` with the content of a record. False if it was being written: the copy is then inconsistent.
template <class Copy>
bool readOnce(U64* record, Copy& copy) {
  const U64 before = loadWord(record[0]);
  if (before % 2 != 0) return false;
  copy(record + 1);
  return std::atomic_ref(record[0]).load(std::memory_order_relaxed) == before;
}

/// Calls `fill` to store the content of a record, which must have no other writer.
template <class Fill>
void writeRecord(U64* record, Fill fill) {
  const U64 odd = std::atomic_ref(record[0]).load(std::memory_order_relaxed) | 1U;
  std::atomic_ref(record[0]).store(odd, std::memory_order_relaxed);
  fill(record + 1);
  storeWord(record[0], odd + 1);
}

}  // namespace LoamCounters::region

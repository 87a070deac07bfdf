#pragma once

#include <bit>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "platform/Mote.h"

namespace Vane {

/// A hash map whose entries stand side by side, in the order in which they came: a walk, and look-ups in
/// about that order, run through memory forwards. The index beside them is open-addressed and never more than
/// half full.
template <class K, class V, class Hash>
class DenseMap {
 public:
  using Key = K;
  using Item = V;
  struct Entry {
    K key;
    V item;
  };

  /// Null when absent; valid until the map changes.
  const V* find(const K& key) const {
    if (entries_.empty()) return nullptr;
    const U32 slot = slots_[slotOf(key)];
    return slot == empty ? nullptr : &entries_[slot].item;
  }
  void set(const K& key, V item) {
    U32& slot = roomFor(key);
    if (slot == empty) {
      slot = static_cast<U32>(entries_.size());
      entries_.push_back({key, std::move(item)});
    } else {
      entries_[slot].item = std::move(item);
    }
  }
  /// The item under the key, made when absent.
  V& operator[](const K& key) {
    U32& slot = roomFor(key);
    if (slot == empty) {
      slot = static_cast<U32>(entries_.size());
      entries_.push_back({key, V()});
    }
    return entries_[slot].item;
  }
  /// The item that was removed, if there was one. The last entry takes its place.
  std::optional<V> take(const K& key) {
    if (find(key) == nullptr) return {};
    std::size_t gap = slotOf(key);
    const U32 place = slots_[gap];
    slots_[slotOf(entries_.back().key)] = place;
    std::optional<V> item(std::move(entries_[place].item));
    if (place + 1U != entries_.size()) entries_[place] = std::move(entries_.back());
    entries_.pop_back();
    closeGap(gap);
    return item;
  }
  void clear() { *this = DenseMap(); }
  std::size_t size() const noexcept { return entries_.size(); }

  auto begin() const { return entries_.begin(); }
  auto end() const { return entries_.end(); }

 private:
  static constexpr U32 empty = 0xffffffff;
  static constexpr std::size_t fewestSlots = 8;

  // The upper bits of the product depend on all bits of the hash, which may be as plain as a number or an
  // address.
  std::size_t home(const K& key) const { return (Hash()(key) * 0x9e3779b97f4a7c15) >> shift_; }
  std::size_t next(std::size_t slot) const { return (slot + 1) & (slots_.size() - 1); }

  /// The slot of the key, or the empty one where it would go.
  std::size_t slotOf(const K& key) const {
    std::size_t slot = home(key);
    while (slots_[slot] != empty && !(entries_[slots_[slot]].key == key)) slot = next(slot);
    return slot;
  }
  U32& roomFor(const K& key) {
    if (2 * (entries_.size() + 1) > slots_.size()) grow();
    return slots_[slotOf(key)];
  }
  void grow() {
    const std::size_t size = slots_.empty() ? fewestSlots : 2 * slots_.size();
    slots_.assign(size, empty);
    shift_ = 64 - static_cast<unsigned>(std::countr_zero(size));
    for (std::size_t i = 0; i < entries_.size(); ++i) slots_[slotOf(entries_[i].key)] = static_cast<U32>(i);
  }
  // Moves the entries that had gone past the gap back, so that no search ends early.
  void closeGap(std::size_t gap) {
    slots_[gap] = empty;
    for (std::size_t slot = next(gap); slots_[slot] != empty; slot = next(slot)) {
      const U32 moved = std::exchange(slots_[slot], empty);
      slots_[slotOf(entries_[moved].key)] = moved;
    }
  }

  std::vector<Entry> entries_;
  std::vector<U32> slots_;  // by hash: the place among the entries
  unsigned shift_ = 0;
};

}  // namespace Vane

#pragma once

// A hash map with contiguous entries, on which HashMap is built.

#include <bit>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "platform/Mote.h"

namespace Vane {

/// A hash map whose entries are contiguous, in order of insertion: a walk, and look-ups in a similar order,
/// read memory sequentially. The separate index is open-addressed and at most half full.
template <class K, class V, class Hash>
class DenseMap {
 public:
  using Key = K;
  using Item = V;
  struct Entry {
    K key;
    V item;
  };

  /// Allocates memory for that many entries.
  void reserve(std::size_t count) {
    entries_.reserve(count);
    while (2 * count > slots_.size()) grow();
  }
  /// Null if absent; valid until the map changes.
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
  /// The item of the key, created if absent.
  V& operator[](const K& key) {
    U32& slot = roomFor(key);
    if (slot == empty) {
      slot = static_cast<U32>(entries_.size());
      entries_.push_back({key, V()});
    }
    return entries_[slot].item;
  }
  /// Removes and returns the item, if there is one. The last entry moves to its position.
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

  // The upper bits of the product depend on all bits of the hash, which may be just a number or an address.
  std::size_t home(const K& key) const { return (Hash()(key) * 0x9e3779b97f4a7c15) >> shift_; }
  std::size_t next(std::size_t slot) const { return (slot + 1) & (slots_.size() - 1); }

  /// The slot of the key, or the empty one where it would be inserted.
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
  // Moves entries after the gap forward into it, so that no search ends early.
  void closeGap(std::size_t gap) {
    slots_[gap] = empty;
    for (std::size_t slot = next(gap); slots_[slot] != empty; slot = next(slot)) {
      const U32 moved = std::exchange(slots_[slot], empty);
      slots_[slotOf(entries_[moved].key)] = moved;
    }
  }

  std::vector<Entry> entries_;
  std::vector<U32> slots_;  // by hash: index of the entry
  unsigned shift_ = 0;
};

}  // namespace Vane

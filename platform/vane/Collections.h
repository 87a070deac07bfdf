#pragma once

#include <functional>
#include <iterator>
#include <map>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/Mote.h"

namespace Vane {

/// Hashes identifiers and ids through their `hash()`, everything else through std::hash.
struct Hash {
  template <class T>
  std::size_t operator()(const T& value) const noexcept {
    if constexpr (requires { value.hash(); }) {
      return value.hash();
    } else {
      return std::hash<T>()(value);
    }
  }
};

/// What ordered and hash maps of attributes share: look-ups that answer a neutral value for an absent key,
/// and a 32-bit version that every change moves.
template <class Map>
class Collection {
 public:
  using Key = typename Map::key_type;
  using Item = typename Map::mapped_type;

  /// The item under a key, null when absent; valid until the collection changes.
  const Item* find(const Key& key) const {
    const auto found = map_.find(key);
    return found == map_.end() ? nullptr : &found->second;
  }
  bool contains(const Key& key) const { return find(key) != nullptr; }
  /// A copy of the item under a key, a default-made one when absent.
  Item get(const Key& key) const {
    const Item* item = find(key);
    return item == nullptr ? Item() : *item;
  }
  std::vector<Key> keys() const {
    std::vector<Key> keys;
    keys.reserve(map_.size());
    for (const auto& [key, item] : map_) keys.push_back(key);
    return keys;
  }
  U32 size() const noexcept { return static_cast<U32>(map_.size()); }
  U32 version() const noexcept { return version_; }

  /// Inserts the item, or replaces the one under that key.
  void set(const Key& key, Item item) {
    map_.insert_or_assign(key, std::move(item));
    ++version_;
  }
  /// As set(), for handles: a null one removes the entry, if there is one.
  void setUnlessNull(const Key& key, Item item) {
    if (item == nullptr) {
      remove(key);
    } else {
      set(key, std::move(item));
    }
  }
  /// Removes and returns the item, a default-made one when the key is absent.
  Item remove(const Key& key) {
    auto node = map_.extract(key);
    if (node.empty()) return Item();
    ++version_;
    return std::move(node.mapped());
  }
  void clear() {
    map_.clear();
    ++version_;
  }

 protected:
  Map map_;
  U32 version_ = 0;
};

/// A map without order. It must not change while it is walked; take the `keys` first where it may.
template <class K, class V>
class HashMap : public Collection<std::unordered_map<K, V, Hash>> {
 public:
  auto begin() const { return this->map_.begin(); }
  auto end() const { return this->map_.end(); }
};

/// A map in ascending key order that may change while it is walked: a walk holds a copy of the entry it is
/// at, and goes on with the smallest key above it.
template <class K, class V, class Less = std::less<K>>
class OrderedMap : public Collection<std::map<K, V, Less>> {
 public:
  struct Entry {
    K key;
    V item;
  };

  class Iterator {
   public:
    explicit Iterator(const OrderedMap& owner) : owner_(&owner) { arrive(owner.map_.begin()); }
    const Entry& operator*() const { return *entry_; }
    const Entry* operator->() const { return &*entry_; }
    Iterator& operator++() {
      arrive(owner_->version_ == version_ ? std::next(position_) : owner_->map_.upper_bound(entry_->key));
      return *this;
    }
    bool operator==(std::default_sentinel_t) const noexcept { return !entry_.has_value(); }

   private:
    using Position = typename std::map<K, V, Less>::const_iterator;

    void arrive(Position position) {
      position_ = position;
      version_ = owner_->version_;
      if (position == owner_->map_.end()) {
        entry_.reset();
      } else {
        entry_.emplace(Entry{position->first, position->second});
      }
    }

    const OrderedMap* owner_;
    Position position_;
    std::optional<Entry> entry_;
    U32 version_ = 0;  // of the owner when position_ was taken
  };

  Iterator begin() const { return Iterator(*this); }
  std::default_sentinel_t end() const { return {}; }
};

}  // namespace Vane

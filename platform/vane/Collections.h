#pragma once

// Ordered and hash maps for attributes of entities.

#include <functional>
#include <iterator>
#include <map>
#include <optional>
#include <type_traits>
#include <utility>
#include <vector>

#include "platform/Mote.h"
#include "platform/vane/DenseMap.h"

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

/// std::map with the operations of DenseMap.
template <class K, class V, class Less>
class SortedMap {
 public:
  using Key = K;
  using Item = V;
  using Position = typename std::map<K, V, Less>::const_iterator;

  const V* find(const K& key) const {
    const auto found = map_.find(key);
    return found == map_.end() ? nullptr : &found->second;
  }
  void set(const K& key, V item) { map_.insert_or_assign(key, std::move(item)); }
  std::optional<V> take(const K& key) {
    auto node = map_.extract(key);
    if (node.empty()) return {};
    return std::move(node.mapped());
  }
  void clear() { map_.clear(); }
  std::size_t size() const noexcept { return map_.size(); }

  Position begin() const { return map_.begin(); }
  Position end() const { return map_.end(); }
  Position above(const K& key) const { return map_.upper_bound(key); }

 private:
  std::map<K, V, Less> map_;
};

/// The result of a look-up of an absent key: a default-constructed item, or the null identifier.
template <class Item>
Item neutral() {
  if constexpr (std::is_default_constructible_v<Item>) {
    return Item();
  } else {
    return Item::null();
  }
}

/// Common part of ordered and hash maps of attributes: look-ups that return a neutral value for an absent
/// key, and a 32-bit version that every change increments.
template <class Map>
class Collection {
 public:
  using Key = typename Map::Key;
  using Item = typename Map::Item;

  Collection() = default;
  Collection(const Collection&) = default;
  /// Replaces all entries, and counts as a change. There is no move assignment: it would empty the other
  /// collection.
  Collection& operator=(const Collection& other) {
    ++version_;
    map_ = other.map_;
    return *this;
  }
  ~Collection() = default;

  /// The item of a key, null if absent; valid until the collection changes.
  const Item* find(const Key& key) const { return map_.find(key); }
  bool contains(const Key& key) const { return find(key) != nullptr; }
  /// A copy of the item of a key, the neutral one if absent.
  Item get(const Key& key) const {
    const Item* item = find(key);
    return item == nullptr ? neutral<Item>() : *item;
  }
  std::vector<Key> keys() const {
    std::vector<Key> keys;
    keys.reserve(map_.size());
    for (const auto& [key, item] : map_) keys.push_back(key);
    return keys;
  }
  std::vector<std::pair<Key, Item>> entries() const {
    std::vector<std::pair<Key, Item>> entries;
    entries.reserve(map_.size());
    for (const auto& [key, item] : map_) entries.emplace_back(key, item);
    return entries;
  }
  U32 size() const noexcept { return static_cast<U32>(map_.size()); }
  U32 version() const noexcept { return version_; }

  /// Inserts the item, or replaces the one of that key.
  void set(const Key& key, Item item) {
    map_.set(key, std::move(item));
    ++version_;
  }
  /// Like set(), for handles: a null handle removes the entry, if there is one.
  void setUnlessNull(const Key& key, Item item) {
    if (item == nullptr) {
      remove(key);
    } else {
      set(key, std::move(item));
    }
  }
  /// Removes and returns the item, the neutral one if the key is absent.
  Item remove(const Key& key) {
    std::optional<Item> item = map_.take(key);
    if (!item) return neutral<Item>();
    ++version_;
    return std::move(*item);
  }
  void clear() {
    map_.clear();
    ++version_;
  }

 protected:
  Map map_;
  U32 version_ = 0;
};

/// A map without a defined order. It must not change during a walk from begin() to end(), but may during a
/// Walk.
template <class K, class V>
class HashMap : public Collection<DenseMap<K, V, Hash>> {
 public:
  /// Walks the keys that exist at its begin, except those that are removed before it reaches them. Holds a
  /// copy of the current entry.
  class Walk {
   public:
    explicit Walk(const HashMap& owner) : owner_(&owner), keys_(owner.keys()) { arrive(); }
    const auto& operator*() const { return *entry_; }
    const auto* operator->() const { return &*entry_; }
    Walk& operator++() {
      ++at_;
      arrive();
      return *this;
    }
    bool operator==(std::default_sentinel_t) const noexcept { return !entry_.has_value(); }

   private:
    void arrive() {
      entry_.reset();
      for (; at_ < keys_.size(); ++at_) {
        if (const V* item = owner_->find(keys_[at_])) {
          entry_.emplace(typename DenseMap<K, V, Hash>::Entry{keys_[at_], *item});
          return;
        }
      }
    }

    const HashMap* owner_;
    std::vector<K> keys_;
    std::size_t at_ = 0;
    std::optional<typename DenseMap<K, V, Hash>::Entry> entry_;
  };

  auto begin() const { return this->map_.begin(); }
  auto end() const { return this->map_.end(); }
};

/// A map in ascending key order that may change during a walk: a walk holds a copy of the current entry, and
/// continues with the smallest key above it.
template <class K, class V, class Less = std::less<K>>
class OrderedMap : public Collection<SortedMap<K, V, Less>> {
 public:
  struct Entry {
    K key;
    V item;
  };

  class Walk {
   public:
    explicit Walk(const OrderedMap& owner) : owner_(&owner) { arrive(owner.map_.begin()); }
    const Entry& operator*() const { return *entry_; }
    const Entry* operator->() const { return &*entry_; }
    Walk& operator++() {
      arrive(owner_->version_ == version_ ? std::next(position_) : owner_->map_.above(entry_->key));
      return *this;
    }
    bool operator==(std::default_sentinel_t) const noexcept { return !entry_.has_value(); }

   private:
    using Position = typename SortedMap<K, V, Less>::Position;

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

  Walk begin() const { return Walk(*this); }
  std::default_sentinel_t end() const { return {}; }
};

}  // namespace Vane

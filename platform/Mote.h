#pragma once

// Mote, the utility library: strings, reference-counted nodes with their handles, and the ring queue.

#include <sys/single_threaded.h>

#include <algorithm>
#include <atomic>
#include <bit>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

using U8 = std::uint8_t;
using U16 = std::uint16_t;
using U32 = std::uint32_t;
using U64 = std::uint64_t;

namespace Vane {
struct TypeData;
}

namespace Mote {

/// A byte string. Comparison is by bytes; case conversions change ASCII letters only, independent of the
/// locale.
class String {
 public:
  constexpr String() noexcept = default;
  constexpr String(const char* text) : text_(text) {}
  constexpr String(std::string_view text) : text_(text) {}
  constexpr String(std::string text) noexcept : text_(std::move(text)) {}

  constexpr const char* c_str() const noexcept { return text_.c_str(); }
  constexpr std::size_t size() const noexcept { return text_.size(); }
  constexpr bool empty() const noexcept { return text_.empty(); }
  constexpr std::string_view view() const noexcept { return text_; }
  constexpr operator std::string_view() const noexcept { return text_; }

  String lowerCase() const;
  String upperCase() const;

  String& operator+=(std::string_view text) {
    text_ += text;
    return *this;
  }
  friend String operator+(String left, std::string_view right) { return std::move(left += right); }

  friend bool operator==(const String&, const String&) = default;
  friend std::strong_ordering operator<=>(const String&, const String&) = default;

 private:
  std::string text_;
};

template <class T>
class Ptr;

/// Base of all classes held through Ptr: counts its handles and is destroyed with the last one. The count is
/// changed atomically only if the process has more than one thread. Create nodes with Mote::make.
class Node {
 public:
  Node(const Node&) = delete;
  Node& operator=(const Node&) = delete;
  virtual ~Node();

  /// Called once, after the last handle is released; destroys the node.
  virtual void lastUserGone() const;
  /// The node that announces changes of this one: itself, unless it is part of another node.
  virtual const Node* publisher() const;
  /// The type's registration, null for a type that is not registered.
  virtual const Vane::TypeData* typeData() const;

  /// The current number of handles.
  U32 users() const noexcept { return users_.load(std::memory_order_relaxed); }

 protected:
  Node() noexcept = default;

 private:
  template <class T>
  friend class Ptr;

  void acquire() const noexcept {
    if (__libc_single_threaded != 0) {
      users_.store(users_.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
    } else {
      users_.fetch_add(1, std::memory_order_relaxed);
    }
  }
  void release() const noexcept {
    U32 left = 0;
    if (__libc_single_threaded != 0) {
      left = users_.load(std::memory_order_relaxed) - 1;
      users_.store(left, std::memory_order_relaxed);
    } else {
      left = users_.fetch_sub(1, std::memory_order_acq_rel) - 1;
    }
    if (left == 0) lastUserGone();
  }

  mutable std::atomic<U32> users_{0};
};

template <class U, class T>
concept PointsTo = std::is_convertible_v<U*, T*>;

/// A counted handle to a node, possibly null. Ptr<T> converts to Ptr<const T> and to handles of its bases.
template <class T>
class Ptr {
 public:
  constexpr Ptr() noexcept = default;
  constexpr Ptr(std::nullptr_t) noexcept {}
  explicit Ptr(T* node) noexcept : node_(node) {
    if (node_ != nullptr) base(node_)->acquire();
  }
  Ptr(const Ptr& other) noexcept : Ptr(other.node_) {}
  Ptr(Ptr&& other) noexcept : node_(std::exchange(other.node_, nullptr)) {}
  template <PointsTo<T> U>
  Ptr(const Ptr<U>& other) noexcept : Ptr(static_cast<T*>(other.get())) {}
  template <PointsTo<T> U>
  Ptr(Ptr<U>&& other) noexcept : node_(std::exchange(other.node_, nullptr)) {}
  Ptr& operator=(Ptr other) noexcept {
    std::swap(node_, other.node_);
    return *this;
  }
  ~Ptr() {
    if (node_ != nullptr) base(node_)->release();
  }

  T* get() const noexcept { return node_; }
  T* operator->() const noexcept { return node_; }
  T& operator*() const noexcept { return *node_; }
  explicit operator bool() const noexcept { return node_ != nullptr; }

  template <class U>
  bool operator==(const Ptr<U>& other) const noexcept {
    return node_ == other.get();
  }
  bool operator==(std::nullptr_t) const noexcept { return node_ == nullptr; }

 private:
  template <class U>
  friend class Ptr;

  static const Node* base(const T* node) noexcept { return node; }

  T* node_ = nullptr;
};

/// Creates a node and returns the first handle to it.
template <class T, class... Args>
Ptr<T> make(Args&&... args) {
  return Ptr<T>(new T(std::forward<Args>(args)...));
}

/// A first-in first-out queue in blocks. The capacity of a block is a power of two from 4 to 8192, chosen
/// from the length of the queue when the previous block is full.
template <class T>
class RQueue {
 public:
  void enq(T item) {
    if (blocks_.empty() || blocks_.back().size() == blocks_.back().capacity()) {
      blocks_.emplace_back().reserve(std::bit_ceil(std::clamp(size(), smallestBlock, largestBlock)));
    }
    blocks_.back().push_back(std::move(item));
    ++size_;
  }

  /// Removes and returns the front item; a default-constructed item if the queue is empty.
  T deq() {
    if (empty()) return T();
    T item = std::move(blocks_.front()[head_]);
    --size_;
    if (++head_ == blocks_.front().size()) {
      blocks_.pop_front();
      head_ = 0;
    }
    return item;
  }

  T front() const { return empty() ? T() : blocks_.front()[head_]; }
  T back() const { return empty() ? T() : blocks_.back().back(); }
  std::size_t size() const noexcept { return size_; }
  bool empty() const noexcept { return size_ == 0; }
  void clear() { *this = RQueue(); }

  /// Walks front to back. The queue must not change during the walk.
  class Iterator {
   public:
    Iterator(const std::deque<std::vector<T>>& blocks, std::size_t block, std::size_t index)
        : blocks_(&blocks), block_(block), index_(index) {}
    const T& operator*() const { return (*blocks_)[block_][index_]; }
    Iterator& operator++() {
      if (++index_ == (*blocks_)[block_].size()) {
        ++block_;
        index_ = 0;
      }
      return *this;
    }
    bool operator==(const Iterator& other) const noexcept {
      return block_ == other.block_ && index_ == other.index_;
    }

   private:
    const std::deque<std::vector<T>>* blocks_;
    std::size_t block_;
    std::size_t index_;
  };
  Iterator begin() const { return Iterator(blocks_, 0, head_); }
  Iterator end() const { return Iterator(blocks_, blocks_.size(), 0); }

 private:
  static constexpr std::size_t smallestBlock = 4;
  static constexpr std::size_t largestBlock = 8192;

  std::deque<std::vector<T>> blocks_;
  std::size_t head_ = 0;  // index of the front item in the first block
  std::size_t size_ = 0;
};

}  // namespace Mote

template <>
struct std::hash<Mote::String> {
  std::size_t operator()(const Mote::String& text) const noexcept {
    return std::hash<std::string_view>()(text.view());
  }
};

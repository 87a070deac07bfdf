#pragma once

// Values of any type, as the generic attribute interface passes them.

#include <any>
#include <string_view>
#include <type_traits>
#include <utility>

#include "platform/Mote.h"
#include "platform/vane/Failure.h"
#include "platform/vane/TypeName.h"

namespace Vane {

class Value;

template <class T>
concept Carried = !std::is_same_v<std::remove_cvref_t<T>, Value>;

/// A value that is passed through the generic attribute interface: an argument, a key, an item or a result.
/// It carries its type, so that a wrong type throws instead of causing an invalid read. Enumerators are
/// passed as their number (U8), and may be given and read as one; nodes are passed as counted handles.
class Value {
 public:
  Value() = default;

  template <Carried T>  // so that copy and move construction are not affected
  Value(T&& value)      // NOLINT(bugprone-forwarding-reference-overload)
      : Value(std::in_place, std::remove_cvref_t<T>(std::forward<T>(value))) {}

  bool empty() const noexcept { return !held_.has_value(); }
  /// The name of the type held, "nothing" if empty.
  std::string_view type() const noexcept { return type_; }

  /// The value as a T. Throws InternalException if it holds another type. A null handle can be read as a
  /// handle to any node type, a handle to a mutable node also as one to a constant node.
  template <class T>
  T as() const {
    return Reader<T>::read(*this);
  }

 private:
  struct NodeHandle {
    Mote::Ptr<const Mote::Node> node;
    bool writable = false;
  };

  template <class T>
  struct Reader {
    static T read(const Value& value) {
      // An enumerator is held as its number: any U8 can be read as one, and it as a U8.
      using Held = std::conditional_t<Enumerated<T>, U8, T>;
      const Held* held = std::any_cast<Held>(&value.held_);
      const bool fits = !Enumerated<T> || value.type_ == typeName<T> || value.type_ == typeName<U8>;
      if (held == nullptr || !fits) value.throwMismatch(typeName<T>);
      if constexpr (Enumerated<T>) {
        return enumFromNumber<T>(*held);
      } else {
        return *held;
      }
    }
  };

  template <class T>
  struct Reader<Mote::Ptr<T>> {
    static Mote::Ptr<T> read(const Value& value) {
      const auto* held = std::any_cast<NodeHandle>(&value.held_);
      if (held == nullptr) value.throwMismatch(typeName<Mote::Ptr<T>>);
      if (held->node == nullptr) return nullptr;
      const auto* node = dynamic_cast<const T*>(held->node.get());
      if (node == nullptr || !(held->writable || std::is_const_v<T>)) {
        value.throwMismatch(typeName<Mote::Ptr<T>>);
      }
      return Mote::Ptr<T>(const_cast<T*>(node));  // NOLINT(cppcoreguidelines-pro-type-const-cast)
    }
  };

  template <class T>
  Value(std::in_place_t, T value) : held_(std::move(value)), type_(typeName<T>) {}
  template <class T>
  Value(std::in_place_t, Mote::Ptr<T> node)
      : held_(NodeHandle{std::move(node), !std::is_const_v<T>}), type_(typeName<Mote::Ptr<T>>) {}
  template <Enumerated E>
  Value(std::in_place_t, E value) : held_(static_cast<U8>(value)), type_(typeName<E>) {}

  [[noreturn]] void throwMismatch(std::string_view expected) const;

  std::any held_;
  std::string_view type_ = "nothing";
};

}  // namespace Vane
